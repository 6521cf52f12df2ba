#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>

class QGuiApplication;
class QQmlApplicationEngine;
class QQuickWindow;

namespace Kestro {

class AppModel;
class Appearance;
class BellModel;
class DesktopExtras;
class DesktopNotifications;
class LauncherBadge;
class Notifier;
class PageCatalog;
class PaletteModel;
class Router;
class ShellState;
class WebAuthSession;
class WebViews;

// The application: the one AppModel and the shell's state, the main window
// with its menu commands, sign-in through the web sheet, the embedded web
// pages and deep links. main() is KestroApp::main(); tests build one in
// their own process the same way.
class KestroApp : public QObject {
    Q_OBJECT
public:
    // What must happen before the application object exists: the web
    // engine's set-up and the "kestro" scheme, so navigations to it are seen.
    static void prepare();
    static int main(int argc, char** argv);

    // The app this process runs (QML's singletons are its objects).
    static KestroApp* current();

    explicit KestroApp(QObject* parent = nullptr);
    ~KestroApp() override;

    // Loads the window; false (after printing why) when QML did not load.
    bool show();
    // A URL the system handed over: sign-in callback or deep link.
    void openUrl(const QUrl& url);
    // Prints "ready <resident kB>" and quits once the signed-in frame is
    // drawn (KESTRO_EXIT_WHEN_READY, for the start-up benchmark).
    void exitWhenReady();
    // Brings the window forward with the command palette open (the global
    // key, `kestro --palette`).
    void openPalette();

    AppModel& app() const { return *m_app; }
    Router& router() const { return *m_router; }
    ShellState& shell() const { return *m_shell; }
    Appearance& appearance() const { return *m_appearance; }
    PageCatalog& pages() const { return *m_pages; }
    BellModel& bell() const { return *m_bell; }
    LauncherBadge& badge() const { return *m_badge; }
    DesktopExtras& desktop() const { return *m_desktop; }
    PaletteModel& palette() const { return *m_palette; }
    WebAuthSession& authSession() const { return *m_authSession; }
    WebViews& webViews() const { return *m_webViews; }
    QQmlApplicationEngine& engine() const { return *m_engine; }
    QQuickWindow* window() const;

private:
    void raise();

    std::unique_ptr<Router> m_router;
    std::unique_ptr<AppModel> m_app;
    std::unique_ptr<ShellState> m_shell;
    std::unique_ptr<Appearance> m_appearance;
    std::unique_ptr<PageCatalog> m_pages;
    std::unique_ptr<BellModel> m_bell;
    std::unique_ptr<DesktopNotifications> m_notifications;
    std::unique_ptr<LauncherBadge> m_badge;
    std::unique_ptr<Notifier> m_notifier;
    std::unique_ptr<DesktopExtras> m_desktop;
    bool m_paletteWaits = false;
    QString m_workspace; // the frame's, to tell a switch
    std::unique_ptr<PaletteModel> m_palette;
    std::unique_ptr<WebAuthSession> m_authSession;
    std::unique_ptr<WebViews> m_webViews;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
};

} // namespace Kestro
