#include "Codec.h"

namespace Kestro {

WireDate Codec<WireDate>::decode(const QJsonValue& json, CodingPath& path)
{
    // After unwiring a date is a plain string, whether it came as
    // {"$date": ...} or as an ISO text.
    const QString text = Codec<QString>::decode(json, path);
    if (const auto date = Wire::readDate(text))
        return *date;
    throw DecodingError::dataCorrupted(path, QStringLiteral("Not an ISO date: ") + text);
}

WireFile Codec<WireFile>::decode(const QJsonValue& json, CodingPath& path)
{
    const QJsonObject outer = recordObject(json, path);
    path.pushKey(QLatin1StringView("$file"));
    const auto it = outer.constFind(QLatin1StringView("$file"));
    if (it == outer.constEnd())
        throw DecodingError::keyNotFound(path);
    const QJsonObject file = recordObject(Wire::unwrapMarker(*it), path);
    WireFile out;
    out.name = field<QString>(file, QLatin1StringView("name"), path);
    out.type = field<QString>(file, QLatin1StringView("type"), path);
    path.pushKey(QLatin1StringView("data"));
    const auto data = file.constFind(QLatin1StringView("data"));
    if (data == file.constEnd())
        throw DecodingError::keyNotFound(path);
    const QByteArray text = Codec<QString>::decode(*data, path).toLatin1();
    // Strict base64: Qt's decoder skips nothing with AbortOnBase64DecodingErrors
    // except it accepts a missing padding, so whitespace is refused here too.
    const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || text.contains(' ') || text.contains('\n') || text.contains('\r'))
        throw DecodingError::dataCorrupted(path, QStringLiteral("The data of a file is not base64."));
    out.data = *decoded;
    path.pop();
    path.pop();
    return out;
}

QJsonValue Codec<WireFile>::encode(const WireFile& value)
{
    const QJsonObject file{{QStringLiteral("name"), value.name},
                           {QStringLiteral("type"), value.type},
                           {QStringLiteral("data"), QString::fromLatin1(value.data.toBase64())}};
    return QJsonObject{{QStringLiteral("$file"), file}};
}

WireForm Codec<WireForm>::decode(const QJsonValue& json, CodingPath& path)
{
    const QJsonObject outer = recordObject(json, path);
    path.pushKey(QLatin1StringView("$form"));
    const auto it = outer.constFind(QLatin1StringView("$form"));
    if (it == outer.constEnd())
        throw DecodingError::keyNotFound(path);
    const QJsonValue list = Wire::unwrapMarker(*it);
    if (!list.isArray())
        throw DecodingError::typeMismatch(path, TypeName::Array);
    WireForm out;
    const QJsonArray entries = list.toArray();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        path.pushIndex(i);
        const QJsonValue entry = Wire::unwrapMarker(entries.at(i));
        if (!entry.isArray() || entry.toArray().size() != 2)
            throw DecodingError::typeMismatch(path, TypeName::Array);
        QJsonArray pair = entry.toArray();
        pair[0] = Wire::unwrapMarker(pair.at(0));
        pair[1] = Wire::unwrapMarker(pair.at(1));
        path.pushIndex(0);
        const QString name = Codec<QString>::decode(pair.at(0), path);
        path.pop();
        path.pushIndex(1);
        if (pair.at(1).isString())
            out.append(name, pair.at(1).toString());
        else
            out.append(name, Codec<WireFile>::decode(pair.at(1), path));
        path.pop();
        path.pop();
    }
    path.pop();
    return out;
}

QJsonValue Codec<WireForm>::encode(const WireForm& value)
{
    QJsonArray entries;
    for (const WireForm::Entry& entry : value.entries) {
        const QJsonValue item = std::holds_alternative<QString>(entry.value)
                                    ? QJsonValue(std::get<QString>(entry.value))
                                    : Codec<WireFile>::encode(std::get<WireFile>(entry.value));
        entries.append(QJsonArray{entry.name, item});
    }
    return QJsonObject{{QStringLiteral("$form"), entries}};
}

} // namespace Kestro
