#pragma once

#include "Appcast.h"

#include <QCoroTask>
#include <QDateTime>
#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <functional>

namespace Kestro {

// Whether a newer Kestro is out: reads the update feed (an appcast) once a
// day in the background and whenever the user asks, and offers the new
// release's download page in the browser. A build without a feed address
// (distribution packages, which update through the system) never checks.
class Updates : public QObject {
    Q_OBJECT
    // A feed is configured: "Check for Updates…" is offered at all.
    Q_PROPERTY(bool enabled READ enabled CONSTANT)
    Q_PROPERTY(bool checking READ checking NOTIFY changed)
    // The outcome to show: a release is offered, or (after a check the user
    // asked for) a sentence saying there is none or why the check failed.
    Q_PROPERTY(bool showing READ showing NOTIFY changed)
    Q_PROPERTY(QString heading READ heading NOTIFY changed)
    Q_PROPERTY(QString detail READ detail NOTIFY changed)
    Q_PROPERTY(QString notes READ notes NOTIFY changed)
    // A newer release was found; a check nobody asked for offers it
    // quietly (the sidebar shows it) rather than in a dialog.
    Q_PROPERTY(bool offering READ offering NOTIFY changed)
    // What the dialog shows: the check at work, a release, "up to date" or
    // a failure (an older offer may still stand beside a failure).
    Q_PROPERTY(Outcome outcome READ outcome NOTIFY changed)
    Q_PROPERTY(QString offeredVersion READ offeredVersion NOTIFY changed)
public:
    enum class Outcome { Checking, Offer, Current, Failed };
    Q_ENUM(Outcome)

    // The settings key of the last check's date.
    static constexpr QLatin1StringView checkedAtKey{"kestro:update-checked-at"};

    Updates(QUrl feed, QString currentVersion, QObject* parent = nullptr);

    bool enabled() const { return m_feed.isValid() && !m_feed.isEmpty(); }
    bool checking() const { return m_checking; }
    bool showing() const { return m_showing; }
    QString heading() const { return m_heading; }
    QString detail() const { return m_detail; }
    QString notes() const { return m_offer ? m_offer->description : QString(); }
    bool offering() const { return m_offer.has_value(); }
    Outcome outcome() const { return m_outcome; }
    QString offeredVersion() const { return m_offer ? m_offer->displayVersion() : QString(); }

    // The user asked: the outcome is shown whatever it is.
    Q_INVOKABLE void checkNow();
    // Opens the offered release's page in the browser and closes the offer.
    Q_INVOKABLE void openDownloadPage();
    // Shows the quietly offered release.
    Q_INVOKABLE void showOffer();
    // Closes what shows; "Later" on an offer lets it go until the next check.
    Q_INVOKABLE void dismiss();

    // Checks in the background whenever a day has passed since the last
    // check (looked at now, and hourly after).
    void startSchedule();
    // One look at the schedule: checks when a day has passed.
    void checkIfDue();

    // For tests: what "now" is, what this system's version is, and what
    // opening a page does.
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }
    void setSystemVersion(QString version) { m_system = std::move(version); }
    void setOpener(std::function<void(const QUrl&)> opener) { m_opener = std::move(opener); }

    // One check; `asked` shows "up to date" and failures too.
    QCoro::Task<> check(bool asked);

signals:
    void changed();

private:
    void show(Outcome outcome, QString heading, QString detail);

    QUrl m_feed;
    QString m_current;
    QString m_system;
    QNetworkAccessManager m_network;
    QTimer m_schedule;
    std::function<QDateTime()> m_clock;
    std::function<void(const QUrl&)> m_opener;
    bool m_checking = false;
    bool m_asked = false; // the running check was asked for, and is watched
    bool m_showing = false;
    Outcome m_outcome = Outcome::Current;
    QString m_heading;
    QString m_detail;
    std::optional<AppcastRelease> m_offer;
};

} // namespace Kestro
