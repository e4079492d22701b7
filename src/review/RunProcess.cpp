// SPDX-License-Identifier: GPL-3.0-or-later
#include "review/RunProcess.h"

#include "model/Files.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringDecoder>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

namespace {

/// The system would take what stands before a NUL for the whole, which is another file or another
/// argument than the caller's.
bool canBePassedOn(const QString &text)
{
    return !text.contains(QChar::Null);
}

ShellResult notStarted(const QString &why)
{
    ShellResult result;
    result.err = why;
    return result;
}

/// What the child does to become the program. QProcess would do the same, but Qt 6.4 loses a
/// descriptor every time that fails: its child shares the parent's memory until then, and
/// overwrites the number that the parent has yet to close.
class ChildStart {
public:
    ChildStart(const QString &executable, const QStringList &arguments,
               const std::optional<QString> &cwd, bool canBeStopped)
        // As an absolute path: for QProcess a mere name would be one to look for in PATH.
        : m_executable(QFileInfo(executable).absoluteFilePath())
        , m_cwd(cwd.value_or(QString()))
        , m_cwdBytes(QFile::encodeName(m_cwd))
        , m_canBeStopped(canBeStopped)
    {
        m_words.append(QFile::encodeName(m_executable));
        for (const QString &argument : arguments)
            m_words.append(argument.toUtf8());
        for (QByteArray &word : m_words)
            m_argv.push_back(word.data());
        m_argv.push_back(nullptr);
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return;
        m_reports = FileDescriptor(ends[0]);
        m_reporter = FileDescriptor(ends[1]);
    }

    bool isReady() const { return m_reporter.isOpen(); }
    const QString &executable() const { return m_executable; }

    /// In the child, where nothing may be called but the system. Returns only to fail. The child
    /// shares the parent's memory: an address sanitizer's marks around variables on the stack would
    /// stay behind there for the parent to stumble over.
    [[gnu::no_sanitize_address]] void becomeProgram() const
    {
        if (m_canBeStopped) {
            // With a group of its own, since git does not stop what it has started. And since a
            // signal from the terminal does not reach that group, it ends with us.
            ::setpgid(0, 0);
            ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        }
        Report report;
        report.inFolder = !m_cwdBytes.isEmpty() && ::chdir(m_cwdBytes.constData()) != 0;
        if (!report.inFolder)
            ::execv(m_argv[0], m_argv.data());
        report.error = errno;
        [[maybe_unused]] const ssize_t written = ::write(m_reporter.get(), &report, sizeof report);
        ::_exit(127);
    }

    /// In the parent, when the child has either become the program or ended: what went wrong.
    std::optional<QString> failure()
    {
        m_reporter = FileDescriptor();
        Report report;
        if (readSome(m_reports, reinterpret_cast<char *>(&report), sizeof report) != sizeof report)
            return std::nullopt;
        return (report.inFolder ? m_cwd : m_executable) + QStringLiteral(": ") +
               systemText(report.error);
    }

private:
    struct Report {
        int error = 0;
        bool inFolder = false;
    };

    const QString m_executable;
    const QString m_cwd;
    const QByteArray m_cwdBytes;
    const bool m_canBeStopped;
    QByteArrayList m_words;
    std::vector<char *> m_argv;
    FileDescriptor m_reports;
    FileDescriptor m_reporter;
};

/// Decoded in one piece and without state, because otherwise a sequence that is cut at the end
/// would get lost, and a byte-order mark too.
QString decoded(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

/// What a program has written. It is taken from QProcess again and again, which would keep all.
class Output {
public:
    bool isCut() const { return m_isCut; }

    void take(QProcess &process)
    {
        const QByteArray out = process.readAllStandardOutput();
        const qsizetype room = mostOutput - m_out.size();
        m_isCut = m_isCut || out.size() > room;
        m_out.append(out.constData(), std::min(out.size(), room));
        m_err += process.readAllStandardError();
        if (m_err.size() > 2 * mostErrors)
            m_err = m_err.last(mostErrors);
    }

    ShellResult result(int status) const
    {
        return {status, decoded(m_out), decoded(m_err.last(std::min(m_err.size(), mostErrors))),
                m_isCut};
    }

private:
    // More than a million lines. Rows made of it take several times as much.
    static constexpr qsizetype mostOutput = 64 << 20;
    static constexpr qsizetype mostErrors = 16 << 20;

    QByteArray m_out;
    QByteArray m_err;
    bool m_isCut = false;
};

/// Reads both streams and writes the input, in slices, until the program has ended (true) or
/// something else has happened.
template <typename Condition>
bool waitUntil(QProcess &process, Output &output, Condition isOver)
{
    // In slices: a signal sent by the thread that requests a stop could reach another process,
    // because only the thread that waits knows whether the number still belongs to this one.
    constexpr int slice = 20;
    while (process.state() != QProcess::NotRunning) {
        if (isOver())
            return false;
        process.waitForFinished(slice);
        output.take(process);
    }
    return true;
}

/// Tells the program and all of its group to end, and sees to it.
void stopGroup(QProcess &process, Output &output)
{
    const auto group = static_cast<pid_t>(process.processId());
    const QDeadlineTimer patience(std::chrono::seconds(1));
    ::kill(-group, SIGTERM);
    if (waitUntil(process, output, [&] { return patience.hasExpired(); }))
        return;
    ::kill(-group, SIGKILL);
    waitUntil(process, output, [] { return false; });
}

} // namespace

ShellResult runProcess(const QString &executable, const QStringList &arguments,
                       const std::optional<QString> &cwd, const std::optional<QString> &input,
                       const std::stop_token &stop)
{
    if (stop.stop_requested())
        return notStarted(systemText(ECANCELED));
    if (!canBePassedOn(executable) || !canBePassedOn(cwd.value_or(QString())) ||
        !std::all_of(arguments.cbegin(), arguments.cend(), canBePassedOn))
        return notStarted(systemText(EINVAL));
    const bool canBeStopped = stop.stop_possible();
    ChildStart start(executable, arguments, cwd, canBeStopped);
    if (!start.isReady())
        return notStarted(systemText(errno));

    QProcess process;
    process.setProgram(start.executable());
    process.setChildProcessModifier([&start] { start.becomeProgram(); });
    if (!input)
        process.setStandardInputFile(QProcess::nullDevice());
    process.start();
    if (!process.waitForStarted(-1))
        return notStarted(process.errorString());
    if (const std::optional<QString> failure = start.failure()) {
        process.waitForFinished(-1);
        return notStarted(*failure);
    }
    if (input) {
        process.write(input->toUtf8());
        process.closeWriteChannel(); // once all of it is written
    }
    Output output;
    const auto isUnwanted = [&] {
        return canBeStopped && (stop.stop_requested() || output.isCut());
    };
    if (!waitUntil(process, output, isUnwanted))
        stopGroup(process, output);
    output.take(process);
    return output.result(process.exitCode());
}
