// SPDX-License-Identifier: GPL-3.0-or-later
#include "Property.h"
#include "Target.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <cstdio>
#include <cstdlib>
#include <exception>

/// Checks a target without a fuzzer, so that any compiler can: the inputs that it starts from, the
/// kept ones, and some random changes of both, the same in every run.
///
///   Replay [FILE-OR-FOLDER...]
///   Replay --write FOLDER DICTIONARY    writes what the fuzzer starts from

namespace {

constexpr int changesPerRun = 400;

[[noreturn]] void stop(const QString &why)
{
    std::fputs(qPrintable(why + u'\n'), stderr);
    std::exit(1);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        stop(path + QStringLiteral(": ") + file.errorString());
    return file.readAll();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        stop(path + QStringLiteral(": ") + file.errorString());
}

void writeSeeds(const QString &folder, const QString &dictionary)
{
    QDir().mkpath(folder);
    const QByteArrayList seeds = Target::seeds();
    for (qsizetype i = 0; i < seeds.size(); ++i)
        write(folder + QStringLiteral("/seed-%1").arg(i, 2, 10, QChar(u'0')), seeds[i]);
    QByteArray words;
    for (const QByteArray &word : Target::words())
        words += "\"\\x" + word.toHex(' ').replace(" ", "\\x") + "\"\n";
    write(dictionary, words);
}

QByteArrayList inputsIn(const QStringList &paths)
{
    QByteArrayList inputs;
    for (const QString &path : paths) {
        if (!QFileInfo(path).isDir()) {
            inputs.append(contentOf(path));
            continue;
        }
        for (const QString &name : QDir(path).entryList(QDir::Files))
            inputs.append(contentOf(path + u'/' + name));
    }
    return inputs;
}

void check(const QByteArray &input)
try {
    Target::check(input);
} catch (const std::exception &broken) {
    stop(QStringLiteral("%1\nThe input (as in a URL): %2")
             .arg(QString::fromUtf8(broken.what()),
                  QString::fromLatin1(input.toPercentEncoding(" {}[]\":,\\@+/"))));
}

QByteArray changed(QByteArray input, const QByteArrayList &words, QRandomGenerator &random)
{
    for (int times = random.bounded(1, 6); times > 0; --times) {
        const int place = random.bounded(int(input.size()) + 1);
        switch (random.bounded(4)) {
        case 0:
            input.remove(place, random.bounded(1, 40));
            break;
        case 1:
            input.insert(place, words[random.bounded(int(words.size()))]);
            break;
        case 2:
            input.insert(place, input.mid(random.bounded(int(input.size()) + 1), 80));
            break;
        default:
            input.replace(place, 1, QByteArray(1, static_cast<char>(random.bounded(256))));
        }
    }
    return input;
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    if (arguments.value(0) == QStringLiteral("--write") && arguments.size() == 3) {
        writeSeeds(arguments[1], arguments[2]);
        return 0;
    }
    const QByteArrayList inputs = Target::seeds() + inputsIn(arguments);
    const QByteArrayList words = Target::words();
    for (const QByteArray &input : inputs)
        check(input);
    QRandomGenerator random(1);
    for (int i = 0; i < changesPerRun; ++i)
        check(changed(inputs[random.bounded(int(inputs.size()))], words, random));
    std::printf("%d inputs and %d changes of them: everything holds\n", int(inputs.size()),
                changesPerRun);
}
