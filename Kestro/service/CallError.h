#pragma once

#include "ServiceError.h"

namespace Kestro {

// What an action call can fail with besides the network: the service's
// status, a page that moved, an answer of the wrong shape, a missing thing,
// an expired session. Pages show description() unchanged.
class CallError : public ServiceError {
public:
    enum class Kind { Http, Redirect, Decode, NotFound, SignedOut };

    static CallError http(int status, QString body) { return {Kind::Http, status, std::move(body)}; }
    static CallError redirect(QString path) { return {Kind::Redirect, 0, std::move(path)}; }
    static CallError decode(QString message) { return {Kind::Decode, 0, std::move(message)}; }
    static CallError notFound() { return {Kind::NotFound, 0, {}}; }
    static CallError signedOut() { return {Kind::SignedOut, 0, {}}; }

    Kind kind() const { return m_kind; }
    int status() const { return m_status; }
    // The first 500 bytes of an unexpected answer; it travels with the error
    // for logs and tools but is not part of the description.
    QString body() const { return m_kind == Kind::Http ? m_text : QString(); }
    QString path() const { return m_kind == Kind::Redirect ? m_text : QString(); }
    QString message() const { return m_kind == Kind::Decode ? m_text : QString(); }

    QString description() const override;
    bool operator==(const CallError& other) const
    {
        return m_kind == other.m_kind && m_status == other.m_status && m_text == other.m_text;
    }

private:
    CallError(Kind kind, int status, QString text) : m_kind(kind), m_status(status), m_text(std::move(text))
    {
    }

    Kind m_kind;
    int m_status;
    QString m_text;
};

} // namespace Kestro
