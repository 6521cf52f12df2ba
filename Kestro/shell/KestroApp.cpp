#include "KestroApp.h"

#include "AppModel.h"
#include "Appearance.h"
#include "BellModel.h"
#include "DesktopExtras.h"
#include "DesktopNotifications.h"
#include "Fonts.h"
#include "IconProvider.h"
#include "LauncherBadge.h"
#include "Notifier.h"
#include "PageCatalog.h"
#include "PaletteModel.h"
#include "PlaceChords.h"
#include "ResidentMemory.h"
#include "ReturnActivates.h"
#include "RobotFace.h"
#include "Router.h"
#include "SchemeHandler.h"
#include "ShellState.h"
#include "SingleInstance.h"
#include "Visibility.h"
#include "WebAuthSession.h"
#include "WebEngine.h"
#include "WebViews.h"

#include "agentwork/SiteIconProvider.h"
#include "richtext/RichTextTypes.h"
#include "service/Auth.h"
#include "service/Client.h"
#include "service/LogRedaction.h"
#include "service/ServiceOrigin.h"

#include <QCommandLineParser>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTextStream>
#include <QThread>
#include <QtQml/qqmlextensionplugin.h>

// The app's QML modules are static libraries: their plugins are linked in.
Q_IMPORT_QML_PLUGIN(Kestro_ShellPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_PagesPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_ComposerPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_AgentWorkPlugin)

