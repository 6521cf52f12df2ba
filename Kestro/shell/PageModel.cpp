#include "PageModel.h"

#include "Router.h"
#include "Visibility.h"

namespace Kestro {

PageModel::PageModel(Fetch fetch, QObject* parent, Timers& timers)
    : QObject(parent), m_fetch(fetch),
      m_loader(new Loaded([this] { return m_fetch(m_route); },
                          [this](const QVariant& value) { return every(value); }, Visibility::shared(),
                          timers, this))
{
    connect(m_loader, &Loaded::valueChanged, this, [this] { apply(m_loader->value()); });
}

void PageModel::setRouter(Router* router)
{
    if (router == m_router)
        return;
    if (m_router)
        disconnect(m_router, nullptr, this, nullptr);
    m_router = router;
    // The app's data changed (a web page said so, or a workspace switch):
    // a page on screen loads again; one still waiting for its first answer
    // is about to get fresh data anyway.
    if (m_router)
        connect(m_router, &Router::tickChanged, this, [this] {
            if (m_started && m_loader->loads() > 0)
                m_loader->reload();
        });
    emit routerChanged();
}

void PageModel::setRoute(const Route& route)
{
    if (route == m_route)
        return;
    const Route before = std::exchange(m_route, route);
    emit routeChanged();
    if (m_started && loadsFor(before, m_route))
        m_loader->reload();
}

void PageModel::start()
{
    if (m_started)
        return;
    m_started = true;
    m_loader->start();
}

void PageModel::open(const QString& path) const
{
    if (m_router)
        m_router->open(path);
}

void PageModel::openInPlace(const QString& path) const
{
    if (m_router)
        m_router->open(path, true);
}

std::optional<double> PageModel::every(const QVariant&) const
{
    return std::nullopt;
}

bool PageModel::loadsFor(const Route& from, const Route& to) const
{
    return from.query != to.query;
}

} // namespace Kestro
