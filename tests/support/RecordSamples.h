#pragma once

#include "service/Codec.h"

#include <QByteArray>
#include <QLatin1StringView>
#include <QList>

namespace Kestro {

// One generated record with a sample answer in which every member is present.
struct RecordSample {
    QLatin1StringView name; // qualified: "Calls::kest::KestChatResult"
    QByteArray json;
    QList<QLatin1StringView> required; // members the record cannot do without
    QList<QLatin1StringView> nonNull;  // of those, the ones null does not stand for
    QList<QLatin1StringView> numbers;  // members declared as numbers
    // Decodes the value (raw, markers and all) and encodes the record again.
    QJsonValue (*roundTrip)(const QJsonValue& value);
};

template <typename R> QJsonValue roundTrip(const QJsonValue& value)
{
    return Codec<R>::encode(decodeValue<R>(value));
}

// Generated from schema/ (calls/Samples.cpp).
const QList<RecordSample>& recordSamples();

} // namespace Kestro
