// The generated records and action calls: every record decodes a sample
// answer and reads back the same after encoding; a missing member or a number
// sent as text fails with its path; the calls send their arguments in place;
// all 397 catalog actions can be called; realistic answers decode.

#include "RecordSamples.h"
#include "SignedInClient.h"

#include "calls/Calls.h"
#include "service/ActionCatalog.h"
#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/MemorySecretStore.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QTest>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

namespace {

// A signed-in client at a fake service, made the process's own.
struct Rig : SignedInClient {
    Rig() { Client::setShared(client.get()); }
    ~Rig() { Client::setShared(nullptr); }
    void answer(const QByteArray& body)
    {
        service.setActionHandler([body](auto&&...) { return TestHttpServer::Response{200, body}; });
    }
    QByteArray lastBody() const { return service.server.requests().last().body; }
};

QByteArray sampleFile(const char* name)
{
    QFile file(QStringLiteral(SAMPLES_DIR "/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Missing sample %s", name);
    return file.readAll();
}

QString failureOf(const RecordSample& sample, const QJsonValue& value)
{
    try {
        sample.roundTrip(value);
    } catch (const DecodingError& error) {
        return error.description();
    }
    return u"(decoded)"_s;
}

} // namespace

class CallsTest : public QObject {
    Q_OBJECT
private slots:
    void everyRecordReadsItsSample()
    {
        const auto& samples = recordSamples();
        QVERIFY(samples.size() > 100);
        for (const RecordSample& sample : samples) {
            const QJsonValue raw = Wire::parse(sample.json);
            QJsonValue once;
            try {
                once = sample.roundTrip(raw);
            } catch (const DecodingError& error) {
                QFAIL(qPrintable(sample.name + u": "_s + error.description()));
            }
            // Encoded again, it reads back to the same record.
            QVERIFY2(sample.roundTrip(once) == once, sample.name.data());
            // A member the record does not declare is ignored.
            QJsonObject extra = raw.toObject();
            extra.insert(u"memberFromANewerService"_s, QJsonArray{1, 2});
            QVERIFY2(sample.roundTrip(extra) == once, sample.name.data());
        }
    }

    void missingAndMistypedMembersFailWithTheirPath()
    {
        int checked = 0;
        for (const RecordSample& sample : recordSamples()) {
            const QJsonObject full = Wire::parse(sample.json).toObject();
            for (QLatin1StringView member : sample.required) {
                QJsonObject without = full;
                without.remove(member);
                QCOMPARE(failureOf(sample, without), u"missing ."_s + member);
                ++checked;
            }
            for (QLatin1StringView member : sample.nonNull) {
                QJsonObject nulled = full;
                nulled.insert(member, QJsonValue::Null);
                QVERIFY2(failureOf(sample, nulled).startsWith(u"."_s + member + u" has no "_s),
                         sample.name.data());
            }
            for (QLatin1StringView member : sample.numbers) {
                QJsonObject text = full;
                text.insert(member, u"12"_s);
                QCOMPARE(failureOf(sample, text), u"."_s + member + u" is not Double"_s);
            }
        }
        QVERIFY(checked > 300);
    }

    void realisticAnswersDecode()
    {
        Rig rig;
        rig.answer(sampleFile("home.json"));
        const Calls::home::HomeResult home = blockingWait(Calls::home::home());
        QCOMPARE(rig.lastBody(), QByteArray(R"({"args":[]})"));
        QCOMPARE(home.first, u"Maya"_s);
        QCOMPARE(home.inbox.minutes, 12.5);
        QCOMPARE(home.kest.size(), 2);
        QCOMPARE(home.routines[0].days, (QList<double>{1, 2, 3, 4, 5}));
        QVERIFY(!home.routines[0].every); // {"$undefined": true}
        QCOMPARE(*home.routines[1].cron, u"0 16 * * 5"_s);
        QCOMPARE(home.templates[0]["name"], JSONValue("Launch plan"));

        QJsonObject broken = QJsonDocument::fromJson(sampleFile("home.json")).object();
        QJsonObject value = broken.value(u"value"_s).toObject();
        value.remove(u"plan"_s);
        broken.insert(u"value"_s, value);
        rig.answer(QJsonDocument(broken).toJson());
        try {
            blockingWait(Calls::home::home());
            QFAIL("a home answer without a plan decoded");
        } catch (const CallError& error) {
            QCOMPARE(error.description(), u"The answer did not read: home/home: missing .value.plan."_s);
        }

        rig.answer(sampleFile("notifications.json"));
        const auto notifications = blockingWait(Calls::app::notificationsAction());
        QCOMPARE(rig.lastBody(), QByteArray(R"({"args":[{"$undefined":true}]})"));
        QCOMPARE(notifications.unread, 1.0);
        QCOMPARE(notifications.items[0].by->handle, std::optional<QString>(u"nova"_s));
        QVERIFY(!notifications.items[1].by);
        QCOMPARE(*notifications.next, u"cursor-2"_s);

        rig.answer(sampleFile("kestchat.json"));
        const auto room = blockingWait(Calls::kest::kestChat(u"m1"_s));
        QCOMPARE(rig.lastBody(), QByteArray(R"({"args":["m1"]})"));
        QCOMPARE(room.messages.size(), 2);
        QCOMPARE(room.messages[0].answering[0].doing,
                 std::optional<QString>(u"Reading the launch checklist"_s));
        QCOMPARE(room.messages[1].at, u"2026-11-20T09:01:00.000Z"_s); // a $date read as its text
        QCOMPARE(room.messages[1].cites[0].wrong->userId, u"u2"_s);
        QCOMPARE(room.traces.value(u"run7"_s).rounds[0].steps[1].tool, u"search_web"_s);
        QCOMPARE(room.traces.value(u"run7"_s).rounds[0].steps[0].chip->host,
                 std::optional<QString>(u"notion.so"_s));
        QVERIFY(room.kest[0].lead);
        // Records compare and hash by value.
        const auto again = blockingWait(Calls::kest::kestChat(u"m1"_s));
        QVERIFY(again == room);
        QCOMPARE(qHash(again), qHash(room));
        QVERIFY(qHash(again.messages[0]) != qHash(again.messages[1]));
    }

