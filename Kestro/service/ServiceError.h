#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace Kestro {

// The base of every error the service layer throws. description() is the
// sentence a page shows as it stands; what() is the same text in UTF-8.
class ServiceError : public std::exception {
public:
    virtual QString description() const = 0;
    const char* what() const noexcept override;

private:
    mutable QByteArray m_what;
};

// Any failure as the sentence a page shows: a service error's own
// description, anything else with what it says about itself.
QString describeError(const std::exception& error);

// The network did not deliver an HTTP answer: no connection, a time-out, a
// dropped connection. The platform's own text travels in detail().
class TransportError : public ServiceError {
public:
    enum class Kind { Unreachable, TimedOut, Dropped, TooLarge, Other };
    TransportError(Kind kind, QString detail) : m_kind(kind), m_detail(std::move(detail)) {}

    Kind kind() const { return m_kind; }
    QString detail() const { return m_detail; }
    QString description() const override;

private:
    Kind m_kind;
    QString m_detail;
};

// A successful answer whose body is not JSON at all.
class JsonSyntaxError : public ServiceError {
public:
    explicit JsonSyntaxError(QString detail) : m_detail(std::move(detail)) {}
    QString detail() const { return m_detail; }
    QString description() const override;

private:
    QString m_detail;
};

} // namespace Kestro
