#pragma once

#include "WireValues.h"

#include <QByteArray>
#include <QJsonValue>
#include <QString>

#include <optional>

namespace Kestro::Wire {

// The shared encoder's output: compact JSON, keys sorted, "/" written as it
// is, and top-level scalars allowed.
QByteArray write(const QJsonValue& value);

// Parses JSON, top-level scalars allowed. Throws JsonSyntaxError.
QJsonValue parse(const QByteArray& bytes);

// Answer unwiring: {"$date": "<text>"} becomes the text, any one-member
// object keyed "$undefined" becomes null, everything else is walked.
QJsonValue unwire(const QJsonValue& value);

// Unwiring of one value, not its members: what a decoder applies to each
// value it reads, so that decoding a raw answer equals decoding its unwired
// form without rebuilding the tree first.
QJsonValue unwrapMarker(const QJsonValue& value);

// The request side's date form {"$date": "1970-01-01T00:00:01.235Z"}.
QString dateText(const WireDate& date);
QJsonValue writeDate(const WireDate& date);

// The answer side's date reading: an internet date-time with or without a
// fraction of a second. Absent when the text is neither.
std::optional<WireDate> readDate(QStringView text);

} // namespace Kestro::Wire
