#pragma once

#include "SecretStore.h"

#include <QHash>

namespace Kestro {

// A secret store that lives in memory: for tests of the sign-in logic and
// for a run that must not touch the user's keyring.
class MemorySecretStore final : public SecretStore {
public:
    QCoro::Task<ReadResult> read(QString key) override
    {
        ++reads;
        const auto it = items.constFind(key);
        co_return ReadResult{it == items.constEnd() ? std::nullopt : std::optional<QByteArray>(*it), {}};
    }
    QCoro::Task<Outcome> write(QString key, QByteArray data) override
    {
        items.insert(key, data);
        co_return Outcome{};
    }
    QCoro::Task<Outcome> remove(QString key) override
    {
        items.remove(key);
        co_return Outcome{};
    }

    QHash<QString, QByteArray> items;
    int reads = 0;
};

} // namespace Kestro
