// SPDX-License-Identifier: GPL-3.0-or-later
#include "SlowReader.h"

#include "support/StrictJson.h"

#include <QDate>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>

namespace {

/// Deeper nesting is no business of a check that calls itself for every level.
constexpr qsizetype deepest = 400;

bool hasLongNumber(const QByteArray &bytes)
{
    int digits = 0;
    return std::any_of(bytes.begin(), bytes.end(), [&digits](char c) {
        digits = c >= '0' && c <= '9' ? digits + 1 : 0;
        return digits > 15;
    });
}

qint64 count(const QJsonObject &usage, const char *key)
{
    return usage.value(QLatin1StringView(key)).toInteger(0);
}

std::optional<TimePoint> timeOf(const QJsonObject &line)
{
    const QJsonValue value = line.value(QStringLiteral("timestamp"));
    if (!value.isString())
        return std::nullopt;
    const auto exact = SlowReader::date(value.toString(), SlowReader::Fraction::Wanted);
    return exact ? exact : SlowReader::date(value.toString(), SlowReader::Fraction::Unwanted);
}

/// A session under way.
class Reading {
public:
    void add(const QJsonObject &line)
    {
        const std::optional<TimePoint> date = timeOf(line);
        if (date)
            m_times.append(*date);
        const QJsonValue message = line.value(QStringLiteral("message"));
        const QString type = line.value(QStringLiteral("type")).toString();
        if (!message.isObject())
            return;
        if (type == QStringLiteral("user") && line.value(QStringLiteral("isMeta")) != true)
            addPrompt(message.toObject());
        else if (type == QStringLiteral("assistant"))
            addUsage(message.toObject(), date);
    }

    std::optional<Session> session(const QString &id, TimePoint now) const
    {
        if (m_times.isEmpty())
            return std::nullopt;
        Session session{id,
                        *std::min_element(m_times.cbegin(), m_times.cend()),
                        *std::max_element(m_times.cbegin(), m_times.cend()),
                        m_prompts.value(0),
                        m_prompts.size(),
                        {}};
        for (const Usage &usage : m_withId + m_withoutId) {
            session.records.append(usage.record);
            if (!usage.dated)
                session.records.last().date = now;
        }
        std::stable_sort(
            session.records.begin(), session.records.end(),
            [](const UsageRecord &a, const UsageRecord &b) { return a.date < b.date; });
        return session;
    }

private:
    struct Usage {
        QString id;
        UsageRecord record;
        bool dated = false;
    };

    void addPrompt(const QJsonObject &message)
    {
        const auto text = SlowReader::promptText(message.value(QStringLiteral("content")));
        const QString prompt = text.value_or(QString()).trimmed();
        for (const char *trace : {"<command-", "<local-command", "Caveat:"}) {
            if (prompt.startsWith(QLatin1StringView(trace)))
                return;
        }
        if (!prompt.isEmpty())
            m_prompts.append(prompt);
    }

    void addUsage(const QJsonObject &message, std::optional<TimePoint> date)
    {
        const QJsonValue value = message.value(QStringLiteral("usage"));
        if (!value.isObject())
            return;
        const QJsonObject counts = value.toObject();
        Usage usage;
        usage.dated = date || !m_times.isEmpty();
        if (usage.dated)
            usage.record.date = date ? *date : *std::min_element(m_times.cbegin(), m_times.cend());
        usage.record.model =
            SlowReader::text(message.value(QStringLiteral("model")).toString(QString()));
        usage.record.input = count(counts, "input_tokens");
        usage.record.output = count(counts, "output_tokens");
        usage.record.cacheWrite = count(counts, "cache_creation_input_tokens");
        usage.record.cacheRead = count(counts, "cache_read_input_tokens");
        const QJsonValue id = message.value(QStringLiteral("id"));
        if (!id.isString()) {
            m_withoutId.append(usage);
            return;
        }
        usage.id = SlowReader::text(id.toString());
        const auto known = std::find_if(m_withId.begin(), m_withId.end(),
                                        [&](const Usage &other) { return other.id == usage.id; });
        if (known != m_withId.end())
            *known = usage;
        else
            m_withId.append(usage);
    }

