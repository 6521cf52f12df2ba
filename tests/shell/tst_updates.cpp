// The update check: reading appcasts, ordering versions, and the checks the
// user asks for or the day brings, against a feed served over loopback.

#include "shell/Appcast.h"
#include "shell/Updates.h"

#include "TestHttpServer.h"

#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray feed(const QByteArray& items)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
           "<channel><title>Kestro</title><link>https://example.com/ignored-channel-link</link>" +
           items + "</channel></rss>";
}

QByteArray release(const QByteArray& version, const QByteArray& extra = {})
{
    return "<item><title>Kestro " + version + "</title><sparkle:version>" + version +
           "</sparkle:version><enclosure url=\"https://example.com/kestro-" + version +
           ".tar.gz\" length=\"1\" type=\"application/octet-stream\"/>" + extra + "</item>";
}

} // namespace

class TestUpdates : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { QSettings().remove(Updates::checkedAtKey); }

    void versionsOrderAsReleasesRead_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<int>("order");
        QTest::newRow("tens after nines") << u"1.10"_s << u"1.9"_s << 1;
        QTest::newRow("equal") << u"2.3.1"_s << u"2.3.1"_s << 0;
        QTest::newRow("missing zero") << u"1.0"_s << u"1"_s << 0;
        QTest::newRow("more numbers") << u"1.0.1"_s << u"1.0"_s << 1;
        QTest::newRow("pre-release before release") << u"1.0b1"_s << u"1.0"_s << -1;
        QTest::newRow("beta after alpha") << u"1.0b1"_s << u"1.0a3"_s << 1;
        QTest::newRow("beta numbers") << u"1.0b10"_s << u"1.0b9"_s << 1;
        QTest::newRow("point release after beta") << u"1.0.1"_s << u"1.0b"_s << 1;
        QTest::newRow("build numbers") << u"312"_s << u"98"_s << 1;
        QTest::newRow("leading zeros") << u"1.02"_s << u"1.2"_s << 0;
        QTest::newRow("huge number") << u"1.99999999999999999999999"_s << u"1.5"_s << 1;
        QTest::newRow("empty") << u""_s << u"0.1"_s << -1;
    }
    void versionsOrderAsReleasesRead()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(int, order);
        QCOMPARE(compareVersions(a, b), order);
        QCOMPARE(compareVersions(b, a), -order);
    }

    void appcastsAreRead()
    {
        const QByteArray text = feed(
            "<item><title>Kestro 0.3</title><link>https://example.com/download</link>"
            "<sparkle:version>312</sparkle:version><sparkle:shortVersionString>0.3</"
            "sparkle:shortVersionString>"
            "<sparkle:releaseNotesLink>https://example.com/notes/0.3</sparkle:releaseNotesLink>"
            "<sparkle:minimumSystemVersion>12</sparkle:minimumSystemVersion>"
            "<description><![CDATA[<p>Tasks &amp; <b>boards</b>.</p><ul><li>Faster</li></ul>]]></description>"
            "<enclosure url=\"https://example.com/kestro-0.3.tar.gz\" length=\"1\"/></item>"
            // Older feeds carry the versions on the enclosure.
            "<item><title>Kestro 0.2</title><enclosure url=\"https://example.com/kestro-0.2.tar.gz\" "
            "sparkle:version=\"200\" sparkle:shortVersionString=\"0.2\"/></item>"
            // Without a version, or an address a browser may open, an item is no release.
            "<item><title>No version</title><enclosure url=\"https://example.com/x.tar.gz\"/></item>"
            "<item><title>Script</title><sparkle:version>9</sparkle:version>"
            "<link>javascript:alert(1)</link></item>");
        const auto releases = parseAppcast(text);
        QVERIFY(releases);
        QCOMPARE(releases->size(), 2);
        const AppcastRelease& first = releases->at(0);
        QCOMPARE(first.version, u"312"_s);
        QCOMPARE(first.displayVersion(), u"0.3"_s);
        QCOMPARE(first.downloadPage, QUrl(u"https://example.com/download"_s)); // the link before the file
        QCOMPARE(first.releaseNotes, QUrl(u"https://example.com/notes/0.3"_s));
        QCOMPARE(first.minimumSystemVersion, u"12"_s);
        QCOMPARE(first.description, u"Tasks & boards. Faster"_s);
        QCOMPARE(releases->at(1).version, u"200"_s);
        QCOMPARE(releases->at(1).displayVersion(), u"0.2"_s);
        QCOMPARE(releases->at(1).downloadPage, QUrl(u"https://example.com/kestro-0.2.tar.gz"_s));

        QCOMPARE(parseAppcast("<html><body>Not found</body></html>"), std::nullopt);
        QCOMPARE(parseAppcast(feed(release("1.0")).chopped(20)), std::nullopt); // cut short
        QCOMPARE(parseAppcast(""), std::nullopt);
        QCOMPARE(parseAppcast(feed({}))->size(), 0);
    }

    void theNewestFittingReleaseIsOffered()
    {
        const auto releases = *parseAppcast(
            feed(release("1.2") +
                 release("1.10", "<sparkle:minimumSystemVersion>13</sparkle:minimumSystemVersion>") +
                 release("1.9") + release("1.0")));
        QCOMPARE(newestUpdate(releases, u"1.1"_s, u"12"_s)->version, u"1.9"_s);
        QCOMPARE(newestUpdate(releases, u"1.1"_s, u"13"_s)->version, u"1.10"_s);
        QCOMPARE(newestUpdate(releases, u"1.9"_s, u"12"_s), std::nullopt);
        QCOMPARE(newestUpdate(releases, u"2.0"_s, u"13"_s), std::nullopt);
        // A rolling distribution tells no version: no minimum holds it back.
        QCOMPARE(newestUpdate(releases, u"1.1"_s, u"unknown"_s)->version, u"1.10"_s);
    }

    // What the user sees after asking, for each kind of answer; the offer
    // opens its page and closes.
    void aCheckTheUserAskedForAlwaysSaysHowItWent()
    {
        TestHttpServer server;
        QVERIFY(server.listen());
        QByteArray answer;
        int status = 200;
        server.setHandler([&](const TestHttpServer::Request&) {
            return TestHttpServer::Response{status, answer, "application/rss+xml"};
        });
        Updates updates(QUrl(server.origin().toString() + u"/appcast.xml"_s), u"0.1.0"_s);
        updates.setSystemVersion(u"12"_s);
        QList<QUrl> opened;
        updates.setOpener([&](const QUrl& url) { opened.append(url); });
        QVERIFY(updates.enabled());

        answer = feed(release("0.1.0") + release("0.2.0", "<description>Boards.</description>"));
        updates.checkNow();
        QVERIFY(updates.checking() && updates.showing());
        QCOMPARE(updates.heading(), u"Checking for Updates…"_s);
        QTRY_VERIFY(!updates.checking());
        QVERIFY(updates.showing() && updates.offering());
        QCOMPARE(updates.heading(), u"Kestro 0.2.0 is available."_s);
        QCOMPARE(updates.notes(), u"Boards."_s);
        QCOMPARE(server.requests().last().path(), QByteArray("/appcast.xml"));
        QVERIFY(server.requests().last().header("user-agent").startsWith("Kestro/0.1.0"));
        updates.openDownloadPage();
        QCOMPARE(opened, QList<QUrl>{QUrl(u"https://example.com/kestro-0.2.0.tar.gz"_s)});
        QVERIFY(!updates.showing() && !updates.offering());

        answer = feed(release("0.1.0"));
        updates.checkNow();
        QTRY_VERIFY(!updates.checking());
        QVERIFY(updates.showing());
        QCOMPARE(updates.heading(), u"You're up to date."_s);
        QVERIFY(!updates.offering());
        updates.dismiss();

        // Closed while it checks: it finishes without coming back to say so.
        updates.checkNow();
        updates.dismiss();
        QTRY_VERIFY(!updates.checking());
        QVERIFY(!updates.showing());

        answer = "<html>gateway</html>";
        updates.checkNow();
        QTRY_VERIFY(!updates.checking());
        QVERIFY(updates.showing());
        QCOMPARE(updates.heading(), u"Kestro could not check for updates."_s);
        QVERIFY(updates.detail().contains(u"could not read"_s));
        updates.dismiss();

        status = 503;
        updates.checkNow();
        QTRY_VERIFY(!updates.checking());
        QVERIFY(updates.detail().contains(u"status 503"_s));

        server.close();
        updates.checkNow();
        QTRY_VERIFY(!updates.checking());
        QVERIFY(updates.showing());
        QVERIFY(updates.detail().contains(u"could not be reached"_s));
        QCOMPARE(opened.size(), 1);
    }

    // The background check runs once a day, says nothing unless there is
    // something new, and a build without a feed never asks at all.
    void theDailyCheckSpeaksOnlyOfNews()
    {
        TestHttpServer server;
        QVERIFY(server.listen());
        QByteArray answer = feed(release("0.1.0"));
        server.setHandler([&](const TestHttpServer::Request&) {
            return TestHttpServer::Response{200, answer, "application/rss+xml"};
        });
        Updates updates(QUrl(server.origin().toString() + u"/appcast.xml"_s), u"0.1.0"_s);
        QDateTime now = QDateTime(QDate(2026, 11, 25), QTime(9, 0), Qt::UTC);
        updates.setClock([&] { return now; });

        updates.checkIfDue(); // never checked: due
        QTRY_COMPARE(server.requests().size(), 1);
        QTRY_VERIFY(!updates.checking());
        QVERIFY(!updates.showing()); // up to date, and nobody asked
        QCOMPARE(QSettings().value(Updates::checkedAtKey).toString(), u"2026-11-25T09:00:00.000Z"_s);

        now = now.addSecs(23 * 3600);
        updates.checkIfDue();
        QVERIFY(!updates.checking());
        now = now.addSecs(3600);
        answer = feed(release("0.1.1"));
        updates.checkIfDue();
        QTRY_VERIFY(updates.offering());
        QCOMPARE(server.requests().size(), 2);
        QCOMPARE(updates.offeredVersion(), u"0.1.1"_s);
        QVERIFY(!updates.showing()); // offered quietly, shown when asked to
        updates.showOffer();
        QVERIFY(updates.showing());
        QCOMPARE(updates.heading(), u"Kestro 0.1.1 is available."_s);
        updates.dismiss(); // "Later": closed, still offered
        QVERIFY(!updates.showing() && updates.offering());
        // A check that fails leaves the offer where it was.
        answer = "garbage";
        updates.checkNow();
        QTRY_VERIFY(!updates.checking());
        QVERIFY(updates.offering());
        QCOMPARE(updates.heading(), u"Kestro could not check for updates."_s);
        updates.dismiss();

        // A failure is tried again at the next look, not a day later.
        updates.dismiss();
        now = now.addDays(1);
        answer = "garbage";
        updates.checkIfDue();
        QTRY_VERIFY(!updates.checking());
        QVERIFY(!updates.showing());
        updates.checkIfDue();
        QTRY_COMPARE(server.requests().size(), 4);

        Updates none(QUrl(), u"0.1.0"_s);
        QVERIFY(!none.enabled());
        none.checkIfDue();
        none.checkNow();
        QVERIFY(!none.checking());
    }
};

QTEST_GUILESS_MAIN(TestUpdates)
#include "tst_updates.moc"
