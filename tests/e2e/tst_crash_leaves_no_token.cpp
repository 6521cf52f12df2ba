// The access token lives in the secret store and nowhere else on the disk:
// the app signs in, shows a service page (the session cookie now carries the
// token in the web profile) and dies by SIGKILL, so nothing is flushed or
// cleaned up on the way out. Then no file under its home, data, cache,
// config and state folders holds the token or the session cookie. The child also set six
// hundred persistent cookies just before, enough to make a cookie database
// on the disk write at once; none of them is there either, because the web
// profile keeps its cookies in memory only. What an earlier version left on
// the disk (its web profile, the session cookie in it) is gone as well.

#include "DevServiceProcess.h"

#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class TestCrashLeavesNoToken : public QObject {
    Q_OBJECT

private slots:
    void aKilledAppLeavesNoTokenOnTheDisk()
    {
        KestroTest::DevServiceProcess service{QStringLiteral(KESTRO_DEVSERVICE)};
        service.start({u"--auto-approve"_s});
        QTemporaryDir data;
        QVERIFY(data.isValid());

        // Everything the child could write lands in the temporary folder,
        // and no browser opens. (Its tokens go to the session's secret
        // store: scripts/test gives each run a keyring of its own.)
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, data.path());
        for (const char* name : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
            environment.insert(QString::fromLatin1(name), data.filePath(QString::fromLatin1(name).toLower()));
        // An earlier version's web profile and cache, with a session cookie.
        const QStringList oldSiteData = {data.filePath(u"xdg_data_home/Kestro/Kestro/QtWebEngine/Kestro"_s),
                                         data.filePath(u"xdg_cache_home/Kestro/Kestro/QtWebEngine/Kestro"_s)};
        for (const QString& folder : oldSiteData) {
            QVERIFY(QDir().mkpath(folder));
            QFile cookies(folder + u"/Cookies"_s);
            QVERIFY(cookies.open(QIODevice::WriteOnly));
            cookies.write("kestro_app_token=an-old-session");
        }
        QVERIFY(QDir(data.path()).mkpath(u"bin"_s));
        QFile opener(data.filePath(u"bin/xdg-open"_s));
        QVERIFY(opener.open(QIODevice::WriteOnly));
        opener.write("#!/bin/sh\nexit 1\n");
        opener.close();
        opener.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        environment.insert(u"PATH"_s, data.filePath(u"bin"_s) + u':' + environment.value(u"PATH"_s));
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QStringLiteral(KESTRO_CRASH_CHILD), {service.origin().toString()});
        QVERIFY(child.waitForStarted());
        QByteArray said;
        QDeadlineTimer deadline(90'000);
        while (!said.contains('\n') && !deadline.hasExpired() && child.state() == QProcess::Running)
            if (child.waitForReadyRead(500))
                said += child.readAllStandardOutput();
        QVERIFY2(said.startsWith("ready "), said.constData());
        const QByteArray token = said.mid(6).trimmed();
        QVERIFY(token.size() >= 16);
        child.kill(); // SIGKILL: no shutdown, no flush
        QVERIFY(child.waitForFinished());

        QStringList holding;
        QDirIterator files(data.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly))
                continue;
            const QByteArray bytes = file.readAll();
            if (bytes.contains(token) || bytes.contains("kestro_app_token") ||
                bytes.contains("kestro_probe_"))
                holding << file.fileName();
        }
        QVERIFY2(holding.isEmpty(), qPrintable(holding.join(u", "_s)));
        for (const QString& folder : oldSiteData)
            QVERIFY2(!QDir(folder).exists(), qPrintable(folder));
    }
};

QTEST_GUILESS_MAIN(TestCrashLeavesNoToken)
#include "tst_crash_leaves_no_token.moc"