    QList<TimePoint> m_times;
    QStringList m_prompts;
    QList<Usage> m_withId;
    QList<Usage> m_withoutId;
};

} // namespace

namespace SlowReader {

Line line(const QByteArray &bytes)
{
    if (bytes.count('[') + bytes.count('{') > deepest)
        return {Line::Kind::Unsure};
    if (!isStrictJsonObject(bytes))
        return {Line::Kind::NotJson};
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject() || hasLongNumber(bytes))
        return {Line::Kind::Unsure};
    return {Line::Kind::Object, document.object()};
}

QString text(const QString &json)
{
    QString mended;
    for (qsizetype i = 0; i < json.size(); ++i) {
        const bool pair =
            json[i].isHighSurrogate() && i + 1 < json.size() && json[i + 1].isLowSurrogate();
        if (pair)
            mended += json[i++];
        else if (json[i].isSurrogate())
            mended += QChar(QChar::ReplacementCharacter);
        if (pair || !json[i].isSurrogate())
            mended += json[i];
    }
    return mended;
}

std::optional<QString> promptText(const QJsonValue &content)
{
    if (content.isString())
        return text(content.toString());
    QStringList texts;
    for (const QJsonValue item : content.toArray()) {
        const QJsonObject object = item.toObject();
        const QString type = object.value(QStringLiteral("type")).toString();
        const QJsonValue said = object.value(QStringLiteral("text"));
        if (!item.isObject() || type == QStringLiteral("tool_result"))
            return std::nullopt;
        if (type == QStringLiteral("text") && said.isString())
            texts.append(text(said.toString()));
    }
    return texts.isEmpty() ? std::nullopt : std::optional(texts.join(u'\n'));
}

std::optional<TimePoint> date(const QString &text, Fraction fraction)
{
    static const QRegularExpression form(QRegularExpression::anchoredPattern(QStringLiteral(
        "([0-9]{4})-([0-9]{2})-([0-9]{2})T([0-9]{2}):([0-9]{2}):([0-9]{2})(\\.[0-9]+)?"
        "(Z|([-+])([0-9]{2}):([0-9]{2}))")));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch() || match.captured(7).isEmpty() != (fraction == Fraction::Unwanted))
        return std::nullopt;
    const auto number = [&match](int group) { return match.captured(group).toInt(); };
    // Qt knows no year 0. The calendar repeats itself every 400 years, which have 146,097 days.
    const QDate day(number(1) + 400, number(2), number(3));
    if (!day.isValid() || !QTime::isValid(number(4), number(5), number(6)) || number(10) > 23 ||
        number(11) > 59)
        return std::nullopt;
    const qint64 days = QDate(1970, 1, 1).daysTo(day) - 146'097;
    const qint64 seconds = number(4) * 3'600 + number(5) * 60 + number(6);
    const qint64 east = (number(10) * 60 + number(11)) * (match.captured(9) == u"-" ? -60 : 60);
    const int milliseconds = match.captured(7).mid(1, 3).leftJustified(3, u'0').toInt();
    return TimePoint(
        std::chrono::milliseconds((days * 86'400 + seconds - east) * 1'000 + milliseconds));
}

std::optional<Session> session(const QByteArray &log, const QString &id, TimePoint now, bool &sure)
{
    Reading reading;
    for (const QByteArray &bytes : log.split('\n')) {
        const Line found = line(bytes);
        sure = sure && found.kind != Line::Kind::Unsure;
        if (found.kind == Line::Kind::Object)
            reading.add(found.object);
    }
    return reading.session(id, now);
}

std::optional<QString> cwd(const QByteArray &log, bool &sure)
{
    for (const QByteArray &bytes : log.split('\n')) {
        const Line found = line(bytes);
        sure = sure && found.kind != Line::Kind::Unsure;
        const QJsonValue folder = found.object.value(QStringLiteral("cwd"));
        if (folder.isString())
            return text(folder.toString());
    }
    return std::nullopt;
}

} // namespace SlowReader
