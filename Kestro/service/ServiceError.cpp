#include "ServiceError.h"

namespace Kestro {

const char* ServiceError::what() const noexcept
{
    m_what = description().toUtf8();
    return m_what.constData();
}

QString TransportError::description() const
{
    switch (m_kind) {
    case Kind::Unreachable:
        return QStringLiteral("Kestro could not reach the service (%1). Check the connection and try again.")
            .arg(m_detail);
    case Kind::TimedOut:
        return QStringLiteral("The service did not answer in time. Try again.");
    case Kind::Dropped:
        return QStringLiteral("The connection to the service dropped before the answer arrived. Try again.");
    case Kind::TooLarge:
        return QStringLiteral("The service's answer was larger than Kestro reads (%1), so it was left "
                              "unread. Try again later.")
            .arg(m_detail);
    case Kind::Other:
        break;
    }
    return QStringLiteral("The request to the service failed (%1). Try again.").arg(m_detail);
}

QString JsonSyntaxError::description() const
{
    return QStringLiteral("The service's answer is not JSON (%1).").arg(m_detail);
}

QString describeError(const std::exception& error)
{
    if (const auto* service = dynamic_cast<const ServiceError*>(&error))
        return service->description();
    return QStringLiteral("Something went wrong: %1.").arg(QString::fromUtf8(error.what()));
}

} // namespace Kestro
