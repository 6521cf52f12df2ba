#include "CallError.h"

namespace Kestro {

QString CallError::description() const
{
    switch (m_kind) {
    case Kind::Http:
        return QStringLiteral("The server answered %1.").arg(m_status);
    case Kind::Redirect:
        return QStringLiteral("Opened %1.").arg(m_text);
    case Kind::Decode:
        return QStringLiteral("The answer did not read: %1.").arg(m_text);
    case Kind::NotFound:
        return QStringLiteral("This page could not be found.");
    case Kind::SignedOut:
        return QStringLiteral("Sign in again.");
    }
    return {};
}

} // namespace Kestro
