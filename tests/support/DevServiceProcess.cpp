#include "DevServiceProcess.h"

#include <QTcpServer>

#include <csignal>
#include <sys/prctl.h>

namespace KestroTest {

void DevServiceProcess::start(const QStringList& extra, const QString& dataDir)
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    m_port = probe.serverPort();
    probe.close();
    m_folder = dataDir.isEmpty() ? m_own.path() : dataDir;
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    m_process.start(m_program, QStringList{QStringLiteral("--port"), QString::number(m_port),
                                           QStringLiteral("--data"), m_folder} +
                                   extra);
    // It prints one line once it listens.
    if (!m_process.waitForReadyRead(10'000))
        qFatal("kestro-devservice did not start: %s", m_process.readAllStandardError().constData());
}

void DevServiceProcess::stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    m_process.waitForFinished(5000);
}

} // namespace KestroTest
