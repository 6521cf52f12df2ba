#include "SecretStore.h"

namespace Kestro {

QString SecretStore::Outcome::description() const
{
    switch (failure) {
    case Failure::None:
        return {};
    case Failure::NoBackend:
        return QStringLiteral("No secret store is running: install or unlock GNOME Keyring or KWallet.");
    case Failure::AccessDenied:
        return QStringLiteral("The secret store refused access: unlock it and try again.");
    case Failure::Other:
        break;
    }
    return QStringLiteral("The secret store failed (%1): check that GNOME Keyring or KWallet is running and "
                          "unlocked.")
        .arg(detail);
}

} // namespace Kestro
