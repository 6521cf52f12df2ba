#include "Updates.h"

#include "service/HttpExchange.h"
#include "service/ServiceError.h"

#include <QNetworkReply>
#include <QPointer>
#include <QSettings>
#include <QSysInfo>

namespace Kestro {

namespace {
constexpr qint64 day = 24 * 60 * 60;
constexpr qint64 feedLimit = 1024 * 1024; // an appcast is a few kilobytes
} // namespace

Updates::Updates(QUrl feed, QString currentVersion, QObject* parent)
    : QObject(parent), m_feed(std::move(feed)), m_current(std::move(currentVersion)),
      m_system(QSysInfo::productVersion()), m_clock([] { return QDateTime::currentDateTimeUtc(); })
{
    m_network.setTransferTimeout(60'000);
    m_network.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    m_schedule.setInterval(60 * 60 * 1000);
    connect(&m_schedule, &QTimer::timeout, this, &Updates::checkIfDue);
}

void Updates::startSchedule()
{
    if (!enabled() || m_schedule.isActive())
        return;
    m_schedule.start();
    // Not while the window is still coming up: a minute later is soon enough.
    QTimer::singleShot(60'000, this, &Updates::checkIfDue);
}

void Updates::checkIfDue()
{
    if (!enabled() || m_checking)
        return;
    const QDateTime last =
        QDateTime::fromString(QSettings().value(checkedAtKey).toString(), Qt::ISODateWithMs);
    const QDateTime now = m_clock();
    // A date in the future (the clock was set back) counts as due too.
    if (last.isValid() && last <= now && last.secsTo(now) < day)
        return;
    check(false);
}

void Updates::checkNow()
{
    if (!enabled())
        return;
    if (m_checking) {
        // The daily check is on its way: its outcome is now the user's.
        if (!m_asked) {
            m_asked = true;
            show(Outcome::Checking, QStringLiteral("Checking for Updates…"),
                 QStringLiteral("Kestro is asking the update server for its newest release."));
        }
        return;
    }
    check(true);
}

QCoro::Task<> Updates::check(bool asked)
{
    QPointer<Updates> self(this);
    m_checking = true;
    m_asked = asked;
    if (asked) {
        // The one who asked sees it working; closing this lets it finish
        // quietly. An offer already found stays until the answer says more.
        show(Outcome::Checking, QStringLiteral("Checking for Updates…"),
             QStringLiteral("Kestro is asking the update server for its newest release."));
    } else {
        emit changed();
    }
    QNetworkRequest request(m_feed);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Kestro/%1").arg(m_current));
    QString failure;
    std::optional<QList<AppcastRelease>> releases;
    try {
        const HttpAnswer answer = co_await exchange(m_network.get(request), HttpLimits{feedLimit, 60'000});
        if (answer.status != 200)
            failure = QStringLiteral("The update server answered with status %1. Try again later.")
                          .arg(answer.status);
        else if (!(releases = parseAppcast(answer.body)))
            failure = QStringLiteral("The update server sent a feed Kestro could not read. Try again later.");
    } catch (const TransportError& error) {
        switch (error.kind()) {
        case TransportError::Kind::Unreachable:
            failure = QStringLiteral("The update server could not be reached (%1). Check your connection and "
                                     "try again.")
                          .arg(error.detail());
            break;
        case TransportError::Kind::TimedOut:
            failure = QStringLiteral("The update server did not answer in time. Try again later.");
            break;
        case TransportError::Kind::TooLarge:
            failure = QStringLiteral("The update server sent far more than a feed. Try again later.");
            break;
        default:
            failure = QStringLiteral("The connection to the update server dropped. Try again later.");
        }
    }
    if (!self)
        co_return;
    m_checking = false;
    asked = std::exchange(m_asked, false);
    if (!failure.isEmpty()) {
        // A check nobody asked for fails quietly and is tried again later.
        if (asked)
            show(Outcome::Failed, QStringLiteral("Kestro could not check for updates."), failure);
        else
            emit changed();
        co_return;
    }
    QSettings().setValue(checkedAtKey, m_clock().toUTC().toString(Qt::ISODateWithMs));
    m_offer = newestUpdate(*releases, m_current, m_system);
    if (m_offer && asked)
        showOffer();
    else if (asked)
        show(Outcome::Current, QStringLiteral("You're up to date."),
             QStringLiteral("Kestro %1 is the newest version available.").arg(m_current));
    else
        emit changed();
}

void Updates::showOffer()
{
    if (m_offer)
        show(Outcome::Offer, QStringLiteral("Kestro %1 is available.").arg(m_offer->displayVersion()),
             QStringLiteral("You have Kestro %1. Its download page opens in your browser.").arg(m_current));
}

void Updates::show(Outcome outcome, QString heading, QString detail)
{
    m_outcome = outcome;
    m_heading = std::move(heading);
    m_detail = std::move(detail);
    m_showing = true;
    emit changed();
}

void Updates::openDownloadPage()
{
    if (m_offer && m_opener)
        m_opener(m_offer->downloadPage);
    m_offer.reset();
    dismiss();
}

void Updates::dismiss()
{
    // An offer stays in the sidebar until its page is opened.
    m_asked = false;
    m_showing = false;
    emit changed();
}

} // namespace Kestro
