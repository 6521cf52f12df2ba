#include "AnalyticsPage.h"

#include "analytics/AnalyticsFormat.h"
#include "analytics/AnalyticsNumbers.h"
#include "service/ServiceError.h"

#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <QPointF>
#include <QRegularExpression>
#include <QTimeZone>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>
#include <cmath>

namespace Kestro {

using Calls::analytics::DashboardResult;
using Calls::analytics::DashboardResultTotals;
using Calls::app::AnalyticsBreakdownActionResult;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedKingdom);

QTimeZone zoneOf(const QString& name)
{
    const QTimeZone zone(name.toUtf8());
    return zone.isValid() ? zone : QTimeZone::systemTimeZone();
}

// The host of a referrer or link, lower-cased, without "www."; empty for a
// value that is no web address.
QString hostOf(const QString& value)
{
    QString text = value.trimmed();
    if (!text.contains(QLatin1String("://")))
        text.prepend(QLatin1String("https://"));
    const QUrl url(text);
    if (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https"))
        return {};
    QString host = url.host().toLower();
    if (host.startsWith(QLatin1String("www.")))
        host.remove(0, 4);
    return host;
}

QString kindWord(const QString& kind)
{
    if (kind == QLatin1String("ai"))
        return QStringLiteral("AI");
    if (kind == QLatin1String("email"))
        return QStringLiteral("Email");
    if (kind == QLatin1String("search"))
        return QStringLiteral("Search");
    if (kind == QLatin1String("social"))
        return QStringLiteral("Social");
    return {};
}

QString labelOf(const BreakdownRow& row)
{
    if (row.of.label && !row.of.label->isEmpty())
        return *row.of.label;
    if (row.source)
        return row.source->name;
    return AnalyticsFormat::displayLabel(row.dimension, row.of.value);
}

// A known source's row names the source; its host goes beside it.
QString detailOf(const BreakdownRow& row)
{
    if (!row.source)
        return {};
    return AnalyticsFormat::displayLabel(row.dimension, row.of.value);
}

KeyedList<BreakdownRow>* breakdownList(QObject* parent)
{
    return new KeyedList<BreakdownRow>(
        [](const BreakdownRow& r) { return r.of.value; },
        {{"label", [](const BreakdownRow& r) { return QVariant(labelOf(r)); }},
         {"detail", [](const BreakdownRow& r) { return QVariant(detailOf(r)); }},
         {"kind",
          [](const BreakdownRow& r) { return QVariant(r.source ? kindWord(r.source->kind) : QString()); }},
         {"icon", [](const BreakdownRow& r) { return QVariant(r.icon); }},
         {"visitors", [](const BreakdownRow& r) { return QVariant(AnalyticsNumbers::count(r.of.visitors)); }},
         {"share", [](const BreakdownRow& r) { return QVariant(std::clamp(r.of.share, 0.0, 1.0)); }},
         {"shareText",
          [](const BreakdownRow& r) { return QVariant(AnalyticsNumbers::percent(r.of.share)); }}},
        parent);
}

QString dayLabel(const QDate& date, bool withYear)
{
    return english.toString(date, withYear ? QStringLiteral("d MMM yyyy") : QStringLiteral("d MMM"));
}

// The axis's word for a point of the series: an hour for today (on the
// site's clock), else a day (the service names days by their start in UTC).
QString pointLabel(const QString& at, bool hourly, const QTimeZone& zone)
{
    const QDateTime time = QDateTime::fromString(at, Qt::ISODateWithMs);
    if (!time.isValid())
        return {};
    return hourly ? time.toTimeZone(zone).toString(QStringLiteral("HH:mm"))
                  : dayLabel(time.toUTC().date(), false);
}

} // namespace

AnalyticsRange AnalyticsRange::fromQuery(const QString& range, const QString& from, const QString& to,
                                         QDate today)
{
    AnalyticsRange r;
    r.to = today;
    if (range == QLatin1String("today")) {
        r.key = range;
        r.from = today;
    } else if (range == QLatin1String("30d")) {
        r.key = range;
        r.from = today.addDays(-29);
    } else if (range == QLatin1String("custom")) {
        const QDate first = QDate::fromString(from, Qt::ISODate);
        const QDate last = QDate::fromString(to, Qt::ISODate);
        if (first.isValid() && last.isValid() && first <= last && last <= today &&
            first.daysTo(last) < longest) {
            r.key = range;
            r.from = first;
            r.to = last;
            return r;
        }
    }
    if (r.from.isNull())
        r.from = today.addDays(-6);
    return r;
}

