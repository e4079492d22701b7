// SPDX-License-Identifier: GPL-3.0-or-later
#include "NeighbourProcess.h"

#include "Finding.h"

NeighbourProcess::NeighbourProcess(const Scratch &scratch, quint64 seed)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), scratch.neighbourFolder());
    // Its git takes locks whenever it likes, as anybody's does.
    environment.remove(QStringLiteral("GIT_OPTIONAL_LOCKS"));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(NEIGHBOUR),
                    QStringList{QString::number(seed), scratch.home().claude()} +
                        scratch.projects());
    require(m_process.waitForStarted(), QStringLiteral("the neighbour does not start"));
    rest(); // until everything of it is there
}

NeighbourProcess::~NeighbourProcess()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished()) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void NeighbourProcess::rest()
{
    m_process.write("rest\n");
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(60'000))
            throw Finding{QStringLiteral("the neighbour does not answer")};
    }
    const QByteArray answer = m_process.readLine();
    require(answer == "resting\n", QStringLiteral("the neighbour: ") + QString::fromUtf8(answer));
}

void NeighbourProcess::goOn()
{
    m_process.write("go on\n");
}

void NeighbourProcess::check()
{
    if (m_process.canReadLine() || m_process.state() != QProcess::Running)
        throw Finding{QStringLiteral("the neighbour: ") +
                      QString::fromUtf8(m_process.readAllStandardOutput())};
}
