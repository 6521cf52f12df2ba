#pragma once

#include "Client.h"
#include "Codec.h"

#include <QCoroTask>
#include <QLatin1StringView>
#include <QList>

namespace Kestro {

// Every action the service declares, for tools that call them by name:
// the call decodes through the action's result record and hands back the
// record encoded again, so a shape mismatch fails with its path.
struct ActionEntry {
    QLatin1StringView module;
    QLatin1StringView action;
    QLatin1StringView result; // the result record's name
    QCoro::Task<QJsonValue> (*call)(QString module, QString action, QList<JSONValue> args);
};

// Generated from schema/ (calls/Catalog.cpp).
const QList<ActionEntry>& actionCatalog();

template <typename R>
QCoro::Task<QJsonValue> callEncoded(QString module, QString action, QList<JSONValue> args)
{
    const R result = co_await Client::shared().fetch<R>(module, action, std::move(args));
    co_return Codec<R>::encode(result);
}

} // namespace Kestro