JSONValue AnalyticsRange::toJson() const
{
    if (key == QLatin1String("today"))
        return JSONValue(JSONValue::Object{{QStringLiteral("days"), JSONValue(1)}});
    if (key == QLatin1String("7d"))
        return JSONValue(JSONValue::Object{{QStringLiteral("days"), JSONValue(7)}});
    if (key == QLatin1String("30d"))
        return JSONValue(JSONValue::Object{{QStringLiteral("days"), JSONValue(30)}});
    return JSONValue(JSONValue::Object{{QStringLiteral("from"), JSONValue(from.toString(Qt::ISODate))},
                                       {QStringLiteral("to"), JSONValue(to.toString(Qt::ISODate))}});
}

AnalyticsRange AnalyticsRange::previous() const
{
    const qint64 length = from.daysTo(to) + 1;
    AnalyticsRange before;
    before.key = QStringLiteral("custom");
    before.to = from.addDays(-1);
    before.from = before.to.addDays(-(length - 1));
    return before;
}

QString AnalyticsRange::label() const
{
    if (key == QLatin1String("today"))
        return QStringLiteral("Today");
    if (key == QLatin1String("7d"))
        return QStringLiteral("Last 7 days");
    if (key == QLatin1String("30d"))
        return QStringLiteral("Last 30 days");
    if (from == to)
        return dayLabel(from, true);
    return dayLabel(from, from.year() != to.year()) + QStringLiteral(" \u2013 ") + dayLabel(to, true);
}

const QStringList& AnalyticsPage::dimensions()
{
    static const QStringList list{QStringLiteral("referrers"), QStringLiteral("pages"),
                                  QStringLiteral("countries"), QStringLiteral("devices"),
                                  QStringLiteral("browsers"),  QStringLiteral("os"),
                                  QStringLiteral("exit_links")};
    return list;
}

AnalyticsPage::AnalyticsPage(QObject* parent, Timers& timers)
    : PageModel(&AnalyticsPage::fetch, parent, timers),
      m_sites(new KeyedList<Model::SiteView>(
          [](const Model::SiteView& s) { return s.siteId; },
          {{"domain", [](const Model::SiteView& s) { return QVariant(s.domain); }},
           {"color", [](const Model::SiteView& s) { return QVariant(s.color); }}},
          this)),
      m_headline(new KeyedList<HeadlineTile>(
          [](const HeadlineTile& t) { return t.key; },
          {{"label", [](const HeadlineTile& t) { return QVariant(t.label); }},
           {"value", [](const HeadlineTile& t) { return QVariant(t.value); }},
           {"change", [](const HeadlineTile& t) { return QVariant(t.change); }},
           {"direction", [](const HeadlineTile& t) { return QVariant(t.direction); }},
           {"good",
            [](const HeadlineTile& t) {
                return QVariant(t.direction != 0 && (t.direction > 0) == t.upIsGood);
            }}},
          this))
{
    for (auto& list : m_breakdowns)
        list = breakdownList(this);
}

QDate AnalyticsPage::todayAt(const QString& timeZone)
{
    return QDateTime::currentDateTimeUtc().toTimeZone(zoneOf(timeZone)).date();
}

QList<BreakdownRow> AnalyticsPage::rowsOf(const QString& dimension,
                                          const QList<Calls::app::AnalyticsBreakdownActionResultRow>& rows)
{
    QList<BreakdownRow> out;
    QHash<QString, qsizetype> at;
    for (const auto& row : rows) {
        const QString value = row.value == QLatin1String("(none)") ? QString() : row.value;
        if (const auto seen = at.constFind(value); seen != at.cend()) {
            auto& kept = out[*seen].of;
            kept.visitors += row.visitors;
            kept.visits += row.visits;
            kept.share += row.share;
            continue;
        }
        at.insert(value, out.size());
        BreakdownRow added{dimension, row};
        added.of.value = value;
        if (dimension == QLatin1String("referrers"))
            added.source = AnalyticsFormat::trafficSource(hostOf(value));
        added.icon = iconOf(dimension, value);
        out.append(std::move(added));
    }
    return out;
}

