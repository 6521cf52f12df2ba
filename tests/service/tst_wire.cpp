// Wire values: the shared encoder and decoder, dates, files, forms, answer
// unwiring, JSONValue, Indirect, and the decoding errors' exact texts.

#include "service/CallEffects.h"
#include "service/Codec.h"
#include "service/DecodingError.h"
#include "service/Indirect.h"
#include "service/JSONValue.h"
#include "service/ServiceError.h"
#include "service/Wire.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTest>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

QJsonValue json(const char* text)
{
    return Wire::parse(QByteArray(text));
}

// A self-containing record, as the generated records will be.
struct Node {
    QString title;
    double count = 0;
    std::optional<QString> note;
    QList<Indirect<Node>> children;
    std::optional<WireDate> at;

    static Node decode(const QJsonValue& value, CodingPath& path)
    {
        const QJsonObject object = recordObject(value, path);
        return {field<QString>(object, "title"_L1, path), field<double>(object, "count"_L1, path),
                optionalField<QString>(object, "note"_L1, path),
                field<QList<Indirect<Node>>>(object, "children"_L1, path),
                optionalField<WireDate>(object, "at"_L1, path)};
    }
    QJsonValue encode() const
    {
        QJsonObject object;
        putField(object, "title"_L1, title);
        putField(object, "count"_L1, count);
        putField(object, "note"_L1, note);
        putField(object, "children"_L1, children);
        putField(object, "at"_L1, at);
        return object;
    }
    bool operator==(const Node&) const = default;
};

size_t qHash(const Node& node, size_t seed = 0)
{
    return qHashMulti(seed, node.title, node.count, node.children.size());
}

// Decodes the answer as sent and as unwired; both must fail alike.
QString decodeFailure(const char* answer)
{
    QString failures[2];
    const QJsonValue forms[2] = {json(answer), Wire::unwire(json(answer))};
    for (int i = 0; i < 2; ++i) {
        try {
            decodeValue<Answer<Node>>(forms[i]);
            failures[i] = u"(decoded)"_s;
        } catch (const DecodingError& error) {
            failures[i] = error.description();
        }
    }
    if (failures[0] != failures[1])
        return u"raw: %1; unwired: %2"_s.arg(failures[0], failures[1]);
    return failures[0];
}

} // namespace

