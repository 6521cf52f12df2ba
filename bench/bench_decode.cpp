// Decoding a 1 MB answer the way a page does (parse, unwire, decode into
// nested records) against a plain QJsonDocument parse of the same bytes,
// measured in the same run. Prints both medians and their ratio.

#include "service/CallEffects.h"
#include "service/Codec.h"
#include "service/Wire.h"

#include "Median.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTextStream>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Watcher {
    QString id;
    QString name;
    std::optional<QString> avatar;
    static Watcher decode(const QJsonValue& json, CodingPath& path)
    {
        const QJsonObject o = recordObject(json, path);
        return {field<QString>(o, "id"_L1, path), field<QString>(o, "name"_L1, path),
                optionalField<QString>(o, "avatar"_L1, path)};
    }
    QJsonValue encode() const { return {}; }
};

struct Task {
    QString id, key, title, status, area, createdAt, updatedAt, description;
    double number = 0, version = 0, waiting = 0;
    bool blocked = false;
    std::optional<QString> error;
    std::optional<WireDate> due;
    QList<Watcher> watchers;
    QList<QString> tags;
    JSONValue meta;
    static Task decode(const QJsonValue& json, CodingPath& path)
    {
        const QJsonObject o = recordObject(json, path);
        Task t;
        t.id = field<QString>(o, "id"_L1, path);
        t.key = field<QString>(o, "key"_L1, path);
        t.title = field<QString>(o, "title"_L1, path);
        t.status = field<QString>(o, "status"_L1, path);
        t.area = field<QString>(o, "area"_L1, path);
        t.createdAt = field<QString>(o, "createdAt"_L1, path);
        t.updatedAt = field<QString>(o, "updatedAt"_L1, path);
        t.description = field<QString>(o, "description"_L1, path);
        t.number = field<double>(o, "number"_L1, path);
        t.version = field<double>(o, "version"_L1, path);
        t.waiting = field<double>(o, "waiting"_L1, path);
        t.blocked = field<bool>(o, "blocked"_L1, path);
        t.error = optionalField<QString>(o, "error"_L1, path);
        t.due = optionalField<WireDate>(o, "due"_L1, path);
        t.watchers = field<QList<Watcher>>(o, "watchers"_L1, path);
        t.tags = field<QList<QString>>(o, "tags"_L1, path);
        t.meta = field<JSONValue>(o, "meta"_L1, path);
        return t;
    }
    QJsonValue encode() const { return {}; }
};

struct TasksResult {
    QList<Task> tasks;
    double total = 0;
    static TasksResult decode(const QJsonValue& json, CodingPath& path)
    {
        const QJsonObject o = recordObject(json, path);
        return {field<QList<Task>>(o, "tasks"_L1, path), field<double>(o, "total"_L1, path)};
    }
    QJsonValue encode() const { return {}; }
};

QByteArray makeAnswer(qsizetype targetBytes)
{
    QByteArray out = R"({"revalidate":[],"value":{"tasks":[)";
    for (int i = 0; out.size() < targetBytes; ++i) {
        if (i > 0)
            out += ',';
        out +=
            QStringLiteral(
                R"({"id":"t%1","key":"KES-%1","title":"Draft the launch e-mail for segment %1","status":"in_progress",)"
                R"("area":"marketing","createdAt":"2026-11-01T10:00:00.000Z","updatedAt":"2026-11-20T08:30:00Z",)"
                R"("description":"Write the **launch** note, cite [1] and link the [brief](/tasks/KES-%1).",)"
                R"("number":%1,"version":3,"waiting":0,"blocked":false,"error":{"$undefined":true},)"
                R"("due":{"$date":"2026-12-01T09:00:00.000Z"},"watchers":[{"id":"u1","name":"Ada"},)"
                R"({"id":"u2","name":"Grace","avatar":"/a/2.png"}],"tags":["launch","email"],)"
                R"("meta":{"source":"kest","score":0.82,"links":[1,2,3]}})")
                .arg(i)
                .toUtf8();
    }
    out += R"(],"total":1000}})";
    return out;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QByteArray answer = makeAnswer(1 << 20);
    const int rounds = 41;
    qsizetype sink = 0;

    const double plain =
        1000 * medianMillis(rounds, [&] { sink += QJsonDocument::fromJson(answer).object().size(); });
    const double full = 1000 * medianMillis(rounds, [&] {
                            // What Client::fetch does: unwiring happens as the decoder reads.
                            const QJsonValue value = Wire::parse(answer);
                            const CallEffects effects = decodeValue<CallEffects>(value);
                            const TasksResult result = decodeValue<Answer<TasksResult>>(value).value;
                            sink += result.tasks.size() + (effects.revalidate ? 1 : 0);
                        });

    const QJsonValue parsed = Wire::parse(answer);
    const double decodeOnly = 1000 * medianMillis(rounds, [&] {
                                  sink += decodeValue<Answer<TasksResult>>(parsed).value.tasks.size();
                              });
    QTextStream(stdout) << "  of which decoding: " << decodeOnly << " us\n";
    QTextStream(stdout) << "answer: " << answer.size() << " bytes, " << rounds << " rounds each\n"
                        << "QJsonDocument parse:              " << plain << " us (median)\n"
                        << "parse + effects + decode (unwiring as it reads): " << full << " us (median)\n"
                        << "ratio: " << QString::number(full / plain, 'f', 2) << "x (goal: at most 2.5x)\n"
                        << "(checksum " << sink << ")\n";
    return 0;
}