QCoro::Task<QVariant> AnalyticsPage::fetch(Route route)
{
    AnalyticsAnswer answer;
    answer.sites = co_await Calls::analytics::sites();
    const QString wanted = route.query.value(QStringLiteral("site"));
    for (const Model::SiteView& site : answer.sites.sites)
        if (site.siteId == wanted)
            answer.siteId = wanted;
    if (answer.siteId.isEmpty() && !answer.sites.sites.isEmpty())
        answer.siteId = answer.sites.sites.first().siteId;
    QString timeZone;
    for (const Model::SiteView& site : answer.sites.sites)
        if (site.siteId == answer.siteId)
            timeZone = site.timezone;
    answer.range = AnalyticsRange::fromQuery(route.query.value(QStringLiteral("range")),
                                             route.query.value(QStringLiteral("from")),
                                             route.query.value(QStringLiteral("to")), todayAt(timeZone));
    if (answer.siteId.isEmpty())
        co_return QVariant::fromValue(answer);

    // All the calls go out at once (a task runs until its first wait), and
    // are then collected in order.
    const JSONValue range = answer.range.toJson();
    const bool today = answer.range.key == QLatin1String("today");
    QCoro::Task<DashboardResult> now =
        Calls::analytics::dashboard(Arg(JSONValue(answer.siteId)), Arg(JSONValue(range)));
    // A part of today against the whole of yesterday would read as a drop
    // every morning: today shows its figures without a change.
    std::optional<QCoro::Task<DashboardResult>> before;
    if (!today)
        before.emplace(Calls::analytics::dashboard(Arg(JSONValue(answer.siteId)),
                                                   Arg(answer.range.previous().toJson())));
    std::vector<QCoro::Task<AnalyticsBreakdownActionResult>> breakdowns;
    for (const QString& dimension : dimensions())
        breakdowns.push_back(Calls::app::analyticsBreakdownAction(
            Arg(JSONValue(answer.siteId)), Arg(JSONValue(dimension)), Arg(JSONValue(range))));

    answer.now = co_await std::move(now);
    if (before) {
        // Without the range before, the figures show without their change.
        try {
            answer.before = co_await std::move(*before);
        } catch (const std::exception&) {
        }
    }
    for (auto& breakdown : breakdowns) {
        std::optional<AnalyticsBreakdownActionResult> result;
        try {
            result = co_await std::move(breakdown);
        } catch (const std::exception&) {
            // This card says so; the rest of the page shows.
        }
        answer.breakdowns.append(std::move(result));
    }
    co_return QVariant::fromValue(answer);
}

QList<HeadlineTile> AnalyticsPage::headlineOf(const DashboardResultTotals& now,
                                              const std::optional<DashboardResultTotals>& before)
{
    using namespace AnalyticsNumbers;
    auto tile = [&](const char* key, const char* label, QString value, auto figure, bool upIsGood = true,
                    bool rate = false) {
        const Change moved = !before ? Change{}
                             : rate  ? pointsChange(figure(now), figure(*before))
                                     : change(figure(now), figure(*before));
        return HeadlineTile{QLatin1String(key), QLatin1String(label), std::move(value),
                            moved.text,         moved.direction,      upIsGood};
    };
    return {
        tile("visitors", "Visitors", count(now.visitors),
             [](const DashboardResultTotals& t) { return t.visitors; }),
        tile("visits", "Visits", count(now.visits), [](const DashboardResultTotals& t) { return t.visits; }),
        tile("views", "Views", count(now.pageviews),
             [](const DashboardResultTotals& t) { return t.pageviews; }),
        tile(
            "bounce", "Bounce rate", percent(now.bounceRate),
            [](const DashboardResultTotals& t) { return t.bounceRate; }, false, true),
        tile("duration", "Visit duration", duration(now.duration),
             [](const DashboardResultTotals& t) { return t.duration; }),
    };
}

QString AnalyticsPage::iconOf(const QString& dimension, const QString& value)
{
    const QString site = QStringLiteral("image://site/");
    if (dimension == QLatin1String("referrers") || dimension == QLatin1String("exit_links")) {
        const QString host = hostOf(value);
        if (host.isEmpty())
            return {};
        if (dimension == QLatin1String("referrers"))
            if (const auto source = AnalyticsFormat::trafficSource(host))
                return site + source->iconHost;
        return site + host;
    }
    if (dimension == QLatin1String("countries")) {
        static const QRegularExpression code(QStringLiteral("^[A-Za-z]{2}$"));
        return code.match(value).hasMatch() ? site + QStringLiteral("flag:") + value.toUpper() : QString();
    }
    if (dimension == QLatin1String("browsers")) {
        const QString host = AnalyticsFormat::browserIconHost(value);
        return host.isEmpty() ? QString() : site + host;
    }
    if (dimension == QLatin1String("os")) {
        const QString host = AnalyticsFormat::osIconHost(value);
        return host.isEmpty() ? QString() : site + host;
    }
    if (dimension == QLatin1String("devices")) {
        const QString device = value.toLower();
        if (device == QLatin1String("desktop"))
            return QStringLiteral("image://icon/monitor");
        if (device == QLatin1String("mobile"))
            return QStringLiteral("image://icon/smartphone");
        if (device == QLatin1String("tablet"))
            return QStringLiteral("image://icon/tablet");
    }
    return {};
}

QString AnalyticsPage::domain() const
{
    const Model::SiteView* site = m_sites->find(m_siteId);
    return site ? site->domain : QString();
}

