#pragma once

#include "Loaded.h"
#include "Route.h"
#include "Router.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

#include <optional>

namespace Kestro {

// What every native page's model stands on: it owns the page's loader,
// loads for the route it is handed, reloads when the app's data changes
// (the router's tick) and after the user's own actions, and applies each
// answer to the lists and values its view reads.
//
// The load is a plain function of the route, not a closure: a coroutine
// that captured the model would outlive it while suspended. The answer comes
// back through the loader, which drops it when the page is gone or a newer
// load started, and only then does the model apply it.
class PageModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(Kestro::Router* router READ router WRITE setRouter NOTIFY routerChanged)
    Q_PROPERTY(Kestro::Route route READ route WRITE setRoute NOTIFY routeChanged)
    Q_PROPERTY(Kestro::Loaded* loader READ loader CONSTANT)

public:
    using Fetch = QCoro::Task<QVariant> (*)(Route route);

    Router* router() const { return m_router; }
    void setRouter(Router* router);
    const Route& route() const { return m_route; }
    // A new route of the same page (its query changed): the model reloads
    // only when the new query changes what it loads.
    void setRoute(const Route& route);
    Loaded* loader() const { return m_loader; }

    // Starts the first load once the view has set the route.
    Q_INVOKABLE void start();
    // Opens a path through the router, as a row or a link in the page does.
    Q_INVOKABLE void open(const QString& path) const;

signals:
    void routerChanged();
    void routeChanged();

protected:
    PageModel(Fetch fetch, QObject* parent, Timers& timers = Timers::system());

    // Applies a new answer (the value the fetch returned).
    virtual void apply(const QVariant& value) = 0;
    // Seconds until the next timed reload after `value`, or none.
    virtual std::optional<double> every(const QVariant& value) const;
    // Whether the move from one route to the other needs a new load.
    virtual bool loadsFor(const Route& from, const Route& to) const;
    // After the user changed something: load again now.
    void reloadAfterAction() { m_loader->reload(); }
    // Moves this page to another address of its own without a new place in
    // the history (words typed into a filter, say).
    void openInPlace(const QString& path) const;

private:
    Fetch m_fetch;
    Route m_route;
    QPointer<Router> m_router;
    Loaded* m_loader;
    bool m_started = false;
};

} // namespace Kestro
