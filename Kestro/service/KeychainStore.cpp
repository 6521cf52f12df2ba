#include "KeychainStore.h"

#include <QCoroSignal>
#include <qt6keychain/keychain.h>

#include <memory>

namespace Kestro {

namespace {

struct LaterDelete {
    void operator()(QObject* object) const { object->deleteLater(); }
};

template <typename Job> std::unique_ptr<Job, LaterDelete> makeJob(const QString& service, const QString& key)
{
    std::unique_ptr<Job, LaterDelete> job(new Job(service));
    job->setAutoDelete(false);
    job->setInsecureFallback(false);
    job->setKey(key);
    return job;
}

SecretStore::Outcome outcomeOf(const QKeychain::Job& job)
{
    using namespace QKeychain;
    switch (job.error()) {
    case NoError:
    case EntryNotFound:
        return {};
    case AccessDenied:
    case AccessDeniedByUser:
        return {SecretStore::Failure::AccessDenied, job.errorString()};
    case NoBackendAvailable:
    case NotImplemented:
        return {SecretStore::Failure::NoBackend, job.errorString()};
    case CouldNotDeleteEntry:
    case OtherError:
        break;
    }
    // Without a Secret Service on the bus the Linux backend reports
    // OtherError with D-Bus's own wording rather than NoBackendAvailable.
    const QString text = job.errorString();
    if (text.contains(QLatin1String("org.freedesktop.secrets")) ||
        text.contains(QLatin1String("was not provided by any .service files")) ||
        text.contains(QLatin1String("Cannot autolaunch D-Bus")) ||
        text.contains(QLatin1String("Could not connect")))
        return {SecretStore::Failure::NoBackend, text};
    return {SecretStore::Failure::Other, text};
}

} // namespace

KeychainStore::KeychainStore(QString service) : m_service(std::move(service)) {}

QCoro::Task<SecretStore::ReadResult> KeychainStore::read(QString key)
{
    auto job = makeJob<QKeychain::ReadPasswordJob>(m_service, key);
    job->start();
    co_await qCoro(job.get(), &QKeychain::Job::finished);
    ReadResult result;
    result.outcome = outcomeOf(*job);
    noteOutcome(result.outcome);
    if (job->error() == QKeychain::NoError)
        result.data = job->binaryData();
    co_return result;
}

QCoro::Task<SecretStore::Outcome> KeychainStore::write(QString key, QByteArray data)
{
    auto job = makeJob<QKeychain::WritePasswordJob>(m_service, key);
    job->setBinaryData(data);
    job->start();
    co_await qCoro(job.get(), &QKeychain::Job::finished);
    const Outcome outcome = outcomeOf(*job);
    noteOutcome(outcome);
    co_return outcome;
}

QCoro::Task<SecretStore::Outcome> KeychainStore::remove(QString key)
{
    auto job = makeJob<QKeychain::DeletePasswordJob>(m_service, key);
    job->start();
    co_await qCoro(job.get(), &QKeychain::Job::finished);
    const Outcome outcome = outcomeOf(*job);
    noteOutcome(outcome);
    co_return outcome;
}

} // namespace Kestro