    void argumentsKeepTheirPlaces()
    {
        Rig rig;
        rig.answer(R"({"value":{"kind":"referrer","rows":[],"total":0,"others":0}})");
        blockingWait(Calls::app::analyticsBreakdownAction(u"s1"_s, u"referrer"_s));
        QCOMPARE(rig.lastBody(), QByteArray(R"({"args":["s1","referrer",{"$undefined":true}]})"));
        blockingWait(
            Calls::app::analyticsBreakdownAction(u"s1"_s, u"referrer"_s, JSONValue::Object{{"days", 7}}));
        QCOMPARE(rig.lastBody(), QByteArray(R"({"args":["s1","referrer",{"days":7}]})"));

        // A typed input record goes as its encoded form, its date as $date.
        rig.answer(R"({"value":{"done":true}})");
        const Model::ActionOutcome outcome = blockingWait(
            Calls::app::scheduleAction(Calls::app::ScheduleInput{u"run1"_s, WireDate{1.2345}, std::nullopt}));
        QCOMPARE(rig.lastBody(),
                 QByteArray(R"({"args":[{"at":{"$date":"1970-01-01T00:00:01.235Z"},"runId":"run1"}]})"));
        QCOMPARE(outcome.done, std::optional<bool>(true));

        // Actions whose arguments are not declared send exactly what is given.
        rig.answer(R"({"value":{"anything":[1]}})");
        const JSONValue free = blockingWait(Calls::kest::computer({u"nova"_s, JSONValue::absent()}));
        QCOMPARE(rig.lastBody(), QByteArray(R"({"args":["nova",{"$undefined":true}]})"));
        QCOMPARE(free["anything"], JSONValue(JSONValue::Array{1}));
        blockingWait(Calls::kest::computer());
        QCOMPARE(rig.lastBody(), QByteArray(R"({"args":[]})"));
    }

    void refusalsAreOrdinaryResults()
    {
        Rig rig;
        rig.answer(R"({"value":{"error":"That pack is not in your plan."}})");
        const auto result = blockingWait(Calls::app::setPackAction(JSONValue::Object{{"pack", "growth"}}));
        QCOMPARE(result.error, std::optional<QString>(u"That pack is not in your plan."_s));
        // An undeclared changing action reads the shared outcome.
        rig.answer(R"({"value":{"error":"Nothing to export.","ok":false}})");
        const Model::ActionOutcome exported = blockingWait(Calls::app::exportDocAction());
        QCOMPARE(exported.error, std::optional<QString>(u"Nothing to export."_s));
        QCOMPARE(exported.ok, std::optional<bool>(false));
    }

    void everyCatalogActionCanBeCalled()
    {
        Rig rig;
        QHash<QString, QByteArray> samples;
        for (const RecordSample& sample : recordSamples())
            samples.insert(sample.name, sample.json);
        const auto& catalog = actionCatalog();
        QCOMPARE(catalog.size(), 397);
        QSet<QString> seen;
        for (const ActionEntry& entry : catalog) {
            const QString id = entry.module + u"/"_s + entry.action;
            QVERIFY2(!seen.contains(id), qPrintable(id));
            seen.insert(id);
            const QByteArray value = samples.value(u"Calls::"_s + entry.module + u"::"_s + entry.result,
                                                   samples.value(u"Model::"_s + entry.result, "{}"));
            rig.answer("{\"value\":" + value + "}");
            try {
                const QJsonValue encoded = blockingWait(entry.call(entry.module, entry.action, {}));
                QVERIFY2(encoded.isObject(), qPrintable(id));
            } catch (const ServiceError& error) {
                QFAIL(qPrintable(id + u": "_s + error.description()));
            }
            QCOMPARE(rig.service.server.requests().last().target, (u"/api/app/"_s + id).toUtf8());
        }
        // The same name in two modules is two actions.
        QVERIFY(seen.contains(u"crm/list"_s) && seen.contains(u"surveys/list"_s));
        QVERIFY(seen.contains(u"app/hireAgentAction"_s) && seen.contains(u"support/hireAgentAction"_s));
    }
};

QTEST_GUILESS_MAIN(CallsTest)
#include "tst_calls.moc"
