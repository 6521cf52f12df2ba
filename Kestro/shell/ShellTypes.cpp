#include "ShellTypes.h"

#include "KestroApp.h"

namespace Kestro::ShellTypes {

// QML asks for the singletons once the window loads, after KestroApp made
// them; asking without an app is a programming error.
namespace {
KestroApp& current()
{
    KestroApp* app = KestroApp::current();
    if (!app)
        qFatal("Kestro's QML types were used without a KestroApp.");
    return *app;
}
} // namespace

AppModel* app()
{
    return &current().app();
}
ShellState* shell()
{
    return &current().shell();
}
Appearance* appearance()
{
    return &current().appearance();
}
PageCatalog* pages()
{
    return &current().pages();
}
BellModel* bell()
{
    return &current().bell();
}
PaletteModel* commands()
{
    return &current().palette();
}
WebAuthSession* authSession()
{
    return &current().authSession();
}
WebViews* webViews()
{
    return &current().webViews();
}

DesktopExtras* desktop()
{
    return &current().desktop();
}

} // namespace Kestro::ShellTypes