namespace Kestro {

void KestroApp::prepare()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Kestro"));
    QCoreApplication::setApplicationName(QStringLiteral("Kestro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTRO_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("kestro"));
    WebEngine::prepare();
}

namespace {
KestroApp* s_current = nullptr;
} // namespace

KestroApp* KestroApp::current()
{
    return s_current;
}

KestroApp::KestroApp(QObject* parent) : QObject(parent)
{
    s_current = this;
    LogRedaction::install();
    WebEngine::removeOldSiteData();
    loadBundledFonts();
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    // Text fields do not blink on their own: a caret that blinks forever
    // redraws the window twice a second while the user only reads (a
    // focused composer took 3% of a core on a software renderer). The
    // prompt bar blinks its own caret for a few seconds after each key.
    QGuiApplication::styleHints()->setCursorFlashTime(0);

    Client& client = Client::shared();
    m_router = std::make_unique<Router>(client.origin(), Route::parse(QString(AppModel::startPath)),
                                        [](const QUrl& url) { QDesktopServices::openUrl(url); });
    // The sheet's view needs the engine, which must start before any view
    // exists (it learns the "kestro" scheme then).
    m_authSession =
        std::make_unique<WebAuthSession>([](const QUrl& url) { return QDesktopServices::openUrl(url); },
                                         [this] { return m_webViews->start(); });
    m_appearance = std::make_unique<Appearance>();
    m_shell = std::make_unique<ShellState>();
    m_pages = std::make_unique<PageCatalog>();
    m_bell = std::make_unique<BellModel>();
    m_notifications = std::make_unique<DesktopNotifications>();
    m_badge = std::make_unique<LauncherBadge>();
    // A click opens its page as any in-app link does (kept for later while
    // the frame loads) and shows the item read in the bell at once.
    m_notifier = std::make_unique<Notifier>(
        *m_notifications, Notifier::Hooks{[this](const QString& path) { m_app->openAppPath(path); },
                                          [this](const QString& id) { m_bell->markRead(id); }});
    m_palette = std::make_unique<PaletteModel>();
    m_desktop = std::make_unique<DesktopExtras>(
        *m_badge, DesktopExtras::Hooks{[this] { openPalette(); },
                                       [this](const QString& path) { m_app->openAppPath(path); },
                                       [this] { raise(); }, [] { QCoreApplication::quit(); },
                                       [](const QUrl& url) { QDesktopServices::openUrl(url); }});

    AppModel::Desktop desktop;
    WebAuthSession* session = m_authSession.get();
    desktop.authenticate = [session](QUrl authorize) { return session->authenticate(std::move(authorize)); };
    desktop.clearWebSession = [this] { m_webViews->clearSession(); };
    desktop.clearBadge = [this] { m_desktop->setUnread(0); };
    m_app = std::make_unique<AppModel>(client, *m_router, std::move(desktop));
    m_webViews = std::make_unique<WebViews>(client.origin(), client.auth(), *m_app, *m_appearance);

    connect(m_app.get(), &AppModel::callbackArrived, session, &WebAuthSession::deliver);
    // The sheet's sign-in ends on a "kestro://oauth/..." address; a
    // "kestro:" link on a service page is a deep link.
    connect(m_webViews.get(), &WebViews::schemeAddress, this, [this](const QUrl& url) {
        if (url.host() == QLatin1String("oauth"))
            m_authSession->navigated(url);
        else
            m_app->openUrl(url);
    });
    // The bell polls while the signed-in frame shows (and is emptied when
    // it goes); every frame brings the unread count along.
    connect(m_app.get(), &AppModel::phaseChanged, this, [this] {
        const bool signedIn = m_app->phase() == AppModel::Phase::SignedIn;
        if (signedIn) {
            m_notifier->start();
            m_desktop->signedIn();
        } else {
            m_notifications->closeAll();
        }
        m_bell->setActive(signedIn);
        if (std::exchange(m_paletteWaits, false) && signedIn)
            m_shell->setPaletteOpen(true);
    });
    // After each poll of the count, the desktop hears what is new; the
    // launcher shows the count the bell shows.
    connect(m_bell.get(), &BellModel::polled, this, [this] {
        if (m_bell->unread() > 0)
            m_notifier->notifyNew();
    });
    connect(m_bell.get(), &BellModel::unreadChanged, this, [this] {
        if (m_bell->isActive())
            m_desktop->setUnread(m_bell->unread());
    });
    connect(m_notifier.get(), &Notifier::raiseRequested, this, &KestroApp::raise);
    connect(m_app.get(), &AppModel::frameChanged, this, [this] {
        const QVariantMap frame = m_app->frame();
        // Another workspace's banners speak of things this one does not have.
        const QString workspace =
            frame.value(QStringLiteral("workspace")).toMap().value(QStringLiteral("id")).toString();
        const QString before = std::exchange(m_workspace, workspace);
        if (!before.isEmpty() && !workspace.isEmpty() && workspace != before)
            m_notifications->closeAll();
        m_palette->setTeammates(frame.value(QStringLiteral("kest")).toList());
        if (m_bell->isActive())
            m_bell->setUnread(
                frame.value(QStringLiteral("counts")).toMap().value(QStringLiteral("notifications")).toInt());
    });

    // The first four places answer to Ctrl+Shift and their digit key.
    auto* chords = new PlaceChords([this] { return m_app->phase() == AppModel::Phase::SignedIn; }, this);
    qApp->installEventFilter(chords);
    qApp->installEventFilter(new ReturnActivates(this));
    connect(chords, &PlaceChords::pressed, this, [this](int place) {
        if (place < PageCatalog::placeList().size())
            m_router->open(PageCatalog::placeList()[place].path);
    });

    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_engine->addImportPath(QStringLiteral("qrc:/"));
    m_engine->addImageProvider(QStringLiteral("icon"), new IconProvider);
    m_engine->addImageProvider(QStringLiteral("robot"), new RobotFaceProvider);
    m_engine->addImageProvider(QStringLiteral("site"), new SiteIconProvider);
    addRichTextImageProviders(*m_engine);
}

KestroApp::~KestroApp()
{
    // The window goes before the models its bindings read.
    m_engine.reset();
    if (s_current == this)
        s_current = nullptr;
}

bool KestroApp::show()
{
    m_engine->load(QUrl(QStringLiteral("qrc:/Kestro/Shell/Main.qml")));
    if (m_engine->rootObjects().isEmpty()) {
        QTextStream(stderr) << "Kestro could not load its window (the messages above say why). "
                               "Reinstall Kestro, or report these messages.\n";
        return false;
    }
    // Timed page reloads wait while the window is minimised or hidden.
    QQuickWindow* main = window();
    auto follow = [main] {
        Visibility::shared().setVisible(main->isVisible() && main->visibility() != QWindow::Minimized &&
                                        main->visibility() != QWindow::Hidden);
    };
    connect(main, &QWindow::visibilityChanged, this, follow);
    follow();
    return true;
}

QQuickWindow* KestroApp::window() const
{
    const auto roots = m_engine->rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
}

void KestroApp::openUrl(const QUrl& url)
{
    if (!url.isEmpty())
        m_app->openUrl(url);
    raise();
}

void KestroApp::exitWhenReady()
{
    // For the start-up benchmark: "ready <kB>" once the signed-in frame has
    // been drawn, "settled <kB>" once its first page has loaded, then quit.
    connect(m_app.get(), &AppModel::phaseChanged, this, [this] {
        if (m_app->phase() != AppModel::Phase::SignedIn || !window())
            return;
        connect(
            window(), &QQuickWindow::frameSwapped, this,
            [] { QTextStream(stdout) << "ready " << residentKilobytes() << Qt::endl; },
            Qt::SingleShotConnection);
        window()->update();
    });
    connect(m_shell.get(), &ShellState::pageShown, this, [] {
        QTextStream(stdout) << "settled " << residentKilobytes() << Qt::endl;
        QCoreApplication::quit();
    });
}

void KestroApp::openPalette()
{
    raise();
    // Asked for while the frame is still coming (a launch with --palette):
    // it opens with the frame. Signed out, there is nothing to search.
    if (m_app->phase() == AppModel::Phase::SignedIn)
        m_shell->setPaletteOpen(true);
    else
        m_paletteWaits = m_app->phase() == AppModel::Phase::Launching;
}

void KestroApp::raise()
{
    if (QQuickWindow* w = window()) {
        // A minimised window is not brought back by show() alone.
        w->setWindowStates(w->windowStates() & ~Qt::WindowMinimized);
        w->show();
        w->raise();
        w->requestActivate();
    }
}

int KestroApp::main(int argc, char** argv)
{
    prepare();
    // The command line is read before the application object exists, so
    // --help and --version work without a display.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Kestro desktop: your workspace and its kest."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption originOption(
        QStringLiteral("origin"),
        QStringLiteral("Use the Kestro service at URL for this run (nothing is written to the settings)."),
        QStringLiteral("URL"));
    parser.addOption(originOption);
    const QCommandLineOption paletteOption(
        QStringLiteral("palette"),
        QStringLiteral("Bring Kestro forward with its command palette open (bind this to a key where "
                       "Ctrl+Alt+K is not available)."));
    parser.addOption(paletteOption);
    parser.addPositionalArgument(QStringLiteral("url"), QStringLiteral("kestro: addresses to open."),
                                 QStringLiteral("[url...]"));
    if (!parser.parse(arguments)) {
        QTextStream(stderr) << parser.errorText() << "\n";
        return 1;
    }
    if (parser.isSet(help)) {
        QTextStream(stdout) << parser.helpText().replace(QStringLiteral("<executable_name>"),
                                                         QStringLiteral("kestro"));
        return 0;
    }
    if (parser.isSet(version)) {
        QTextStream(stdout) << "Kestro " << KESTRO_VERSION << "\n";
        return 0;
    }
    if (parser.isSet(originOption)) {
        const auto origin = ServiceOrigin::parse(parser.value(originOption));
        if (!origin) {
            QTextStream(stderr) << "The address given with --origin, \"" << parser.value(originOption)
                                << "\", is not an http or https address. Give a full address, such as "
                                   "--origin http://127.0.0.1:8787.\n";
            return 1;
        }
        ServiceOrigin::setOverride(*origin);
    }
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        QTextStream(stderr) << "Kestro needs a graphical desktop, and none was found (DISPLAY and "
                               "WAYLAND_DISPLAY are not set). Start it from your desktop session.\n";
        return 1;
    }
    QGuiApplication application(argc, argv);

