#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QString>

#include <optional>

namespace Kestro {

// A per-user store of small secrets, keyed by one text. The sign-in keeps its
// tokens here under the service's address.
class SecretStore {
public:
    enum class Failure { None, NoBackend, AccessDenied, Other };

    struct Outcome {
        Failure failure = Failure::None;
        QString detail;
        bool ok() const { return failure == Failure::None; }
        // A sentence that says what to do; empty when nothing failed.
        QString description() const;
    };

    struct ReadResult {
        std::optional<QByteArray> data; // absent: no item, or the read failed
        Outcome outcome;
    };

    virtual ~SecretStore() = default;
    virtual QCoro::Task<ReadResult> read(QString key) = 0;
    virtual QCoro::Task<Outcome> write(QString key, QByteArray data) = 0;
    // Removing an item that does not exist succeeds.
    virtual QCoro::Task<Outcome> remove(QString key) = 0;

    // The most recent failure, for tools that tell the user why a sign-in was
    // not kept.
    Outcome lastFailure() const { return m_lastFailure; }

protected:
    void noteOutcome(const Outcome& outcome)
    {
        if (!outcome.ok())
            m_lastFailure = outcome;
    }

private:
    Outcome m_lastFailure;
};

} // namespace Kestro