class WireTest : public QObject {
    Q_OBJECT
private slots:
    void writesDates_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("half a millisecond rounds away from zero") << 1.2345 << u"1970-01-01T00:00:01.235Z"_s;
        QTest::newRow("0.0004 s after a second") << 1700000000.0004 << u"2023-11-14T22:13:20.000Z"_s;
        QTest::newRow("0.9996 s rolls into the next second")
            << 1700000000.9996 << u"2023-11-14T22:13:21.000Z"_s;
        QTest::newRow("before 1970 keeps a positive fraction") << -0.25 << u"1969-12-31T23:59:59.750Z"_s;
        QTest::newRow("leap day") << 1709251199.5 << u"2024-02-29T23:59:59.500Z"_s;
    }
    void writesDates()
    {
        QFETCH(double, seconds);
        QFETCH(QString, text);
        QCOMPARE(Wire::write(Codec<WireDate>::encode(WireDate{seconds})),
                 QByteArray(R"({"$date":")") + text.toUtf8() + "\"}");
    }

    void readsDates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("seconds"); // NaN: must fail
        QTest::newRow("whole seconds") << u"2024-02-29T23:59:59Z"_s << 1709251199.0;
        QTest::newRow("fraction") << u"2024-02-29T23:59:59.5Z"_s << 1709251199.5;
        QTest::newRow("offset") << u"2024-03-01T01:59:59+02:00"_s << 1709251199.0;
        QTest::newRow("date alone") << u"2024-02-29"_s << qQNaN();
        QTest::newRow("no zone") << u"2024-02-29T23:59:59"_s << qQNaN();
        QTest::newRow("empty fraction") << u"2024-02-29T23:59:59.Z"_s << qQNaN();
        QTest::newRow("not a leap year") << u"2023-02-29T10:00:00Z"_s << qQNaN();
        QTest::newRow("trailing text") << u"2024-02-29T23:59:59Zs"_s << qQNaN();
        QTest::newRow("word") << u"yesterday"_s << qQNaN();
    }
    void readsDates()
    {
        QFETCH(QString, text);
        QFETCH(double, seconds);
        const auto date = Wire::readDate(text);
        if (qIsNaN(seconds)) {
            QVERIFY(!date);
        } else {
            QVERIFY(date);
            QCOMPARE(date->secondsSince1970, seconds);
        }
    }

    void decodesDatesThroughUnwiring()
    {
        // A date member takes a {"$date"} object or a plain ISO text alike.
        const Node fromTag =
            decodeValue<Answer<Node>>(Wire::unwire(json(R"({"value":{"title":"a","count":1,"children":[],
                                                   "at":{"$date":"2024-02-29T23:59:59.5Z"}}})")))
                .value;
        QCOMPARE(fromTag.at->secondsSince1970, 1709251199.5);
        QCOMPARE(
            decodeFailure(R"({"value":{"title":"a","count":1,"children":[],"at":{"$date":"2024-02-29"}}})"),
            u".value.at: Not an ISO date: 2024-02-29"_s);
        // Two members: not a date tag, so it stays an object and cannot be a date.
        QCOMPARE(
            decodeFailure(R"({"value":{"title":"a","count":1,"children":[],"at":{"$date":"x","other":1}}})"),
            u".value.at is not String"_s);
    }

    void unwires_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("expected");
        QTest::newRow("undefined in a list keeps the length")
            << uR"([1,{"$undefined":true},3])"_s << u"[1,null,3]"_s;
        QTest::newRow("undefined with any value") << uR"({"a":{"$undefined":false}})"_s << uR"({"a":null})"_s;
        QTest::newRow("date tag") << uR"({"a":[{"$date":"2024-01-01T00:00:00Z"}]})"_s
                                  << uR"({"a":["2024-01-01T00:00:00Z"]})"_s;
        QTest::newRow("date tag with a non-text value stays")
            << uR"({"$date":{"$undefined":true}})"_s << uR"({"$date":null})"_s;
        QTest::newRow("two members stay")
            << uR"({"$date":"x","other":1})"_s << uR"({"$date":"x","other":1})"_s;
        QTest::newRow("deep") << uR"({"a":{"b":[{"c":{"$undefined":true}}]}})"_s
                              << uR"({"a":{"b":[{"c":null}]}})"_s;
        QTest::newRow("scalar") << u"\"text\""_s << u"\"text\""_s;
    }
    void unwires()
    {
        QFETCH(QString, answer);
        QFETCH(QString, expected);
        QCOMPARE(QString::fromUtf8(Wire::write(Wire::unwire(Wire::parse(answer.toUtf8())))), expected);
    }

    void decodingReadsMarkersAsUnwiringWould()
    {
        QCOMPARE(decodeFailure(R"({"value":{"title":"a","count":1,"children":[{"$undefined":true}]}})"),
                 u".value.children[0] has no Dictionary"_s);
        QCOMPARE(decodeFailure(R"({"value":{"title":"a","count":{"$undefined":true},"children":[]}})"),
                 u".value.count has no Double"_s);
        QCOMPARE(
            decodeFailure(
                R"({"value":{"title":"a","count":1,"children":[{"title":"c","count":2,"children":{"$undefined":false}}]}})"),
            u".value.children[0].children has no Array"_s);
        const QJsonValue fixed = json(R"({"value":{"title":{"$date":"2024-01-01T00:00:00Z"},"count":1,
            "note":{"$undefined":true},"at":{"$date":"2024-02-29T23:59:59.5Z"},
            "children":[{"title":"c","count":2,"children":[],"note":"n","x":{"$date":1}}]}})");
        const Node fromRaw = decodeValue<Answer<Node>>(fixed).value;
        QCOMPARE(fromRaw, decodeValue<Answer<Node>>(Wire::unwire(fixed)).value);
        QCOMPARE(fromRaw.title, u"2024-01-01T00:00:00Z"_s);
        QVERIFY(!fromRaw.note);
        QCOMPARE(fromRaw.at->secondsSince1970, 1709251199.5);
        QCOMPARE(*fromRaw.children[0]->note, u"n"_s);
        // Free-form members come out unwired all the way down.
        QCOMPARE(decodeValue<JSONValue>(json(R"({"a":[{"$undefined":true},{"b":{"$date":"t"}}]})")),
                 decodeValue<JSONValue>(json(R"({"a":[null,{"b":"t"}]})")));
    }

    void encoderSortsKeysAndKeepsSlashes()
    {
        const JSONValue value =
            JSONValue::Object{{"zeta", 1}, {"alpha", "a/b"}, {"mid", JSONValue::Array{true, nullptr}}};
        QCOMPARE(Wire::write(value.toQJsonValue()),
                 QByteArray(R"({"alpha":"a/b","mid":[true,null],"zeta":1})"));
        QCOMPARE(Wire::write(QJsonValue(2.5)), QByteArray("2.5"));
    }

    void jsonValueLiteralsAndCases()
    {
        QCOMPARE(JSONValue(3).kind(), JSONValue::Kind::Number);
        QCOMPARE(JSONValue(2.5).toNumber(), 2.5);
        QCOMPARE(JSONValue(true).kind(), JSONValue::Kind::Bool);
        QCOMPARE(JSONValue("x").kind(), JSONValue::Kind::String);
        QCOMPARE(JSONValue(nullptr).kind(), JSONValue::Kind::Null);
        QCOMPARE(JSONValue(JSONValue::Array{1}).toArray().size(), size_t(1));
        // true decodes as a boolean, never as the number 1.
        const JSONValue decoded = decodeValue<JSONValue>(json(R"([true,1,"1",null,{"k":[]}])"));
        QCOMPARE(decoded.toArray()[0], JSONValue(true));
        QVERIFY(decoded.toArray()[0] != JSONValue(1));
        QCOMPARE(decoded.toArray()[1], JSONValue(1));
        QCOMPARE(decoded.toArray()[2], JSONValue("1"));
        QCOMPARE(decoded.toArray()[4]["k"], JSONValue(JSONValue::Array{}));
        QCOMPARE(JSONValue::absent().toQJsonValue(), json(R"({"$undefined":true})"));
        // Equal values hash alike; different ones (almost always) do not.
        QCOMPARE(qHash(decoded), qHash(decodeValue<JSONValue>(json(R"([true,1,"1",null,{"k":[]}])"))));
        QVERIFY(qHash(JSONValue(true)) != qHash(JSONValue(1)));
    }

    void filesAndForms()
    {
        const WireFile file{u"a.txt"_s, u"text/plain"_s, QByteArray("hello")};
        const QByteArray written = encode(file);
        QCOMPARE(written, QByteArray(R"({"$file":{"data":"aGVsbG8=","name":"a.txt","type":"text/plain"}})"));
        QCOMPARE(decodeValue<WireFile>(Wire::parse(written)), file);

        WireForm form;
        form.append(u"tag"_s, u"one"_s);
        form.append(u"tag"_s, u"two"_s);
        form.append(u"file"_s, file);
        const QByteArray formText = encode(form);
        QCOMPARE(
            formText,
            QByteArray(
                R"({"$form":[["tag","one"],["tag","two"],["file",{"$file":{"data":"aGVsbG8=","name":"a.txt","type":"text/plain"}}]]})"));
        QCOMPARE(decodeValue<WireForm>(Wire::parse(formText)), form);

        for (const char* bad : {R"({"$file":{"name":"a","type":"t","data":"aGVs bG8="}})",
                                R"({"$file":{"name":"a","type":"t","data":"!!!"}})"}) {
            try {
                decodeValue<WireFile>(json(bad));
                QFAIL("bad base64 decoded");
            } catch (const DecodingError& error) {
                QCOMPARE(error.description(), u".$file.data: The data of a file is not base64."_s);
            }
        }
    }

    void indirectIsInvisible()
    {
        Node leaf{u"leaf"_s, 1, std::nullopt, {}, std::nullopt};
        Node root{u"root"_s, 2, u"n"_s, {Indirect<Node>(leaf)}, std::nullopt};
        QCOMPARE(encode(Indirect<Node>(leaf)), encode(leaf));
        const Node back = decodeValue<Node>(Wire::parse(encode(root)));
        QCOMPARE(back, root);
        QCOMPARE(back.children[0]->title, u"leaf"_s);
        QCOMPARE(qHash(Indirect<Node>(leaf)), qHash(Indirect<Node>(leaf)));
    }

    void decodingErrorTexts_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("description");
        QTest::newRow("missing member")
            << uR"({"value":{"count":1,"children":[]}})"_s << u"missing .value.title"_s;
        QTest::newRow("missing deep member")
            << uR"({"value":{"title":"a","count":1,"children":[{"title":"b","count":2,"children":[]},{"count":3,"children":[]}]}})"_s
            << u"missing .value.children[1].title"_s;
        QTest::newRow("number sent as text")
            << uR"({"value":{"title":"a","count":"1","children":[]}})"_s << u".value.count is not Double"_s;
        QTest::newRow("null where a number is required")
            << uR"({"value":{"title":"a","count":null,"children":[]}})"_s << u".value.count has no Double"_s;
        QTest::newRow("bool is not a number")
            << uR"({"value":{"title":"a","count":true,"children":[]}})"_s << u".value.count is not Double"_s;
        QTest::newRow("object where a list is declared")
            << uR"({"value":{"title":"a","count":1,"children":{}}})"_s << u".value.children is not Array"_s;
        QTest::newRow("top level is a list") << u"[1]"_s << u" is not Dictionary"_s;
        QTest::newRow("value missing") << uR"({"notFound":false})"_s << u"missing .value"_s;
    }
    void decodingErrorTexts()
    {
        QFETCH(QString, answer);
        QFETCH(QString, description);
        QCOMPARE(decodeFailure(answer.toUtf8().constData()), description);
    }

    void optionalMembersAndExtras()
    {
        // Extra members are ignored; null and absent optionals read as absent.
        const Node node =
            decodeValue<Answer<Node>>(
                json(R"({"value":{"title":"a","count":1,"children":[],"note":null,"extra":{"x":1}}})"))
                .value;
        QVERIFY(!node.note);
        QVERIFY(!node.at);
        QCOMPARE(encode(node), QByteArray(R"({"children":[],"count":1,"title":"a"})"));
    }

    void parseFailures()
    {
        QVERIFY_THROWS_EXCEPTION(JsonSyntaxError, Wire::parse("<html>"));
        QVERIFY_THROWS_EXCEPTION(JsonSyntaxError, Wire::parse(""));
        QVERIFY_THROWS_EXCEPTION(JsonSyntaxError, Wire::parse("1] , [2"));
        QCOMPARE(Wire::parse("3"), QJsonValue(3));
    }
};

QTEST_GUILESS_MAIN(WireTest)
#include "tst_wire.moc"