    QList<QUrl> urls;
    for (const QString& argument : parser.positionalArguments())
        urls.append(QUrl(argument));

    // One instance per user, whatever service it talks to: the browser's
    // sign-in comes back through a plain "kestro <address>" launch, which
    // must reach the window that waits for it.
    SingleInstance instance(SingleInstance::defaultName());
    const bool palette = parser.isSet(paletteOption);
    if (instance.handOff(urls, palette))
        return 0;
    if (!instance.listen()) {
        // Another launch holds the lock and is still starting: its socket
        // answers in a moment.
        for (int attempt = 0; attempt < 10; ++attempt) {
            QThread::msleep(200);
            if (instance.handOff(urls, palette))
                return 0;
        }
    }
    // The browser's sign-in comes back as a "kestro:" address.
    SchemeHandler::ensureRegistered(QCoreApplication::applicationFilePath());

    KestroApp app;
    QObject::connect(&instance, &SingleInstance::received, &app, &KestroApp::openUrl);
    QObject::connect(&instance, &SingleInstance::paletteRequested, &app, &KestroApp::openPalette);
    if (!app.show())
        return 1;
    if (qEnvironmentVariableIsSet("KESTRO_EXIT_WHEN_READY"))
        app.exitWhenReady();
    for (const QUrl& url : urls)
        app.openUrl(url);
    if (palette)
        app.openPalette();
    return application.exec();
}

} // namespace Kestro
