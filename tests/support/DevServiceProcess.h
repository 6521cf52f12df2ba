#pragma once

#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace KestroTest {

// kestro-devservice on a free port of 127.0.0.1 with a data folder of its
// own (or the one given), for tests and benchmarks. It stops with this
// object, and with this process even when the process is killed.
class DevServiceProcess {
public:
    explicit DevServiceProcess(QString program) : m_program(std::move(program)) {}
    ~DevServiceProcess() { stop(); }

    // Starts it and waits until it says it listens; stops the program with
    // the service's own error output when it does not.
    void start(const QStringList& extra = {}, const QString& dataDir = {});
    void stop();

    quint16 port() const { return m_port; }
    QString folder() const { return m_folder; }
    QUrl origin() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port)); }

private:
    QString m_program;
    QTemporaryDir m_own;
    QProcess m_process;
    quint16 m_port = 0;
    QString m_folder;
};

} // namespace KestroTest
