#pragma once

// The page framework's types as the pages' QML names them: the route a page
// is handed, the loader (for its states) and the keyed lists.

#include "shell/KeyedListModel.h"
#include "shell/Loaded.h"
#include "shell/PageModel.h"
#include "shell/Route.h"

#include <QtQml/qqml.h>

namespace Kestro::PageTypes {

// A value, as the router hands it out: `route.path`, `route.query.view`.
struct RouteType {
    Q_GADGET
    QML_FOREIGN(Kestro::Route)
    QML_VALUE_TYPE(route)
};
// The router a page opens its rows through (the app's one, set by the host).
struct RouterType {
    Q_GADGET
    QML_FOREIGN(Kestro::Router)
    QML_NAMED_ELEMENT(Router)
    QML_UNCREATABLE("The app has one.")
};
struct LoadedType {
    Q_GADGET
    QML_FOREIGN(Kestro::Loaded)
    QML_NAMED_ELEMENT(Loaded)
    QML_UNCREATABLE("A page model makes its loader.")
};
struct KeyedListModelType {
    Q_GADGET
    QML_FOREIGN(Kestro::KeyedListModel)
    QML_NAMED_ELEMENT(KeyedListModel)
    QML_UNCREATABLE("A page model makes its lists.")
};
struct PageModelType {
    Q_GADGET
    QML_FOREIGN(Kestro::PageModel)
    QML_NAMED_ELEMENT(PageModel)
    QML_UNCREATABLE("Each page has its own model.")
};

} // namespace Kestro::PageTypes
