#pragma once

#include "shell/KeyedListModel.h"
#include "shell/PageModel.h"

#include "analytics/AnalyticsFormat.h"

#include "calls/analytics.h"
#include "calls/app.h"

#include <QDate>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// The range "/analytics" shows: a preset ("today", "7d", "30d") or
// "custom" with its first and last day. The range before it has the same
// length and ends the day before it starts; the headline compares the two.
struct AnalyticsRange {
    QString key = QStringLiteral("7d");
    QDate from;
    QDate to;

    // The longest custom range, in days.
    static constexpr int longest = 400;

    // From the page's address ("?range=30d", "?range=custom&from=…&to=…");
    // anything else (days to come, longer than `longest`) is the last 7
    // days. `today` is the site's.
    static AnalyticsRange fromQuery(const QString& range, const QString& from, const QString& to,
                                    QDate today);
    // How the service is asked for it.
    JSONValue toJson() const;
    AnalyticsRange previous() const;
    // "Today", "Last 7 days", "3 Mar – 9 Mar 2026".
    QString label() const;
};

// One breakdown row as the page shows it.
struct BreakdownRow {
    QString dimension;
    Calls::app::AnalyticsBreakdownActionResultRow of;
    // Worked out once when the row is made (the views read them often).
    std::optional<AnalyticsFormat::TrafficSource> source; // referrers only
    QString icon;
    bool operator==(const BreakdownRow&) const = default;
};

// A headline figure: visitors, visits, views, bounce rate, visit duration.
struct HeadlineTile {
    QString key;
    QString label;
    QString value;
    QString change;
    int direction = 0;
    // Whether up is good news (a bounce rate that rises is not).
    bool upIsGood = true;
    bool operator==(const HeadlineTile&) const = default;
};

struct AnalyticsAnswer {
    Calls::analytics::SitesResult sites;
    QString siteId;
    AnalyticsRange range;
    std::optional<Calls::analytics::DashboardResult> now;
    std::optional<Calls::analytics::DashboardResult> before;
    // In the order of AnalyticsPage::dimensions(); none where that one
    // call failed.
    QList<std::optional<Calls::app::AnalyticsBreakdownActionResult>> breakdowns;
};

// "/analytics": a site's traffic over a range, with its headline figures
// against the range before, the visitors over time, and where visits come
// from, land, and leave. Reloads every minute while it shows.
class AnalyticsPage : public Kestro::PageModel {
    Q_OBJECT
    QML_NAMED_ELEMENT(AnalyticsModel)
    Q_PROPERTY(Kestro::KeyedListModel* sites READ sites CONSTANT)
    Q_PROPERTY(QString siteId READ siteId NOTIFY answered)
    Q_PROPERTY(QString domain READ domain NOTIFY answered)
    Q_PROPERTY(bool hasSites READ hasSites NOTIFY answered)
    Q_PROPERTY(bool canManage READ canManage NOTIFY answered)
    Q_PROPERTY(QString rangeKey READ rangeKey NOTIFY answered)
    Q_PROPERTY(QString rangeLabel READ rangeLabel NOTIFY answered)
    Q_PROPERTY(QString rangeFrom READ rangeFrom NOTIFY answered)
    Q_PROPERTY(QString rangeTo READ rangeTo NOTIFY answered)
    Q_PROPERTY(QString live READ live NOTIFY answered)
    // The breakdowns that did not load this time, by dimension.
    Q_PROPERTY(QVariantMap failed READ failed NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* headline READ headline CONSTANT)
    // The visitors over the range: points with x and y between 0 and 1,
    // and the axis's words.
    Q_PROPERTY(QVariantList chart READ chart NOTIFY answered)
    Q_PROPERTY(QString chartPeak READ chartPeak NOTIFY answered)
    Q_PROPERTY(QString chartStart READ chartStart NOTIFY answered)
    Q_PROPERTY(QString chartEnd READ chartEnd NOTIFY answered)
    Q_PROPERTY(QString chartSummary READ chartSummary NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* referrers READ referrers CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* pages READ pages CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* countries READ countries CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* devices READ devices CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* browsers READ browsers CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* systems READ systems CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* exits READ exits CONSTANT)

public:
    explicit AnalyticsPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);
    // The breakdowns the page asks for, as the service names them.
    static const QStringList& dimensions();

    KeyedListModel* sites() const { return m_sites; }
    QString siteId() const { return m_siteId; }
    QString domain() const;
    bool hasSites() const { return !m_siteId.isEmpty(); }
    bool canManage() const { return m_canManage; }
    QString rangeKey() const { return m_range.key; }
    QString rangeLabel() const { return m_range.label(); }
    QString rangeFrom() const { return m_range.from.toString(Qt::ISODate); }
    QString rangeTo() const { return m_range.to.toString(Qt::ISODate); }
    QString live() const { return m_live; }
    QVariantMap failed() const { return m_failed; }
    KeyedListModel* headline() const { return m_headline; }
    QVariantList chart() const { return m_chart; }
    QString chartPeak() const { return m_chartPeak; }
    QString chartStart() const { return m_chartStart; }
    QString chartEnd() const { return m_chartEnd; }
    QString chartSummary() const { return m_chartSummary; }
    KeyedListModel* referrers() const { return m_breakdowns[0]; }
    KeyedListModel* pages() const { return m_breakdowns[1]; }
    KeyedListModel* countries() const { return m_breakdowns[2]; }
    KeyedListModel* devices() const { return m_breakdowns[3]; }
    KeyedListModel* browsers() const { return m_breakdowns[4]; }
    KeyedListModel* systems() const { return m_breakdowns[5]; }
    KeyedListModel* exits() const { return m_breakdowns[6]; }

    // Open the page for another site or range (each is a place of its own
    // in the history, so Back returns to the last one).
    Q_INVOKABLE void chooseSite(const QString& siteId);
    Q_INVOKABLE void chooseRange(const QString& key);
    // A custom range from two "YYYY-MM-DD" days; a sentence when they do
    // not make one, else empty.
    Q_INVOKABLE QString chooseDays(const QString& from, const QString& to);

    // The headline tiles for two totals.
    static QList<HeadlineTile>
    headlineOf(const Calls::analytics::DashboardResultTotals& now,
               const std::optional<Calls::analytics::DashboardResultTotals>& before);
    // The day it is where the site is (its time zone, or this machine's
    // when the service names none it knows).
    static QDate todayAt(const QString& timeZone);
    // A breakdown's rows, one per value: repeats (the service may send ""
    // and "(none)" alike) are added together.
    static QList<BreakdownRow> rowsOf(const QString& dimension,
                                      const QList<Calls::app::AnalyticsBreakdownActionResultRow>& rows);
    // The image a row shows beside its label: a source's or browser's
    // icon, a country's flag; empty for none.
    static QString iconOf(const QString& dimension, const QString& value);

signals:
    void answered();

protected:
    void apply(const QVariant& value) override;
    std::optional<double> every(const QVariant& value) const override;

private:
    void openWith(const QString& siteId, const AnalyticsRange& range) const;

    KeyedList<Model::SiteView>* m_sites;
    KeyedList<HeadlineTile>* m_headline;
    std::array<KeyedList<BreakdownRow>*, 7> m_breakdowns{};
    QString m_siteId;
    QString m_timeZone;
    QVariantMap m_failed; // dimension → true
    bool m_canManage = false;
    AnalyticsRange m_range;
    QString m_live;
    QVariantList m_chart;
    QString m_chartPeak;
    QString m_chartStart;
    QString m_chartEnd;
    QString m_chartSummary;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::AnalyticsAnswer)
