#pragma once

#include <QHashFunctions>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace Kestro {

// Which page shows: the in-app path as opened ("/crm/customers"), its
// percent-decoded segments ("crm", "customers") and its query items.
struct Route {
    Q_GADGET
    Q_PROPERTY(QString path MEMBER path CONSTANT)
    Q_PROPERTY(QStringList segments MEMBER segments CONSTANT)
    Q_PROPERTY(QVariantMap query READ queryMap CONSTANT)
    Q_PROPERTY(QString area READ area CONSTANT)
    Q_PROPERTY(QString text READ text CONSTANT)

public:
    QString path;
    QStringList segments;
    QMap<QString, QString> query;

    // Builds a route from a path; a text without a leading "/" gets one.
    static Route parse(const QString& text);

    // "/" + the segments joined with "/".
    QString canonicalPath() const;
    // The path with its query again, for display and for reopening.
    QString text() const;
    // The product area of the first segment ("crm", "engineering", "tasks",
    // ...), or empty when the segment belongs to none.
    QString area() const;
    QVariantMap queryMap() const;

    bool operator==(const Route& other) const = default;
};

size_t qHash(const Route& route, size_t seed = 0);

// False for "/" and the web site's own prefixes ("/docs", "/pricing", ...):
// those pages open in the browser, never inside the app.
bool isInAppPath(const QString& path);

} // namespace Kestro
