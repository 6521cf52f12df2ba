#include "AnalyticsSettingsPage.h"

#include "analytics/AnalyticsFormat.h"
#include "service/ServiceError.h"

#include "calls/app.h"

#include <QPointer>

namespace Kestro {

AnalyticsSettingsPage::AnalyticsSettingsPage(QObject* parent, Timers& timers)
    : PageModel(&AnalyticsSettingsPage::fetch, parent, timers)
{
}

const QStringList& AnalyticsSettingsPage::flagNames()
{
    static const QStringList names{QStringLiteral("cookieless"), QStringLiteral("weeklyReport"),
                                   QStringLiteral("monthlyReport"), QStringLiteral("spikeAlerts"),
                                   QStringLiteral("dropAlerts")};
    return names;
}

QCoro::Task<QVariant> AnalyticsSettingsPage::fetch(Route route)
{
    QString siteId = route.query.value(QStringLiteral("site"));
    if (siteId.isEmpty()) {
        // Without a site named, the first one's.
        const Calls::analytics::SitesResult sites = co_await Calls::analytics::sites();
        if (sites.sites.isEmpty())
            throw std::runtime_error("This workspace has no site to set up yet");
        siteId = sites.sites.first().siteId;
    }
    Arg site{JSONValue(siteId)};
    Calls::analytics::SettingsResult result = co_await Calls::analytics::settings(std::move(site));
    co_return QVariant::fromValue(result);
}

bool AnalyticsSettingsPage::loadsFor(const Route& from, const Route& to) const
{
    return from.query.value(QStringLiteral("site")) != to.query.value(QStringLiteral("site"));
}

void AnalyticsSettingsPage::apply(const QVariant& value)
{
    m_result = value.value<Calls::analytics::SettingsResult>();
    emit answered();
}

QVariantMap AnalyticsSettingsPage::flags() const
{
    const Model::SiteView& site = m_result.site;
    return {{QStringLiteral("cookieless"), site.cookieless},
            {QStringLiteral("weeklyReport"), site.weeklyReport},
            {QStringLiteral("monthlyReport"), site.monthlyReport},
            {QStringLiteral("spikeAlerts"), site.spikeAlerts},
            {QStringLiteral("dropAlerts"), site.dropAlerts}};
}

QString AnalyticsSettingsPage::hostProblem(const QString& typed) const
{
    const QString name = typed.trimmed();
    if (name.isEmpty())
        return QStringLiteral("Type a host name first, like www.example.com.");
    if (name != name.toLower())
        return QStringLiteral("Write the host name in lower-case letters, like www.example.com.");
    if (!AnalyticsFormat::isValidHostName(name))
        return QStringLiteral("\u201c%1\u201d is not a host name. Use letters, digits, hyphens and dots, "
                              "ending in a name like .com, as in www.example.com.")
            .arg(name);
    if (m_result.site.allowedHostnames.contains(name))
        return QStringLiteral("%1 is allowed already.").arg(name);
    return {};
}

QString AnalyticsSettingsPage::addHost(const QString& typed)
{
    const QString problem = hostProblem(typed);
    if (!problem.isEmpty())
        return problem;
    setHosts(m_result.site.allowedHostnames + QStringList{typed.trimmed()});
    return {};
}

void AnalyticsSettingsPage::removeHost(const QString& name)
{
    QStringList names = m_result.site.allowedHostnames;
    if (names.removeOne(name))
        setHosts(names);
}

void AnalyticsSettingsPage::setHosts(const QStringList& names)
{
    JSONValue::Array list;
    for (const QString& name : names)
        list.emplace_back(name);
    // Shown at once; the service's answer settles it.
    m_result.site.allowedHostnames = names;
    emit answered();
    save(siteId(),
         JSONValue(JSONValue::Object{{QStringLiteral("allowedHostnames"), JSONValue(std::move(list))}}));
}

void AnalyticsSettingsPage::setFlag(const QString& name, bool on)
{
    if (!flagNames().contains(name) || flags().value(name).toBool() == on)
        return;
    Model::SiteView& site = m_result.site;
    bool* flag = name == QLatin1String("cookieless")      ? &site.cookieless
                 : name == QLatin1String("weeklyReport")  ? &site.weeklyReport
                 : name == QLatin1String("monthlyReport") ? &site.monthlyReport
                 : name == QLatin1String("spikeAlerts")   ? &site.spikeAlerts
                                                          : &site.dropAlerts;
    *flag = on;
    emit answered();
    save(siteId(), JSONValue(JSONValue::Object{{name, JSONValue(on)}}));
}

QCoro::Task<> AnalyticsSettingsPage::save(QString siteId, JSONValue changes)
{
    QPointer<AnalyticsSettingsPage> self(this);
    m_saving = true;
    m_saveError.clear();
    emit savingChanged();
    QString failure;
    try {
        QList<JSONValue> args;
        args.append(JSONValue(siteId));
        args.append(std::move(changes));
        const Model::ActionOutcome outcome = co_await Calls::app::updateAnalyticsAction(std::move(args));
        if (outcome.error && !outcome.error->isEmpty())
            failure = *outcome.error;
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self)
        co_return;
    m_saving = false;
    m_saveError = failure.isEmpty() ? QString() : QStringLiteral("The change was not saved: ") + failure;
    emit savingChanged();
    // Either way, the page shows what the service now holds.
    reloadAfterAction();
}

} // namespace Kestro
