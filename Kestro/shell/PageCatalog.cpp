#include "PageCatalog.h"

namespace Kestro {

namespace {

using Kind = PageCatalog::Kind;

// One row of the route table. The pattern's segments match one segment
// each, "*" any one, and a last "**" whatever follows (nothing included).
// The first row that matches wins.
struct Row {
    const char* pattern;
    Kind kind;
    const char* component; // native pages: the file under qrc:/Kestro/Pages
    const char* title;
    const char* youTitle = nullptr; // the title under "?view=you"
    // How many leading segments make the page one object (0: the whole
    // path): a teammate's chat stays one page from thread to thread.
    int kept = 0;
    // A query item that sends the route on to the rows below: the page
    // shows part of what the service's own page does, and an address that
    // names another part is the service's.
    const char* otherPart = nullptr;
};

const Row table[] = {
    {"activity", Kind::Native, "ActivityPage.qml", "Home", "Needs you"},
    {"kest", Kind::Native, "KestRoomPage.qml", "Kest chat"},
    {"kest/*/runs/*", Kind::Native, "RunPage.qml", "Run"},
    {"kest/*/chat", Kind::Native, "DirectChatPage.qml", "Chat", nullptr, 3},
    {"kest/*/chat/*", Kind::Native, "DirectChatPage.qml", "Chat", nullptr, 3},
    {"analytics", Kind::Native, "AnalyticsPage.qml", "Analytics"},
    {"tasks", Kind::Native, "TasksPage.qml", "Tasks"},
    {"analytics/settings", Kind::Native, "AnalyticsSettingsPage.qml", "Site settings", nullptr, 0, "tab"},
    // The product's other families are the service's own pages for now.
    {"analytics/**", Kind::Web, nullptr, "Analytics"},
    {"brain/**", Kind::Web, nullptr, "Brain"},
    {"brands/**", Kind::Web, nullptr, "Brands"},
    {"canvas/**", Kind::Web, nullptr, "Canvas"},
    {"changelog/**", Kind::Web, nullptr, "Changelog"},
    {"crm/**", Kind::Web, nullptr, "Customers"},
    {"disputes/**", Kind::Web, nullptr, "Disputes"},
    {"documents/**", Kind::Web, nullptr, "Documents"},
    {"email/**", Kind::Web, nullptr, "Email"},
    {"emails/**", Kind::Web, nullptr, "Email"},
    {"embed/**", Kind::Web, nullptr, "Embed"},
    {"incidents/**", Kind::Web, nullptr, "Incidents"},
    {"interviews/**", Kind::Web, nullptr, "Interviews"},
    {"kest/**", Kind::Web, nullptr, "Kest chat"},
    {"places/**", Kind::Web, nullptr, "Places"},
    {"product-analytics/**", Kind::Web, nullptr, "Product analytics"},
    {"projects/**", Kind::Web, nullptr, "Projects"},
    {"research/**", Kind::Web, nullptr, "Research"},
    {"routines/**", Kind::Web, nullptr, "Routines"},
    {"runs/**", Kind::Web, nullptr, "Runs"},
    {"session-replay/**", Kind::Web, nullptr, "Session replay"},
    {"sessions/**", Kind::Web, nullptr, "Sessions"},
    {"settings/**", Kind::Web, nullptr, "Settings"},
    {"setup/**", Kind::Web, nullptr, "Setup"},
    {"support/**", Kind::Web, nullptr, "Support"},
    {"surveys/**", Kind::Web, nullptr, "Surveys"},
    {"tasks/**", Kind::Web, nullptr, "Tasks"},
    {"tests/**", Kind::Web, nullptr, "Tests"},
    {"vault/**", Kind::Web, nullptr, "Vault"},
};

bool matches(QLatin1StringView pattern, const QStringList& segments)
{
    const auto parts = QString(pattern).split(QLatin1Char('/'));
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (parts[i] == QLatin1String("**") && i == parts.size() - 1)
            return true;
        if (i >= segments.size())
            return false;
        if (parts[i] != QLatin1String("*") && parts[i] != segments[i])
            return false;
    }
    return parts.size() == segments.size();
}

} // namespace

PageCatalog::Page PageCatalog::pageOf(const Route& route)
{
    for (const Row& row : table) {
        if (!matches(QLatin1StringView(row.pattern), route.segments))
            continue;
        if (row.otherPart && route.query.contains(QLatin1String(row.otherPart)))
            continue;
        Page page;
        page.kind = row.kind;
        page.title = QString::fromLatin1(
            row.youTitle && route.query.value(QStringLiteral("view")) == QLatin1String("you") ? row.youTitle
                                                                                              : row.title);
        if (row.kind == Kind::Native) {
            page.component = QStringLiteral("qrc:/Kestro/Pages/") + QLatin1String(row.component);
            const QStringList kept = row.kept > 0 ? route.segments.mid(0, row.kept) : route.segments;
            page.identity = page.component + QStringLiteral(" /") + kept.join(QLatin1Char('/'));
        } else {
            // The service's pages share one web view that follows the path.
            page.identity = QStringLiteral("web");
        }
        return page;
    }
    Page missing;
    missing.identity = QStringLiteral("missing");
    missing.title = route.segments.isEmpty() ? QStringLiteral("Kestro") : QStringLiteral("Not found");
    return missing;
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
    const Page page = pageOf(Route::parse(path));
    static const char* const kinds[] = {"native", "web", "missing"};
    return {{QStringLiteral("kind"), QString::fromLatin1(kinds[int(page.kind)])},
            {QStringLiteral("component"), page.component},
            {QStringLiteral("identity"), page.identity},
            {QStringLiteral("title"), page.title}};
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
