#include "Wire.h"

#include "ServiceError.h"

#include <QDate>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTime>

#include <cmath>

namespace Kestro::Wire {

QByteArray write(const QJsonValue& value)
{
    // QJsonObject keeps its keys sorted and the writer leaves "/" alone, so
    // the document writer is the shared encoder. It only writes objects and
    // arrays at the top, so a scalar is written inside a list and unwrapped.
    if (value.isObject())
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    if (value.isArray())
        return QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact);
    const QByteArray wrapped = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return wrapped.mid(1, wrapped.size() - 2);
}

QJsonValue parse(const QByteArray& bytes)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error == QJsonParseError::NoError) {
        if (document.isObject())
            return document.object();
        return document.array();
    }
    // Qt's reader wants an object or an array at the top; a bare scalar is
    // read inside a list of exactly one.
    QJsonParseError wrappedError;
    const QJsonDocument wrapped =
        QJsonDocument::fromJson(QByteArray("[") + bytes + QByteArray("]"), &wrappedError);
    if (wrappedError.error == QJsonParseError::NoError && wrapped.array().size() == 1)
        return wrapped.array().first();
    if (bytes.trimmed().isEmpty())
        throw JsonSyntaxError(QStringLiteral("the body is empty"));
    throw JsonSyntaxError(QStringLiteral("%1 at offset %2").arg(error.errorString()).arg(error.offset));
}

namespace {

// Returns true and sets `value` when something below it changed, so an
// answer without markers is walked but never copied.
bool unwireInPlace(QJsonValue& value)
{
    if (value.isArray()) {
        QJsonArray items = value.toArray();
        bool changed = false;
        for (qsizetype i = 0, n = items.size(); i < n; ++i) {
            QJsonValue item = items.at(i);
            if (unwireInPlace(item)) {
                items.replace(i, item);
                changed = true;
            }
        }
        if (changed)
            value = items;
        return changed;
    }
    if (!value.isObject())
        return false;
    QJsonObject members = value.toObject();
    if (members.size() == 1) {
        const auto only = members.constBegin();
        if (only.key() == QLatin1String("$date") && only.value().isString()) {
            value = only.value();
            return true;
        }
        if (only.key() == QLatin1String("$undefined")) {
            value = QJsonValue::Null;
            return true;
        }
    }
    bool changed = false;
    for (auto it = members.begin(); it != members.end(); ++it) {
        QJsonValue member = it.value();
        if (unwireInPlace(member)) {
            it.value() = member;
            changed = true;
        }
    }
    if (changed)
        value = members;
    return changed;
}

} // namespace

QJsonValue unwrapMarker(const QJsonValue& value)
{
    if (!value.isObject())
        return value;
    const QJsonObject members = value.toObject();
    if (members.size() != 1)
        return value;
    const auto only = members.constBegin();
    if (only.key() == QLatin1String("$date") && only.value().isString())
        return only.value();
    if (only.key() == QLatin1String("$undefined"))
        return QJsonValue::Null;
    return value;
}

QJsonValue unwire(const QJsonValue& value)
{
    QJsonValue out = value;
    unwireInPlace(out);
    return out;
}

QString dateText(const WireDate& date)
{
    const double ms = std::round(date.secondsSince1970 * 1000.0); // halves away from zero
    if (!std::isfinite(ms) || std::fabs(ms) > 9.2e18)
        qFatal("A date outside the range of a 64-bit millisecond count cannot be written.");
    const qint64 whole = qint64(ms);
    qint64 millis = whole % 1000;
    if (millis < 0)
        millis += 1000;
    const qint64 seconds = (whole - millis) / 1000;
    const QDateTime instant = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    return instant.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) +
           QStringLiteral(".%1Z").arg(millis, 3, 10, QLatin1Char('0'));
}

QJsonValue writeDate(const WireDate& date)
{
    return QJsonObject{{QStringLiteral("$date"), dateText(date)}};
}

namespace {

bool digits(QStringView text, qsizetype from, qsizetype count, int& out)
{
    if (from + count > text.size())
        return false;
    int value = 0;
    for (qsizetype i = from; i < from + count; ++i) {
        const char16_t c = text[i].unicode();
        if (c < u'0' || c > u'9')
            return false;
        value = value * 10 + (c - u'0');
    }
    out = value;
    return true;
}

bool isChar(QStringView text, qsizetype at, char16_t c)
{
    return at < text.size() && text[at].unicode() == c;
}

} // namespace

std::optional<WireDate> readDate(QStringView text)
{
    // yyyy-MM-ddTHH:mm:ss[.f+](Z|±HH:mm), nothing before or after.
    int year, month, day, hour, minute, second;
    if (!digits(text, 0, 4, year) || !isChar(text, 4, u'-') || !digits(text, 5, 2, month) ||
        !isChar(text, 7, u'-') || !digits(text, 8, 2, day) || !isChar(text, 10, u'T') ||
        !digits(text, 11, 2, hour) || !isChar(text, 13, u':') || !digits(text, 14, 2, minute) ||
        !isChar(text, 16, u':') || !digits(text, 17, 2, second))
        return std::nullopt;
    qsizetype at = 19;
    double fraction = 0;
    if (isChar(text, at, u'.')) {
        ++at;
        const qsizetype start = at;
        double scale = 0.1;
        while (at < text.size() && text[at] >= u'0' && text[at] <= u'9') {
            fraction += (text[at].unicode() - u'0') * scale;
            scale /= 10;
            ++at;
        }
        if (at == start)
            return std::nullopt;
    }
    int offsetSeconds = 0;
    if (isChar(text, at, u'Z')) {
        ++at;
    } else if (isChar(text, at, u'+') || isChar(text, at, u'-')) {
        const int sign = isChar(text, at, u'-') ? -1 : 1;
        int offsetHours, offsetMinutes;
        if (!digits(text, at + 1, 2, offsetHours) || !isChar(text, at + 3, u':') ||
            !digits(text, at + 4, 2, offsetMinutes) || offsetHours > 23 || offsetMinutes > 59)
            return std::nullopt;
        offsetSeconds = sign * (offsetHours * 3600 + offsetMinutes * 60);
        at += 6;
    } else {
        return std::nullopt;
    }
    if (at != text.size())
        return std::nullopt;
    const QDate date(year, month, day);
    const QTime time(hour, minute, second);
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    const qint64 seconds = QDateTime(date, time, Qt::UTC).toSecsSinceEpoch() - offsetSeconds;
    return WireDate{double(seconds) + fraction};
}

} // namespace Kestro::Wire
