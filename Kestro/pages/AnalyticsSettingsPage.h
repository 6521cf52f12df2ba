#pragma once

#include "shell/PageModel.h"

#include "calls/analytics.h"

#include <QtQml/qqmlregistration.h>

namespace Kestro {

// "/analytics/settings?site=<id>": the settings of one site that the app
// edits natively: which host names may send visits, cookies, and the
// reports and alerts. Each change is saved at once; a refused one shows
// the service's sentence and the page shows what the service holds.
class AnalyticsSettingsPage : public Kestro::PageModel {
    Q_OBJECT
    QML_NAMED_ELEMENT(AnalyticsSettingsModel)
    Q_PROPERTY(QString siteId READ siteId NOTIFY answered)
    Q_PROPERTY(QString domain READ domain NOTIFY answered)
    Q_PROPERTY(bool canManage READ canManage NOTIFY answered)
    Q_PROPERTY(QStringList allowedHostnames READ allowedHostnames NOTIFY answered)
    Q_PROPERTY(QVariantMap flags READ flags NOTIFY answered)
    Q_PROPERTY(bool saving READ saving NOTIFY savingChanged)
    Q_PROPERTY(QString saveError READ saveError NOTIFY savingChanged)

public:
    explicit AnalyticsSettingsPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);
    // The on/off settings the page shows, in its order.
    static const QStringList& flagNames();

    QString siteId() const { return m_result.site.siteId; }
    QString domain() const { return m_result.site.domain; }
    bool canManage() const { return m_result.canManage; }
    QStringList allowedHostnames() const { return m_result.site.allowedHostnames; }
    QVariantMap flags() const;
    bool saving() const { return m_saving; }
    QString saveError() const { return m_saveError; }

    // Why a typed host name cannot be allowed, or nothing when it can.
    Q_INVOKABLE QString hostProblem(const QString& name) const;
    // Adds a host name (checked first); the problem's sentence, or nothing.
    Q_INVOKABLE QString addHost(const QString& name);
    Q_INVOKABLE void removeHost(const QString& name);
    Q_INVOKABLE void setFlag(const QString& name, bool on);

signals:
    void answered();
    void savingChanged();

protected:
    void apply(const QVariant& value) override;
    bool loadsFor(const Route& from, const Route& to) const override;

private:
    void setHosts(const QStringList& names);
    QCoro::Task<> save(QString siteId, JSONValue changes);

    Calls::analytics::SettingsResult m_result;
    bool m_saving = false;
    QString m_saveError;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::Calls::analytics::SettingsResult)
