#pragma once

#include "Route.h"

#include <QObject>
#include <QVariantList>
#include <QVariantMap>

namespace Kestro {

// Which page shows a route, and the places the sidebar and the command
// palette offer. A route of a family the product knows shows the service's
// own page; any other in-app path shows the missing-page view.
class PageCatalog : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList places READ places CONSTANT)

public:
    enum class Kind { Web, Missing };
    Q_ENUM(Kind)

    struct Place {
        QString title;
        QString path;
        QString icon;
        QString section; // "main" (with a menu chord), "work" or "settings"
    };

    using QObject::QObject;

    static Kind kindOf(const Route& route);
    // A heading for the route until its page names itself.
    static QString titleOf(const Route& route);
    static const QList<Place>& placeList();

    // {"kind": "web"|"missing", "title": ...} for QML.
    Q_INVOKABLE QVariantMap pageFor(const QString& path) const;
    QVariantList places() const;
};

} // namespace Kestro
