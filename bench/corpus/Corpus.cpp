// SPDX-License-Identifier: GPL-3.0-or-later
#include "corpus/Corpus.h"

#include "corpus/SessionWriter.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <numeric>
#include <thread>
#include <vector>

namespace corpus {

namespace {

/// Sizes of logs in relation to each other: most are small, a few hold most of the bytes.
constexpr std::array<Quantile, 6> logSizes{
    {{0, 20}, {250, 100}, {500, 400}, {800, 2000}, {950, 8000}, {1000, 40'000}}};

constexpr std::uint64_t logsPerProject = 20;
constexpr std::uint64_t mostProjects = 200;

/// The sizes of all logs, the largest first.
std::vector<std::uint64_t> planSizes(const Shape &shape, Random &random)
{
    std::vector<std::uint64_t> weights(shape.files);
    std::generate(weights.begin(), weights.end(), [&random] { return draw(logSizes, random); });
    std::sort(weights.begin(), weights.end(), std::greater());
    std::uint64_t left = shape.bytes;
    std::vector<std::uint64_t> sizes;
    if (shape.largest > 0 && !weights.empty()) {
        sizes.push_back(weights.size() == 1 ? left : std::min(shape.largest, left));
        left -= sizes.front();
        weights.erase(weights.begin());
    }
    const std::uint64_t sum = std::accumulate(weights.begin(), weights.end(), std::uint64_t(0));
    for (const std::uint64_t weight : weights)
        sizes.push_back(left / sum * weight + left % sum * weight / sum);
    return sizes;
}

std::string numbered(const char *name, std::uint64_t number)
{
    return name + std::to_string(number);
}

std::string sessionName(Random &random)
{
    std::string name;
    for (int i = 0; i < 32; ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20)
            name += '-';
        name += "0123456789abcdef"[random.below(16)];
    }
    return name;
}

std::vector<LogPlan> planLogs(const std::filesystem::path &projects, const Shape &shape)
{
    constexpr std::int64_t firstStart = 1'764'547'200'000; // 2025-12-01
    constexpr std::int64_t apart = 1'800'000;              // half an hour
    Random random(shape.seed);
    const std::uint64_t projectCount =
        std::clamp<std::uint64_t>(shape.files / logsPerProject, 1, mostProjects);
    std::vector<LogPlan> plans;
    for (const std::uint64_t size : planSizes(shape, random)) {
        const std::uint64_t number = plans.size();
        const std::uint64_t project = number % projectCount;
        const std::string session = sessionName(random);
        plans.push_back(
            {.file = projects / numbered("-home-dev-project", project) / (session + ".jsonl"),
             .folder = numbered("/home/dev/project", project),
             .session = session,
             .seed = random.next(),
             .bytes = size,
             .start = firstStart + static_cast<std::int64_t>(number) * apart,
             .longestLine = shape.longestLine,
             .hasLongestLine = number == 0});
    }
    return plans;
}

} // namespace

Truth &Truth::operator+=(const Truth &other)
{
    bytes += other.bytes;
    lines += other.lines;
    sessions += other.sessions;
    turns += other.turns;
    records += other.records;
    tokens += other.tokens;
    return *this;
}

Truth write(const std::filesystem::path &projects, const Shape &shape)
{
    const std::vector<LogPlan> plans = planLogs(projects, shape);
    std::filesystem::create_directories(projects);
    for (const LogPlan &plan : plans)
        std::filesystem::create_directory(plan.file.parent_path());
    const TextPool text(shape.seed, shape.cjkPercent);
    const unsigned workers = std::max(1u, std::thread::hardware_concurrency());
    std::vector<Truth> truths(workers);
    std::vector<std::exception_ptr> errors(workers);
    std::atomic<size_t> taken = 0;
    const auto work = [&](unsigned worker) {
        try {
            for (size_t i = taken++; i < plans.size(); i = taken++)
                truths[worker] += SessionWriter(plans[i], text).write();
        } catch (...) {
            errors[worker] = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> threads;
        for (unsigned worker = 1; worker < workers; ++worker)
            threads.emplace_back(work, worker);
        work(0);
    }
    Truth sum;
    for (unsigned worker = 0; worker < workers; ++worker) {
        if (errors[worker])
            std::rethrow_exception(errors[worker]);
        sum += truths[worker];
    }
    return sum;
}

} // namespace corpus
