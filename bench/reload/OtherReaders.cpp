// SPDX-License-Identifier: GPL-3.0-or-later
#include "reload/OtherReaders.h"

#include "model/Files.h"
#include "model/IsoDate.h"
#include "model/LineReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <thread>

namespace {

namespace fs = std::filesystem;

constexpr size_t plainChunk = 256 * 1024;

/// Calls `work(nextLog)` on as many threads as there are cores; `nextLog()` gives the next log that
/// nobody has taken, or null.
template <typename Result, typename Work>
std::vector<Result> onAllCores(const std::vector<fs::path> &logs, Work work)
{
    const auto workers = static_cast<size_t>(QThread::idealThreadCount());
    std::vector<Result> results(workers);
    std::atomic<size_t> taken = 0;
    const auto run = [&](size_t worker) {
        results[worker] = work([&]() -> const fs::path * {
            const size_t i = taken++;
            return i < logs.size() ? &logs[i] : nullptr;
        });
    };
    std::vector<std::jthread> threads;
    for (size_t worker = 1; worker < workers; ++worker)
        threads.emplace_back(run, worker);
    run(0);
    threads.clear();
    return results;
}

std::optional<QString> promptText(const QJsonValue &content)
{
    if (content.isString())
        return content.toString();
    QStringList texts;
    for (const QJsonValue &element : content.toArray()) {
        const QJsonValue type = element[u"type"];
        if (!element.isObject() || type == QStringLiteral("tool_result"))
            return std::nullopt;
        if (type == QStringLiteral("text") && element[u"text"].isString())
            texts.append(element[u"text"].toString());
    }
    return texts.isEmpty() ? std::nullopt : std::optional(texts.join(u'\n'));
}

bool isPrompt(const QString &text)
{
    return !text.isEmpty() && !text.startsWith(QStringLiteral("<command-")) &&
           !text.startsWith(QStringLiteral("<local-command")) &&
           !text.startsWith(QStringLiteral("Caveat:"));
}

/// One log, read the obvious way with Qt's own JSON classes.
class QtJsonSession {
public:
    void add(const QJsonObject &line)
    {
        const QByteArray timestamp = line[u"timestamp"].toString().toUtf8();
        const std::string_view text(timestamp.constData(), size_t(timestamp.size()));
        std::optional<TimePoint> date = SessionParser::isoFrac(text);
        if (!date)
            date = SessionParser::iso(text);
        if (date) {
            m_session.start = m_dated ? std::min(m_session.start, *date) : *date;
            m_session.end = m_dated ? std::max(m_session.end, *date) : *date;
            m_dated = true;
        }
        const QString type = line[u"type"].toString();
        if (type == QStringLiteral("user") && !line[u"isMeta"].toBool())
            addTurn(line[u"message"][u"content"]);
        else if (type == QStringLiteral("assistant"))
            addUsage(line[u"message"].toObject(), date);
    }

    std::optional<Session> finish()
    {
        m_session.records = m_withId.values() + m_withoutId;
        std::stable_sort(m_session.records.begin(), m_session.records.end(),
                         [](const auto &a, const auto &b) { return a.date < b.date; });
        return m_dated ? std::optional(std::move(m_session)) : std::nullopt;
    }

private:
    void addTurn(const QJsonValue &content)
    {
        const QString prompt = promptText(content).value_or(QString()).trimmed();
        if (!isPrompt(prompt))
            return;
        ++m_session.turns;
        if (m_session.firstPrompt.isEmpty())
            m_session.firstPrompt = prompt;
    }

    void addUsage(const QJsonObject &message, std::optional<TimePoint> date)
    {
        if (!message[u"usage"].isObject())
            return;
        const QJsonObject usage = message[u"usage"].toObject();
        const UsageRecord record{.date = date.value_or(m_session.start),
                                 .model = message[u"model"].toString(),
                                 .input = usage[u"input_tokens"].toInteger(),
                                 .output = usage[u"output_tokens"].toInteger(),
                                 .cacheWrite = usage[u"cache_creation_input_tokens"].toInteger(),
                                 .cacheRead = usage[u"cache_read_input_tokens"].toInteger()};
        const QJsonValue id = message[u"id"];
        if (id.isString())
            m_withId.insert(id.toString(), record);
        else
            m_withoutId.append(record);
    }

    Session m_session;
    bool m_dated = false;
    QHash<QString, UsageRecord> m_withId;
    QList<UsageRecord> m_withoutId;
};

OtherReaders::Sums sumsOf(const Session &session)
{
    OtherReaders::Sums sums{.sessions = 1,
                            .turns = static_cast<std::uint64_t>(session.turns),
                            .records = static_cast<std::uint64_t>(session.records.size())};
    for (const UsageRecord &record : session.records)
        sums.tokens += static_cast<std::uint64_t>(record.input + record.output + record.cacheWrite +
                                                  record.cacheRead);
    return sums;
}

OtherReaders::Sums &operator+=(OtherReaders::Sums &sum, const OtherReaders::Sums &other)
{
    sum.sessions += other.sessions;
    sum.turns += other.turns;
    sum.records += other.records;
    sum.tokens += other.tokens;
    return sum;
}

std::optional<Session> readLog(LineReader &lines, const fs::path &log)
{
    QtJsonSession session;
    if (!lines.open(log.c_str()))
        return std::nullopt;
    while (const auto line = lines.next()) {
        const QJsonDocument json = QJsonDocument::fromJson(
            QByteArray::fromRawData(line->data(), static_cast<qsizetype>(line->size())));
        if (json.isObject())
            session.add(json.object());
    }
    return session.finish();
}

} // namespace

namespace OtherReaders {

std::vector<fs::path> logsBelow(const fs::path &projects)
{
    std::vector<std::pair<std::uintmax_t, fs::path>> found;
    for (const fs::directory_entry &project : fs::directory_iterator(projects)) {
        for (const fs::directory_entry &log : fs::directory_iterator(project))
            found.emplace_back(log.file_size(), log.path());
    }
    std::sort(found.begin(), found.end(), std::greater());
    std::vector<fs::path> logs;
    for (auto &[size, path] : found)
        logs.push_back(std::move(path));
    return logs;
}

std::uint64_t readPlainly(const std::vector<fs::path> &logs)
{
    const auto counts = onAllCores<std::uint64_t>(logs, [](auto nextLog) {
        const auto buffer = std::make_unique<char[]>(plainChunk);
        std::uint64_t bytes = 0;
        while (const fs::path *log = nextLog()) {
            const FileDescriptor file(::open(log->c_str(), O_RDONLY | O_CLOEXEC));
            for (qint64 count = 1; count > 0; bytes += static_cast<std::uint64_t>(count))
                count = std::max<qint64>(0, readSome(file, buffer.get(), plainChunk));
        }
        return bytes;
    });
    std::uint64_t sum = 0;
    for (const std::uint64_t count : counts)
        sum += count;
    return sum;
}

Sums sumsOf(const SessionMap &sessions)
{
    Sums sums;
    for (const QList<Session> &ofProject : sessions) {
        for (const Session &session : ofProject)
            sums += ::sumsOf(session);
    }
    return sums;
}

Sums readWithQtJson(const std::vector<fs::path> &logs)
{
    const auto parts = onAllCores<Sums>(logs, [](auto nextLog) {
        LineReader lines;
        Sums sums;
        while (const fs::path *log = nextLog()) {
            if (const auto session = readLog(lines, *log))
                sums += ::sumsOf(*session);
        }
        return sums;
    });
    Sums sums;
    for (const Sums &part : parts)
        sums += part;
    return sums;
}

} // namespace OtherReaders
