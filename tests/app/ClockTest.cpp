// SPDX-License-Identifier: GPL-3.0-or-later

// The real program goes on when somebody sets the clock.

#include "RealProgram.h"
#include "support/TestMain.h"
#include "support/ToolDoubles.h"

namespace {

constexpr int patience = 60'000;

QProcessEnvironment withClock()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    preload(environment, QStringLiteral(PRELOAD));
    return environment;
}

/// The year, as a program is told that asks the system.
int yearOfOthers()
{
    QProcess date;
    date.setProcessEnvironment(withClock());
    date.start(QStringLiteral("/bin/date"), {QStringLiteral("+%Y")});
    return date.waitForFinished(patience) ? date.readAllStandardOutput().trimmed().toInt() : 0;
}

} // namespace

class ClockTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theListOfAgentsIsRefreshedAllTheSame();
};

void ClockTest::theListOfAgentsIsRefreshedAllTheSame()
{
    const PrivateHome home;
    addProject(home);
    ToolDoubles tools;
    tools.play(QStringLiteral("ps"), QStringLiteral("exit 1"));
    const auto scans = [&tools] { return tools.begun(QStringLiteral("ps")).size(); };
    RealProgram program(home, withClock());
    QVERIFY(program.begin());
    program.perform({QStringLiteral("await Reload"), QStringLiteral("Ctrl+2")});
    QTRY_VERIFY_WITH_TIMEOUT(scans() > 0, patience);

    const QString clockBack = tools.path(QStringLiteral("clock-back"));
    const int year = yearOfOthers();
    writeFile(clockBack, {});
    QCOMPARE(yearOfOthers(), year - 1);
    const qsizetype before = scans();
    QTRY_VERIFY_WITH_TIMEOUT(scans() > before + 1, patience); // one more may have been due
    QVERIFY(QFile::remove(clockBack));
    const qsizetype afterwards = scans();
    QTRY_VERIFY_WITH_TIMEOUT(scans() > afterwards + 1, patience);

    program.perform({QStringLiteral("Ctrl+Q")});
    QVERIFY(program.waitForFinished(patience));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
}

PLINTHAR_TEST_MAIN(ClockTest)
#include "ClockTest.moc"
