#pragma once

#include "Route.h"

#include <QObject>
#include <QVariantList>
#include <QVariantMap>

namespace Kestro {

// The route table: which page shows a route (a native page, the service's
// own web page, or the missing-page view) and its title, plus the places
// the sidebar and the command palette offer. Adding a native page is one
// row in the table and the page's files.
class PageCatalog : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList places READ places CONSTANT)

public:
    enum class Kind { Native, Web, Missing };
    Q_ENUM(Kind)

    struct Place {
        QString title;
        QString path;
        QString icon;
        QString section; // "main" (with a menu chord), "work" or "settings"
    };

    // What shows a route. Two routes with the same identity are the same
    // page object: only their query differs, and the page is handed the new
    // route instead of being built again.
    struct Page {
        Kind kind = Kind::Missing;
        QString component; // the page's QML file, for a native page
        QString identity;
        QString title;
    };

    using QObject::QObject;

    static Page pageOf(const Route& route);
    static Kind kindOf(const Route& route) { return pageOf(route).kind; }
    // A heading for the route until its page names itself.
    static QString titleOf(const Route& route) { return pageOf(route).title; }
    static const QList<Place>& placeList();

    // {"kind": "native"|"web"|"missing", "component", "identity", "title"}.
    Q_INVOKABLE QVariantMap pageFor(const QString& path) const;
    QVariantList places() const;
};

} // namespace Kestro
