// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/SessionParser.h"
#include "support/Describe.h"
#include "support/TestMain.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// Both sides of the comparison are JSON in the form of truth.json: times in milliseconds since
/// 1970, models as [input, output, cache write, cache read].
QString text(const QJsonValue &value)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson());
}

qint64 milliseconds(TimePoint time)
{
    return time.time_since_epoch().count();
}

QJsonArray plus(const QJsonArray &sums, const UsageRecord &record)
{
    return {sums.at(0).toInteger() + record.input, sums.at(1).toInteger() + record.output,
            sums.at(2).toInteger() + record.cacheWrite, sums.at(3).toInteger() + record.cacheRead};
}

QJsonValue asTruth(const std::optional<Session> &session)
{
    if (!session)
        return QJsonValue::Null;
    QJsonArray total;
    QJsonObject models;
    for (const UsageRecord &record : session->records) {
        total = plus(total, record);
        models.insert(record.model, plus(models.value(record.model).toArray(), record));
    }
    return QJsonObject{{u"id"_qs, session->id},
                       {u"start"_qs, milliseconds(session->start)},
                       {u"end"_qs, milliseconds(session->end)},
                       {u"turns"_qs, session->turns},
                       {u"firstPrompt"_qs, session->firstPrompt},
                       {u"input"_qs, total.at(0).toInteger()},
                       {u"output"_qs, total.at(1).toInteger()},
                       {u"cacheWrite"_qs, total.at(2).toInteger()},
                       {u"cacheRead"_qs, total.at(3).toInteger()},
                       {u"records"_qs, session->records.size()},
                       {u"models"_qs, models}};
}

} // namespace

/// Reads every log in the folder that the environment variable PLINTHAR_REAL_LOGS names and
/// compares it with what the folder's truth.json says of it.
class RealLogsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyLogIsInTheTruth();
    void logs_data();
    void logs();

private:
    const QDir m_folder = QDir(qEnvironmentVariable("PLINTHAR_REAL_LOGS"));
    const QJsonArray m_truth =
        QJsonDocument::fromJson(readFile(m_folder.filePath(u"truth.json"_qs))).array();
};

void RealLogsTest::everyLogIsInTheTruth()
{
    QStringList known;
    for (const QJsonValue log : m_truth)
        known.append(log[u"file"].toString());
    known.sort();
    QVERIFY(!known.isEmpty());
    QCOMPARE(m_folder.entryList({u"*.jsonl"_qs}, QDir::Files, QDir::Name), known);
}

void RealLogsTest::logs_data()
{
    QTest::addColumn<QJsonObject>("truth");
    for (const QJsonValue log : m_truth)
        QTest::newRow(qPrintable(log[u"file"].toString())) << log.toObject();
}

void RealLogsTest::logs()
{
    QFETCH(QJsonObject, truth);
    const auto file = m_folder.filePath(truth[u"file"].toString()).toStdString();
    QCOMPARE(text(asTruth(SessionParser::parse(file))), text(truth[u"session"]));
    const auto cwd = SessionParser::cwd(file);
    QCOMPARE(text(cwd ? QJsonValue(*cwd) : QJsonValue::Null), text(truth[u"cwd"]));
}

PLINTHAR_TEST_MAIN(RealLogsTest)
#include "RealLogsTest.moc"
