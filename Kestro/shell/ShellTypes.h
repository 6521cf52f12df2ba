#pragma once

// What the shell's QML sees of the app's C++ objects, in one place: the
// singletons the one KestroApp owns, and the types views name for their
// enumerations. The objects themselves stay free of QML so the shell's logic
// is tested without a display.

#include "AppModel.h"
#include "Appearance.h"
#include "BellModel.h"
#include "DesktopExtras.h"
#include "PageCatalog.h"
#include "PaletteModel.h"
#include "Router.h"
#include "ShellState.h"
#include "Updates.h"
#include "WebAuthSession.h"
#include "WebViews.h"

#include <QJSEngine>
#include <QtQml/qqml.h>

namespace Kestro::ShellTypes {

// The instance KestroApp made, handed to the engine that asks for it.
template <typename T> T* handOver(T* object)
{
    QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
    return object;
}

AppModel* app();
ShellState* shell();
Appearance* appearance();
PageCatalog* pages();
BellModel* bell();
PaletteModel* commands();
WebAuthSession* authSession();
WebViews* webViews();
DesktopExtras* desktop();

struct AppSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::AppModel)
    QML_NAMED_ELEMENT(App)
    QML_SINGLETON
public:
    static AppModel* create(QQmlEngine*, QJSEngine*) { return handOver(app()); }
};
struct ShellSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::ShellState)
    QML_NAMED_ELEMENT(Shell)
    QML_SINGLETON
public:
    static ShellState* create(QQmlEngine*, QJSEngine*) { return handOver(shell()); }
};
struct AppearanceSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::Appearance)
    QML_NAMED_ELEMENT(Appearance)
    QML_SINGLETON
public:
    static Appearance* create(QQmlEngine*, QJSEngine*) { return handOver(appearance()); }
};
struct PagesSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::PageCatalog)
    QML_NAMED_ELEMENT(Pages)
    QML_SINGLETON
public:
    static PageCatalog* create(QQmlEngine*, QJSEngine*) { return handOver(pages()); }
};
struct BellSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::BellModel)
    QML_NAMED_ELEMENT(Bell)
    QML_SINGLETON
public:
    static BellModel* create(QQmlEngine*, QJSEngine*) { return handOver(bell()); }
};
struct CommandsSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::PaletteModel)
    QML_NAMED_ELEMENT(Commands)
    QML_SINGLETON
public:
    static PaletteModel* create(QQmlEngine*, QJSEngine*) { return handOver(commands()); }
};
struct AuthSessionSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::WebAuthSession)
    QML_NAMED_ELEMENT(AuthSession)
    QML_SINGLETON
public:
    static WebAuthSession* create(QQmlEngine*, QJSEngine*) { return handOver(authSession()); }
};
struct WebViewsSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::WebViews)
    QML_NAMED_ELEMENT(WebViews)
    QML_SINGLETON
public:
    static WebViews* create(QQmlEngine*, QJSEngine*) { return handOver(webViews()); }
};
struct DesktopSingleton {
    Q_GADGET
    QML_FOREIGN(Kestro::DesktopExtras)
    QML_NAMED_ELEMENT(Desktop)
    QML_SINGLETON
public:
    static DesktopExtras* create(QQmlEngine*, QJSEngine*) { return handOver(desktop()); }
};
struct UpdatesType {
    Q_GADGET
    QML_FOREIGN(Kestro::Updates)
    QML_NAMED_ELEMENT(Updates)
    QML_UNCREATABLE("Updates belong to the desktop.")
};
struct WebBridgeType {
    Q_GADGET
    QML_FOREIGN(Kestro::WebBridge)
    QML_NAMED_ELEMENT(WebBridge)
};

} // namespace Kestro::ShellTypes
