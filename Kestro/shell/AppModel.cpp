#include "AppModel.h"

#include "Drafts.h"
#include "MainThread.h"
#include "Router.h"

#include "calls/app.h"
#include "calls/shell.h"
#include "service/Auth.h"
#include "service/Client.h"
#include "service/ServiceError.h"

#include <QJsonObject>
#include <QPointer>

namespace Kestro {

AppModel::AppModel(Client& client, Router& router, Desktop desktop, QObject* parent)
    : AppLink(parent), m_client(client), m_router(router), m_desktop(std::move(desktop))
{
    // A burst of "changed" messages from a web page leads to one refresh.
    m_changeTimer.setSingleShot(true);
    m_changeTimer.setInterval(250);
    connect(&m_changeTimer, &QTimer::timeout, this, [this] { restartDataRefresh(); });
    connect(&m_router, &Router::routeChanged, this, &AppModel::followSetup);
    m_client.setAppLink(this);
}

AppModel::~AppModel() = default;

bool AppModel::canWrite() const
{
    // Viewers, approvers and guests read but do not write.
    const QString role =
        m_frame.value(QStringLiteral("workspace")).toMap().value(QStringLiteral("role")).toString();
    return !role.isEmpty() && role != QLatin1String("viewer") && role != QLatin1String("approver") &&
           role != QLatin1String("guest");
}

void AppModel::start()
{
    requireMainThread("AppModel::start");
    if (m_started)
        return;
    m_started = true;
    runStart();
}

QCoro::Task<> AppModel::runStart()
{
    QPointer<AppModel> self(this);
    std::optional<QString> token;
    try {
        token = co_await m_client.auth().accessToken();
    } catch (const std::exception& error) {
        // The stored sign-in could not be renewed (no network): say so on
        // the failure page, where "Try again" starts over.
        if (!self)
            co_return;
        setFrameError(describeError(error));
        co_return;
    }
    if (!self)
        co_return;
    if (!token) {
        // A store that could not be read says why on the sign-in card.
        setSignInError(m_client.auth().storeProblem());
        setPhase(Phase::SignedOut);
        co_return;
    }
    co_await loadFrame();
}

QCoro::Task<bool> AppModel::loadFrame()
{
    QPointer<AppModel> self(this);
    const quint64 generation = ++m_frameGeneration;
    setLoadingFrame(true);
    QString failure;
    QVariantMap frame;
    QString redirect;
    try {
        const Calls::shell::FrameResult result = co_await Calls::shell::frame();
        frame = result.encode().toObject().toVariantMap();
    } catch (const CallError& error) {
        if (error.kind() == CallError::Kind::SignedOut) {
            // The client signed the app out already; nothing to show here.
            if (self && generation == m_frameGeneration)
                setLoadingFrame(false);
            co_return false;
        }
        redirect = error.path();
        failure = error.description();
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self || generation != m_frameGeneration)
        co_return false;
    setLoadingFrame(false);
    if (redirect.startsWith(QLatin1String("/setup"))) {
        // A workspace that is not set up has no frame yet: its setup shows
        // in place of the frame, whatever showed before.
        m_frameRedirected = false;
        m_frame.clear();
        emit frameChanged();
        setFrameError({});
        m_setupPath = redirect;
        emit setupPathChanged();
        m_router.reset(Route::parse(redirect));
        setPhase(Phase::Launching);
        co_return false;
    }
    if (!redirect.isEmpty()) {
        // Signed in, the client opened the page already and the frame on
        // screen stays. Before the frame, the page waits for it, and the
        // service is asked for the frame once more.
        if (m_phase == Phase::SignedIn)
            co_return false;
        if (!std::exchange(m_frameRedirected, true))
            co_return co_await loadFrame();
        m_pendingPaths.removeDuplicates();
        failure = QStringLiteral("The service sent Kestro elsewhere instead of loading your workspace. "
                                 "Try again in a moment.");
    }
    m_frameRedirected = false;
    if (!failure.isEmpty()) {
        setFrameError(failure);
        co_return false;
    }
    const QString before =
        m_frame.value(QStringLiteral("workspace")).toMap().value(QStringLiteral("id")).toString();
    m_frame = frame;
    emit frameChanged();
    setFrameError({});
    const QString after =
        m_frame.value(QStringLiteral("workspace")).toMap().value(QStringLiteral("id")).toString();
    if (!before.isEmpty() && before != after)
        m_router.reset(Route::parse(startPath));
    setPhase(Phase::SignedIn);
    deliverPendingLinks();
    co_return true;
}

void AppModel::signIn()
{
    requireMainThread("AppModel::signIn");
    if (m_signingIn || m_phase == Phase::SignedIn)
        return;
    runSignIn();
}

QCoro::Task<> AppModel::runSignIn()
{
    QPointer<AppModel> self(this);
    setSigningIn(true);
    setSignInError({});
    QString failure;
    try {
        const Authorization authorization = m_client.auth().begin(QString(Auth::redirectUri));
        const std::optional<QUrl> callback = co_await m_desktop.authenticate(authorization.url);
        if (!self)
            co_return;
        if (callback) {
            co_await m_client.auth().finish(*callback, authorization);
            if (!self)
                co_return;
            if (!co_await loadFrame()) {
                if (!self)
                    co_return;
                // Signed in, but the workspace did not load: the failure
                // page shows, and its "Try again" loads the frame with the
                // tokens just stored, without a second sign-in.
                if (!m_frameError.isEmpty())
                    setPhase(Phase::Launching);
            }
        }
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self)
        co_return;
    setSigningIn(false);
    if (!failure.isEmpty())
        setSignInError(failure);
}

void AppModel::signOut()
{
    requireMainThread("AppModel::signOut");
    if (m_phase == Phase::SignedOut)
        return;
    setPhase(Phase::SignedOut);
    ++m_frameGeneration; // a frame load in flight no longer counts
    setLoadingFrame(false);
    m_frame.clear();
    emit frameChanged();
    setFrameError({});
    m_pendingLinks.clear();
    m_pendingPaths.clear();
    m_frameRedirected = false;
    if (!m_setupPath.isEmpty()) {
        m_setupPath.clear();
        emit setupPathChanged();
    }
    Drafts::clear();
    m_changeTimer.stop();
    m_router.reset(Route::parse(startPath));
    if (m_desktop.clearBadge)
        m_desktop.clearBadge();
    runSignOut();
}

QCoro::Task<> AppModel::runSignOut()
{
    // The web pages lose the session first: the revoke may take long or
    // never answer, and the cookie holds the access token meanwhile.
    if (m_desktop.clearWebSession)
        m_desktop.clearWebSession();
    co_await m_client.auth().signOut();
}

void AppModel::switchWorkspace(const QString& id)
{
    requireMainThread("AppModel::switchWorkspace");
    if (m_phase != Phase::SignedIn || id.isEmpty())
        return;
    const QString current =
        m_frame.value(QStringLiteral("workspace")).toMap().value(QStringLiteral("id")).toString();
    if (id == current)
        return;
    runSwitch(id);
}

QCoro::Task<> AppModel::runSwitch(QString id)
{
    QPointer<AppModel> self(this);
    setSwitchError({});
    QString failure;
    try {
        const Model::ActionOutcome outcome = co_await Calls::app::switchWorkspaceAction(id);
        if (outcome.error)
            failure = *outcome.error;
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self)
        co_return;
    if (!failure.isEmpty()) {
        // The current workspace stays in place.
        setSwitchError(failure);
        co_return;
    }
    // Words typed in one workspace's chats are not for the other's.
    Drafts::clear();
    co_await loadFrame();
}

void AppModel::reload()
{
    requireMainThread("AppModel::reload");
    if (m_phase == Phase::Launching && !m_frameError.isEmpty()) {
        // The start failed before the frame was asked for: start over.
        setFrameError({});
        runStart();
        return;
    }
    if (m_phase == Phase::SignedOut)
        return;
    loadFrame();
}

void AppModel::openUrl(const QUrl& url)
{
    requireMainThread("AppModel::openUrl");
    if (url.scheme() != Auth::callbackScheme)
        return;
    if (url.host() == QLatin1String("oauth")) {
        // The browser's sign-in coming back; never a route.
        emit callbackArrived(url);
        return;
    }
    if (m_phase != Phase::SignedIn) {
        m_pendingLinks.append(url);
        return;
    }
    m_router.openDeepLink(url);
}

void AppModel::deliverPendingLinks()
{
    const QList<QUrl> links = std::exchange(m_pendingLinks, {});
    for (const QUrl& url : links)
        m_router.openDeepLink(url);
    const QStringList paths = std::exchange(m_pendingPaths, {});
    for (const QString& path : paths)
        m_router.open(path);
}

void AppModel::dataChanged()
{
    requireMainThread("AppModel::dataChanged");
    m_changeTimer.start(); // restarting cancels the pending one
}

void AppModel::signOutFromService()
{
    signOut();
}

void AppModel::restartDataRefresh()
{
    if (m_phase != Phase::SignedIn)
        return;
    m_router.setTick(m_router.tick() + 1);
    // A frame load in flight refreshes the frame already, and a revalidate
    // on the frame's own answer would otherwise start the next one, and so
    // on without end.
    if (!m_loadingFrame)
        loadFrame();
}

void AppModel::openAppPath(const QString& path)
{
    if (m_phase == Phase::SignedIn)
        m_router.open(path);
    else
        m_pendingPaths.append(path);
}

void AppModel::startSetup(const QString& path)
{
    // A page's call sent to the setup shows it as a page of the frame. The
    // frame's own call sent there ends in loadFrame(), which shows the
    // setup in place of the frame.
    if (m_phase == Phase::SignedIn)
        m_router.open(path);
}

void AppModel::followSetup()
{
    if (m_phase == Phase::SignedIn || m_setupPath.isEmpty())
        return;
    const QString path = m_router.route().text();
    if (path.startsWith(QLatin1String("/setup"))) {
        if (path != m_setupPath) {
            m_setupPath = path;
            emit setupPathChanged();
        }
        return;
    }
    // The setup is over: the workspace's frame, on the page the setup
    // ended on, with a history that starts there.
    m_setupPath.clear();
    emit setupPathChanged();
    m_router.reset(m_router.route());
    loadFrame();
}

void AppModel::setPhase(Phase phase)
{
    if (m_phase == phase)
        return;
    m_phase = phase;
    emit phaseChanged();
}

void AppModel::setFrameError(const QString& error)
{
    if (m_frameError == error)
        return;
    m_frameError = error;
    emit frameErrorChanged();
}

void AppModel::setSignInError(const QString& error)
{
    if (m_signInError == error)
        return;
    m_signInError = error;
    emit signInErrorChanged();
}

void AppModel::setSigningIn(bool on)
{
    if (m_signingIn == on)
        return;
    m_signingIn = on;
    emit signingInChanged();
}

void AppModel::setLoadingFrame(bool on)
{
    if (m_loadingFrame == on)
        return;
    m_loadingFrame = on;
    emit loadingFrameChanged();
}

void AppModel::setSwitchError(const QString& error)
{
    if (m_switchError == error)
        return;
    m_switchError = error;
    emit switchErrorChanged();
}

} // namespace Kestro
