// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Environment.h"

#include "RealProgram.h"
#include "support/AgentDouble.h"
#include "support/TestMain.h"

#include <QDir>

namespace {

const QStringList unwanted =
    QStringLiteral("GIT_DIR GIT_WORK_TREE GIT_INDEX_FILE GIT_PREFIX GIT_COMMON_DIR "
                   "GIT_OBJECT_DIRECTORY GIT_ALTERNATE_OBJECT_DIRECTORIES GIT_NAMESPACE "
                   "GIT_LITERAL_PATHSPECS GIT_GLOB_PATHSPECS GIT_NOGLOB_PATHSPECS "
                   "GIT_ICASE_PATHSPECS GIT_EXTERNAL_DIFF GIT_DIFF_OPTS COLUMNS PS_FORMAT "
                   "PS_PERSONALITY")
        .split(u' ');

/// What a shell, a git hook or a joker may have left in the environment.
QProcessEnvironment hostile()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : unwanted)
        environment.insert(name, QStringLiteral("40"));
    environment.insert(QStringLiteral("PS_FORMAT"), QStringLiteral("comm"));
    environment.insert(QStringLiteral("GIT_OPTIONAL_LOCKS"), QStringLiteral("1"));
    environment.insert(QStringLiteral("GIT_TERMINAL_PROMPT"), QStringLiteral("1"));
    environment.insert(QStringLiteral("INNOCENT"), QStringLiteral("two words"));
    environment.insert(QStringLiteral("GIT_AUTHOR_NAME"), QStringLiteral("Ada"));
    return environment;
}

/// What is wrong with an environment that children get; empty when it is in order.
QString complaint(const QProcessEnvironment &environment)
{
    for (const QString &name : unwanted)
        if (environment.contains(name))
            return name;
    for (const QString &name :
         {QStringLiteral("GIT_OPTIONAL_LOCKS"), QStringLiteral("GIT_TERMINAL_PROMPT")})
        if (environment.value(name) != u"0")
            return name;
    if (environment.value(QStringLiteral("INNOCENT")) != u"two words" ||
        environment.value(QStringLiteral("GIT_AUTHOR_NAME")) != u"Ada")
        return QStringLiteral("the rest");
    return {};
}

/// The environment that the recorder has written for a program.
QProcessEnvironment recorded(const QString &file)
{
    QProcessEnvironment environment;
    const QList<QByteArray> variables = readFile(file).split('\0');
    for (const QByteArray &variable : variables) {
        const qsizetype equals = variable.indexOf('=');
        if (equals > 0)
            environment.insert(QString::fromUtf8(variable.left(equals)),
                               QString::fromUtf8(variable.mid(equals + 1)));
    }
    return environment;
}

} // namespace

class EnvironmentTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void putsTheEnvironmentInOrder();
    void childrenOfTheProgramGetItInOrder();
};

void EnvironmentTest::putsTheEnvironmentInOrder()
{
    const QProcessEnvironment before = QProcessEnvironment::systemEnvironment();
    const QProcessEnvironment with = hostile();
    for (const QString &name : with.keys())
        qputenv(name.toUtf8().constData(), with.value(name).toUtf8());
    QVERIFY(!complaint(QProcessEnvironment::systemEnvironment()).isEmpty());
    prepareEnvironment();
    QCOMPARE(complaint(QProcessEnvironment::systemEnvironment()), QString());
    prepareEnvironment();
    QCOMPARE(complaint(QProcessEnvironment::systemEnvironment()), QString());
    for (const QString &name : QProcessEnvironment::systemEnvironment().keys())
        if (!before.contains(name))
            qunsetenv(name.toUtf8().constData());
}

void EnvironmentTest::childrenOfTheProgramGetItInOrder()
{
    // The real program, shown its Live tab, runs ps and, since there is an agent, lsof.
    const PrivateHome home;
    const QString records = home.path(QStringLiteral("records"));
    QVERIFY(QDir().mkpath(records));
    const AgentDouble agent(QStringLiteral("claude"), addProject(home));

    QProcessEnvironment environment = hostile();
    preload(environment, QStringLiteral(RECORDER));
    environment.insert(QStringLiteral("RECORD_FOLDER"), records);
    environment.insert(QStringLiteral("RECORD_PROGRAMS"), QStringLiteral(" plinthar ps lsof "));
    RealProgram program(home, environment);
    program.pressKeys(QStringLiteral("Ctrl+2"));
    QVERIFY(program.begin());
    for (const QString &tool : {QStringLiteral("ps"), QStringLiteral("lsof")})
        QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(records + u'/' + tool), qPrintable(tool), 120'000);
    // The program itself was started with the hostile one, or the test would show nothing.
    QVERIFY(!complaint(recorded(records + QStringLiteral("/plinthar"))).isEmpty());
    QCOMPARE(complaint(recorded(records + QStringLiteral("/ps"))), QString());
    QCOMPARE(complaint(recorded(records + QStringLiteral("/lsof"))), QString());
    QCOMPARE(program.state(), QProcess::Running);
}

PLINTHAR_TEST_MAIN(EnvironmentTest)
#include "EnvironmentTest.moc"
