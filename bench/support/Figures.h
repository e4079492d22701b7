// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

#include <ctime>
#include <optional>
#include <vector>

/// Measured values, one for every round.
using Series = std::vector<double>;

/// The least value, which is the one that other programs disturbed least.
double least(const Series &values);
/// The middle value.
double median(Series values);
/// One series divided by another, round by round.
Series perRound(const Series &of, const Series &to);

/// How long something took, in seconds.
struct Elapsed {
    double wall = 0;
    double cpu = 0; ///< of all threads of the process; other programs hardly disturb it
};

/// Runs something and says how long it took.
template <typename Work>
Elapsed elapsed(Work work)
{
    const auto now = [](clockid_t clock) {
        timespec time = {};
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const Elapsed begin{now(CLOCK_MONOTONIC), now(CLOCK_PROCESS_CPUTIME_ID)};
    work();
    return {now(CLOCK_MONOTONIC) - begin.wall, now(CLOCK_PROCESS_CPUTIME_ID) - begin.cpu};
}

/// A line of the table that a bench program prints. Of everything measured here less is better.
struct Figure {
    QString what;
    QString comparedWith; ///< what the value was divided by; empty when it stands for itself
    QString unit;
    double best = 0;
    double usual = 0;                            ///< the median
    std::optional<double> target = std::nullopt; ///< what `best` should not exceed
};

/// Time compared with time in the same rounds: the least by the least, and the median of the
/// rounds' own ratios.
Figure ratio(const QString &what, const Series &of, const QString &comparedWith, const Series &to,
             std::optional<double> target = std::nullopt);

/// The figures of one program: a table for people, the same as JSON for programs.
class Report {
public:
    explicit Report(QString name) : m_name(std::move(name)) {}

    void add(const Figure &figure) { m_figures.push_back(figure); }
    /// Something that stands in the JSON beside the figures.
    void addDetail(const QString &key, const QJsonValue &value) { m_details[key] = value; }

    void print() const { printTable({*this}); }
    /// Writes the JSON, unless `path` is empty. False when the disk refuses.
    bool writeJson(const QString &path) const;

    QJsonObject toJson() const;
    /// What toJson() gave.
    static Report fromJson(const QJsonObject &json);

    /// One table of several reports.
    static void printTable(const std::vector<Report> &reports);

private:
    QString m_name;
    std::vector<Figure> m_figures;
    QJsonObject m_details;
};
