// The tokens in the real Secret Service (gnome-keyring in a private session,
// see scripts/headless-session): write, read back from a fresh Auth, delete.

#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/KeychainStore.h"

#include <QTest>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

class KeychainTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (qEnvironmentVariable("KESTRO_TEST_KEYRING") != u"1"_s)
            QSKIP("Needs a Secret Service: run through scripts/test or scripts/headless-session.");
    }

    void storeRoundTrip()
    {
        KeychainStore store(u"kestro.mac"_s);
        const QString key = u"http://127.0.0.1:1/keychain-test"_s;
        QVERIFY(blockingWait(store.write(key, "first")).ok());
        QVERIFY(blockingWait(store.write(key, "second")).ok()); // replaces
        const SecretStore::ReadResult read = blockingWait(store.read(key));
        QVERIFY2(read.outcome.ok(), qPrintable(read.outcome.description()));
        QCOMPARE(read.data, std::optional<QByteArray>("second"));
        QVERIFY(blockingWait(store.remove(key)).ok());
        const SecretStore::ReadResult gone = blockingWait(store.read(key));
        QVERIFY(gone.outcome.ok()); // a missing item is not a failure
        QCOMPARE(gone.data, std::nullopt);
        QVERIFY(blockingWait(store.remove(key)).ok()); // removing twice is fine
    }

    void tokensSurviveARestart()
    {
        KeychainStore store(u"kestro.mac"_s);
        const QUrl origin(u"http://127.0.0.1:2"_s);
        const Tokens tokens{u"access-token-1234"_s, u"refresh-token-1234"_s,
                            QDateTime::currentDateTimeUtc().addSecs(3600)};
        {
            Auth auth(origin, store);
            blockingWait(auth.store(tokens));
        }
        Auth later(origin, store); // as the next launch would
        QCOMPARE(blockingWait(later.accessToken()), std::optional<QString>(tokens.access));
        blockingWait(later.signOut()); // nothing listens there: forgets anyway
        Auth after(origin, store);
        QCOMPARE(blockingWait(after.accessToken()), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(KeychainTest)
#include "tst_keychain.moc"