void AnalyticsPage::apply(const QVariant& value)
{
    const auto answer = value.value<AnalyticsAnswer>();
    m_sites->apply(answer.sites.sites);
    m_siteId = answer.siteId;
    m_timeZone.clear();
    if (const Model::SiteView* site = m_sites->find(m_siteId))
        m_timeZone = site->timezone;
    m_canManage = answer.sites.canManage;
    m_range = answer.range;
    m_live.clear();
    m_chart.clear();
    m_chartPeak.clear();
    m_chartStart.clear();
    m_chartEnd.clear();
    m_chartSummary.clear();
    if (answer.now) {
        const DashboardResult& now = *answer.now;
        m_headline->apply(
            headlineOf(now.totals, answer.before ? std::optional(answer.before->totals) : std::nullopt));
        if (now.live > 0)
            m_live = now.live == 1 ? QStringLiteral("1 visitor now")
                                   : QStringLiteral("%1 visitors now").arg(now.live);

        const bool hourly = m_range.key == QLatin1String("today");
        double peak = 0;
        qsizetype peakAt = 0;
        for (qsizetype i = 0; i < now.series.size(); ++i)
            if (now.series[i].visitors > peak) {
                peak = now.series[i].visitors;
                peakAt = i;
            }
        const double top = peak > 0 ? peak : 1;
        const qsizetype n = now.series.size();
        for (qsizetype i = 0; i < n; ++i)
            m_chart.append(QPointF(n > 1 ? double(i) / double(n - 1) : 0.5,
                                   std::clamp(now.series[i].visitors / top, 0.0, 1.0)));
        if (n > 0) {
            m_chartPeak = AnalyticsNumbers::count(peak);
            const QTimeZone zone = zoneOf(m_timeZone);
            m_chartStart = pointLabel(now.series.first().at, hourly, zone);
            m_chartEnd = pointLabel(now.series.last().at, hourly, zone);
            m_chartSummary =
                QStringLiteral("Visitors %1, from %2 to %3. The most, %4, at %5.")
                    .arg(hourly ? QStringLiteral("by the hour") : QStringLiteral("by the day"), m_chartStart,
                         m_chartEnd, m_chartPeak, pointLabel(now.series[peakAt].at, hourly, zone));
        }
    } else {
        m_headline->apply({});
    }
    m_failed.clear();
    for (qsizetype i = 0; i < qsizetype(m_breakdowns.size()); ++i) {
        const bool answered = i < answer.breakdowns.size() && answer.breakdowns[i];
        if (!answered && answer.now)
            m_failed.insert(dimensions()[i], true);
        m_breakdowns[i]->apply(answered ? rowsOf(dimensions()[i], answer.breakdowns[i]->rows)
                                        : QList<BreakdownRow>{});
    }
    emit answered();
}

std::optional<double> AnalyticsPage::every(const QVariant&) const
{
    return 60;
}

void AnalyticsPage::openWith(const QString& siteId, const AnalyticsRange& range) const
{
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("site"), siteId);
    query.addQueryItem(QStringLiteral("range"), range.key);
    if (range.key == QLatin1String("custom")) {
        query.addQueryItem(QStringLiteral("from"), range.from.toString(Qt::ISODate));
        query.addQueryItem(QStringLiteral("to"), range.to.toString(Qt::ISODate));
    }
    open(QStringLiteral("/analytics?") + query.toString(QUrl::FullyEncoded));
}

void AnalyticsPage::chooseSite(const QString& siteId)
{
    if (siteId != m_siteId)
        openWith(siteId, m_range);
}

void AnalyticsPage::chooseRange(const QString& key)
{
    if (key == m_range.key && key != QLatin1String("custom"))
        return;
    openWith(m_siteId, AnalyticsRange::fromQuery(key, {}, {}, todayAt(m_timeZone)));
}

QString AnalyticsPage::chooseDays(const QString& from, const QString& to)
{
    const QDate first = QDate::fromString(from.trimmed(), Qt::ISODate);
    const QDate last = QDate::fromString(to.trimmed(), Qt::ISODate);
    if (!first.isValid() || !last.isValid())
        return QStringLiteral(
            "Write both days as year, month and day, like 2026-11-02: one of them could not "
            "be read as a day.");
    if (first > last)
        return QStringLiteral(
            "The first day comes after the last. Choose a first day on or before the last.");
    if (last > todayAt(m_timeZone))
        return QStringLiteral("The last day is still to come. Choose today or a day before it.");
    if (first.daysTo(last) >= AnalyticsRange::longest)
        return QStringLiteral("A range can be %1 days long at most. Choose a shorter one.")
            .arg(AnalyticsRange::longest);
    AnalyticsRange range;
    range.key = QStringLiteral("custom");
    range.from = first;
    range.to = last;
    openWith(m_siteId, range);
    return {};
}

} // namespace Kestro
