#pragma once

#include "SecretStore.h"

namespace Kestro {

// The system's secret store through qtkeychain: Secret Service on Linux,
// Keychain on macOS, Credential Store on Windows. Never falls back to a
// plain-text file.
class KeychainStore final : public SecretStore {
public:
    explicit KeychainStore(QString service);

    QCoro::Task<ReadResult> read(QString key) override;
    QCoro::Task<Outcome> write(QString key, QByteArray data) override;
    QCoro::Task<Outcome> remove(QString key) override;

private:
    QString m_service;
};

} // namespace Kestro
