#pragma once

#include "ServiceError.h"

namespace Kestro {

// Why a sign-in did not happen. The service's own refusal text is shown as
// it stands.
class AuthError : public ServiceError {
public:
    enum class Kind { Refused, BadCallback };

    static AuthError refused(QString message) { return AuthError(Kind::Refused, std::move(message)); }
    static AuthError badCallback() { return AuthError(Kind::BadCallback, {}); }

    Kind kind() const { return m_kind; }
    QString message() const { return m_message; }
    QString description() const override
    {
        if (m_kind == Kind::Refused)
            return m_message;
        return QStringLiteral("Kestro did not send the app a sign-in. Try again.");
    }
    bool operator==(const AuthError& other) const
    {
        return m_kind == other.m_kind && m_message == other.m_message;
    }

private:
    AuthError(Kind kind, QString message) : m_kind(kind), m_message(std::move(message)) {}
    Kind m_kind;
    QString m_message;
};

} // namespace Kestro
