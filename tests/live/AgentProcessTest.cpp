// SPDX-License-Identifier: GPL-3.0-or-later
#include "live/AgentProcess.h"

#include "support/TestMain.h"

#include <clocale>
#include <limits>

class AgentProcessTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void insideAFolder_data();
    void insideAFolder();
    void insideKeepsTheOrder();
    void cpuText_data();
    void cpuText();
};

void AgentProcessTest::insideAFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("inside");
    QTest::newRow("the folder itself") << QStringLiteral("/src/app") << true;
    QTest::newRow("a folder below") << QStringLiteral("/src/app/a/b") << true;
    QTest::newRow("a name that begins alike") << QStringLiteral("/src/app2") << false;
    QTest::newRow("the folder above") << QStringLiteral("/src") << false;
    QTest::newRow("other case") << QStringLiteral("/src/App") << false;
    QTest::newRow("further inside another") << QStringLiteral("/home/src/app") << false;
    QTest::newRow("unknown") << QStringLiteral("\u2014") << false;
    QTest::newRow("empty") << QString() << false;
}

void AgentProcessTest::insideAFolder()
{
    QFETCH(const QString, folder);
    QFETCH(const bool, inside);
    const QList<AgentProcess> agents{{1, QStringLiteral("claude"), folder, 0, QString()}};
    QCOMPARE(agentsInside(agents, QStringLiteral("/src/app")).size(), inside ? 1 : 0);
}

void AgentProcessTest::insideKeepsTheOrder()
{
    QList<AgentProcess> agents;
    for (const qint32 pid : {9, 3, 7, 1})
        agents.append({pid, QStringLiteral("codex"),
                       pid == 3 ? QStringLiteral("/b") : QStringLiteral("/a"), 0, QString()});
    const QList<AgentProcess> inside = agentsInside(agents, QStringLiteral("/a"));
    QCOMPARE(inside, (QList<AgentProcess>{agents[0], agents[2], agents[3]}));
}

void AgentProcessTest::cpuText_data()
{
    QTest::addColumn<double>("cpu");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0.0 << QStringLiteral("0.0%");
    QTest::newRow("one decimal") << 12.5 << QStringLiteral("12.5%");
    QTest::newRow("rounded as C does") << 0.25 << QStringLiteral("0.2%");
    QTest::newRow("many cores") << 3199.96 << QStringLiteral("3200.0%");
    QTest::newRow("negative") << -0.5 << QStringLiteral("-0.5%");
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << QStringLiteral("inf%");
    const double most = std::numeric_limits<double>::max();
    QTest::newRow("largest") << -most << QString::asprintf("%.1f%%", -most);
}

void AgentProcessTest::cpuText()
{
    QFETCH(const double, cpu);
    QFETCH(const QString, text);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(fmtCpu(cpu), text);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

PLINTHAR_TEST_MAIN(AgentProcessTest)
#include "AgentProcessTest.moc"
