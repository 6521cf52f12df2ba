#include "PageCatalog.h"

#include <QHash>

namespace Kestro {

namespace {

// The first segments of the product's pages, with the heading each family
// shows until its page reports its own title.
const QHash<QString, QString>& families()
{
    static const QHash<QString, QString> table{
        {QStringLiteral("activity"), QStringLiteral("Home")},
        {QStringLiteral("analytics"), QStringLiteral("Analytics")},
        {QStringLiteral("brain"), QStringLiteral("Brain")},
        {QStringLiteral("brands"), QStringLiteral("Brands")},
        {QStringLiteral("canvas"), QStringLiteral("Canvas")},
        {QStringLiteral("changelog"), QStringLiteral("Changelog")},
        {QStringLiteral("crm"), QStringLiteral("Customers")},
        {QStringLiteral("disputes"), QStringLiteral("Disputes")},
        {QStringLiteral("documents"), QStringLiteral("Documents")},
        {QStringLiteral("email"), QStringLiteral("Email")},
        {QStringLiteral("emails"), QStringLiteral("Email")},
        {QStringLiteral("embed"), QStringLiteral("Embed")},
        {QStringLiteral("incidents"), QStringLiteral("Incidents")},
        {QStringLiteral("interviews"), QStringLiteral("Interviews")},
        {QStringLiteral("kest"), QStringLiteral("Kest chat")},
        {QStringLiteral("places"), QStringLiteral("Places")},
        {QStringLiteral("product-analytics"), QStringLiteral("Product analytics")},
        {QStringLiteral("projects"), QStringLiteral("Projects")},
        {QStringLiteral("research"), QStringLiteral("Research")},
        {QStringLiteral("routines"), QStringLiteral("Routines")},
        {QStringLiteral("runs"), QStringLiteral("Runs")},
        {QStringLiteral("session-replay"), QStringLiteral("Session replay")},
        {QStringLiteral("sessions"), QStringLiteral("Sessions")},
        {QStringLiteral("settings"), QStringLiteral("Settings")},
        {QStringLiteral("setup"), QStringLiteral("Setup")},
        {QStringLiteral("support"), QStringLiteral("Support")},
        {QStringLiteral("surveys"), QStringLiteral("Surveys")},
        {QStringLiteral("tasks"), QStringLiteral("Tasks")},
        {QStringLiteral("tests"), QStringLiteral("Tests")},
        {QStringLiteral("vault"), QStringLiteral("Vault")},
    };
    return table;
}

} // namespace

PageCatalog::Kind PageCatalog::kindOf(const Route& route)
{
    if (route.segments.isEmpty() || !families().contains(route.segments.first()))
        return Kind::Missing;
    return Kind::Web;
}

QString PageCatalog::titleOf(const Route& route)
{
    if (route.segments.isEmpty())
        return QStringLiteral("Kestro");
    if (route.segments.first() == QLatin1String("activity") &&
        route.query.value(QStringLiteral("view")) == QLatin1String("you"))
        return QStringLiteral("Needs you");
    return families().value(route.segments.first(), QStringLiteral("Not found"));
}

const QList<PageCatalog::Place>& PageCatalog::placeList()
{
    static const QList<Place> list{
        {QStringLiteral("Home"), QStringLiteral("/activity"), QStringLiteral("house"),
         QStringLiteral("main")},
        {QStringLiteral("Needs you"), QStringLiteral("/activity?view=you"), QStringLiteral("hand"),
         QStringLiteral("main")},
        {QStringLiteral("Tasks"), QStringLiteral("/tasks"), QStringLiteral("list-checks"),
         QStringLiteral("main")},
        {QStringLiteral("Kest chat"), QStringLiteral("/kest"), QStringLiteral("messages-square"),
         QStringLiteral("main")},
        {QStringLiteral("Projects"), QStringLiteral("/projects"), QStringLiteral("folder-kanban"),
         QStringLiteral("work")},
        {QStringLiteral("Analytics"), QStringLiteral("/analytics"), QStringLiteral("chart-line"),
         QStringLiteral("work")},
        {QStringLiteral("Customers"), QStringLiteral("/crm/customers"), QStringLiteral("users"),
         QStringLiteral("work")},
        {QStringLiteral("Email"), QStringLiteral("/email"), QStringLiteral("mail"), QStringLiteral("work")},
        {QStringLiteral("Support"), QStringLiteral("/support"), QStringLiteral("life-buoy"),
         QStringLiteral("work")},
        {QStringLiteral("Incidents"), QStringLiteral("/incidents"), QStringLiteral("triangle-alert"),
         QStringLiteral("work")},
        {QStringLiteral("Tests"), QStringLiteral("/tests"), QStringLiteral("flask-conical"),
         QStringLiteral("work")},
        {QStringLiteral("Surveys"), QStringLiteral("/surveys"), QStringLiteral("clipboard-list"),
         QStringLiteral("work")},
        {QStringLiteral("Sessions"), QStringLiteral("/sessions"), QStringLiteral("play"),
         QStringLiteral("work")},
        {QStringLiteral("Settings"), QStringLiteral("/settings"), QStringLiteral("settings"),
         QStringLiteral("settings")},
    };
    return list;
}

QVariantMap PageCatalog::pageFor(const QString& path) const
{
    const Route route = Route::parse(path);
    return {{QStringLiteral("kind"),
             kindOf(route) == Kind::Web ? QStringLiteral("web") : QStringLiteral("missing")},
            {QStringLiteral("title"), titleOf(route)}};
}

QVariantList PageCatalog::places() const
{
    QVariantList out;
    for (const Place& place : placeList())
        out.append(QVariantMap{{QStringLiteral("title"), place.title},
                               {QStringLiteral("path"), place.path},
                               {QStringLiteral("icon"), place.icon},
                               {QStringLiteral("section"), place.section}});
    return out;
}

} // namespace Kestro
