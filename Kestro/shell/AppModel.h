#pragma once

#include "Router.h"
#include "service/AppLink.h"

#include <QCoroTask>
#include <QTimer>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace Kestro {

class Client;

// The root model of the signed-in session: whether the user is signed in,
// the workspace frame the sidebar and header show, sign-in progress and its
// error, the frame's load error, and the one router. GUI thread only.
class AppModel : public AppLink {
    Q_OBJECT
    Q_PROPERTY(Phase phase READ phase NOTIFY phaseChanged)
    Q_PROPERTY(QVariantMap frame READ frame NOTIFY frameChanged)
    Q_PROPERTY(QString frameError READ frameError NOTIFY frameErrorChanged)
    Q_PROPERTY(QString signInError READ signInError NOTIFY signInErrorChanged)
    Q_PROPERTY(bool signingIn READ isSigningIn NOTIFY signingInChanged)
    Q_PROPERTY(bool loadingFrame READ isLoadingFrame NOTIFY loadingFrameChanged)
    Q_PROPERTY(QString switchError READ switchError NOTIFY switchErrorChanged)
    Q_PROPERTY(QString setupPath READ setupPath NOTIFY setupPathChanged)
    Q_PROPERTY(bool canWrite READ canWrite NOTIFY frameChanged)
    Q_PROPERTY(Kestro::Router* router READ router CONSTANT)

public:
    enum class Phase { Launching, SignedOut, SignedIn };
    Q_ENUM(Phase)

    // What the model asks of the desktop around it. The app fills these
    // with the sign-in sheet, the web views and the launcher badge; tests
    // with fakes.
    struct Desktop {
        // Shows the authorization address and hands back the "kestro:"
        // address the service sent the user to; absent when the user gave up.
        std::function<QCoro::Task<std::optional<QUrl>>(QUrl authorize)> authenticate;
        // Drops the embedded web views' cookies and site data.
        std::function<void()> clearWebSession;
        // Clears the unread count shown on the launcher.
        std::function<void()> clearBadge;
    };

    // The route a signed-in window opens on, and the one a workspace switch
    // returns to ("/" itself belongs to the web site).
    static constexpr QLatin1StringView startPath{"/activity"};

    AppModel(Client& client, Router& router, Desktop desktop, QObject* parent = nullptr);
    ~AppModel() override;

    Phase phase() const { return m_phase; }
    QVariantMap frame() const { return m_frame; }
    QString frameError() const { return m_frameError; }
    QString signInError() const { return m_signInError; }
    bool isSigningIn() const { return m_signingIn; }
    bool isLoadingFrame() const { return m_loadingFrame; }
    QString switchError() const { return m_switchError; }
    QString setupPath() const { return m_setupPath; }
    bool canWrite() const;
    Router* router() const { return &m_router; }

    // Reads the stored sign-in and, with one, loads the frame.
    Q_INVOKABLE void start();
    Q_INVOKABLE void signIn();
    Q_INVOKABLE void signOut();
    Q_INVOKABLE void switchWorkspace(const QString& id);
    // Loads the frame again ("Try again" on the failure page, data changes).
    Q_INVOKABLE void reload();
    // A URL the system opened in the app: the sign-in's callback or a deep
    // link. Links that arrive before the frame is shown wait for it, as do
    // the service's redirects.
    Q_INVOKABLE void openUrl(const QUrl& url);
    // A web page said its data changed: after a quarter of a second without
    // another such message, the router's tick moves and pages reload.
    Q_INVOKABLE void dataChanged();

    // AppLink
    void signOutFromService() override;
    void restartDataRefresh() override;
    void openAppPath(const QString& path) override;
    void startSetup(const QString& path) override;

signals:
    void phaseChanged();
    void frameChanged();
    void frameErrorChanged();
    void signInErrorChanged();
    void signingInChanged();
    void loadingFrameChanged();
    void switchErrorChanged();
    void setupPathChanged();
    // The sign-in's "kestro://oauth/..." address arrived as a deep link (the
    // "Use my browser" path waits for it).
    void callbackArrived(const QUrl& url);

private:
    QCoro::Task<> runStart();
    QCoro::Task<> runSignIn();
    QCoro::Task<> runSignOut();
    QCoro::Task<> runSwitch(QString id);
    // Loads the frame; true when it is shown.
    QCoro::Task<bool> loadFrame();
    void setPhase(Phase phase);
    void setFrameError(const QString& error);
    void setSignInError(const QString& error);
    void setSigningIn(bool on);
    void setLoadingFrame(bool on);
    void setSwitchError(const QString& error);
    void deliverPendingLinks();
    // The router moved while the workspace is being set up: the next step,
    // or the end of the setup.
    void followSetup();

    Client& m_client;
    Router& m_router;
    Desktop m_desktop;
    Phase m_phase = Phase::Launching;
    QVariantMap m_frame;
    QString m_frameError;
    QString m_signInError;
    QString m_switchError;
    QString m_setupPath;
    bool m_signingIn = false;
    bool m_loadingFrame = false;
    bool m_started = false;
    quint64 m_frameGeneration = 0;
    QList<QUrl> m_pendingLinks;
    // Paths the service sent the app to before the frame showed.
    QStringList m_pendingPaths;
    bool m_frameRedirected = false; // the frame call was sent elsewhere once
    QTimer m_changeTimer;
};

} // namespace Kestro
