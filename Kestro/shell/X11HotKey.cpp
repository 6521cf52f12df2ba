#include "X11HotKey.h"

#include <QGuiApplication>
#include <QList>
#include <QtGui/qguiapplication_platform.h>

#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <xcb/xcb.h>

namespace Kestro {

struct X11HotKey::Grab {
    xcb_connection_t* connection = nullptr;
    xcb_window_t root = 0;
    xcb_keycode_t keycode = 0;
    uint16_t modifiers = 0;
    uint16_t locks = 0; // the lock modifiers a press may carry besides
    QList<uint16_t> variants;
};

namespace {

// The modifier bit Num Lock sets on this server (Mod2 on nearly all).
uint16_t numLockMask(Display* display)
{
    uint16_t mask = 0;
    const KeyCode numLock = XKeysymToKeycode(display, XK_Num_Lock);
    if (XModifierKeymap* map = XGetModifierMapping(display)) {
        for (int modifier = 0; modifier < 8 && numLock != 0; ++modifier)
            for (int key = 0; key < map->max_keypermod; ++key)
                if (map->modifiermap[modifier * map->max_keypermod + key] == numLock)
                    mask = uint16_t(1U << modifier);
        XFreeModifiermap(map);
    }
    return mask ? mask : uint16_t(XCB_MOD_MASK_2);
}

} // namespace

std::unique_ptr<X11HotKey> X11HotKey::grab(unsigned long keysym, QString* refusal)
{
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->display() || !x11->connection()) {
        *refusal = QStringLiteral("the desktop does not run on X11");
        return nullptr;
    }
    Display* display = x11->display();
    auto grab = std::make_unique<Grab>();
    grab->connection = x11->connection();
    grab->root = xcb_window_t(DefaultRootWindow(display));
    grab->keycode = XKeysymToKeycode(display, KeySym(keysym));
    if (grab->keycode == 0) {
        *refusal = QStringLiteral("the keyboard has no such key");
        return nullptr;
    }
    grab->modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
    const uint16_t numLock = numLockMask(display);
    grab->locks = numLock | XCB_MOD_MASK_LOCK;
    grab->variants = {0, numLock, XCB_MOD_MASK_LOCK, uint16_t(numLock | XCB_MOD_MASK_LOCK)};

    // Each variant is checked: another program's grab of any of them is a
    // BadAccess, and the combination is then theirs. Presses always come
    // to the root window (owner_events off), even while one of Kestro's own
    // windows has the keyboard.
    QList<xcb_void_cookie_t> cookies;
    for (const uint16_t lock : std::as_const(grab->variants))
        cookies.append(xcb_grab_key_checked(grab->connection, 0, grab->root, grab->modifiers | lock,
                                            grab->keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    bool refused = false;
    for (const xcb_void_cookie_t cookie : std::as_const(cookies)) {
        if (xcb_generic_error_t* error = xcb_request_check(grab->connection, cookie)) {
            refused = true;
            free(error);
        }
    }
    if (refused) {
        for (const uint16_t lock : std::as_const(grab->variants))
            xcb_ungrab_key(grab->connection, grab->keycode, grab->root, grab->modifiers | lock);
        xcb_flush(grab->connection);
        *refusal = QStringLiteral("another program holds the combination");
        return nullptr;
    }
    std::unique_ptr<X11HotKey> key(new X11HotKey);
    key->m_grab = std::move(grab);
    qGuiApp->installNativeEventFilter(key.get());
    return key;
}

X11HotKey::~X11HotKey()
{
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
    if (!m_grab)
        return;
    for (const uint16_t lock : std::as_const(m_grab->variants))
        xcb_ungrab_key(m_grab->connection, m_grab->keycode, m_grab->root, m_grab->modifiers | lock);
    xcb_flush(m_grab->connection);
}

bool X11HotKey::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const uint8_t type = event->response_type & 0x7f;
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
        return false;
    const auto* key = static_cast<const xcb_key_press_event_t*>(message);
    if (key->event != m_grab->root || key->detail != m_grab->keycode)
        return false;
    // Button and other state bits aside, only the combination itself counts.
    const uint16_t held = key->state & 0xff & ~m_grab->locks;
    if (held != m_grab->modifiers)
        return false;
    // Qt goes on to take the press's time (it finds no window of its own
    // for the root and drops it), so the window raised after it asks the
    // window manager with a fresh timestamp and is not refused as stale.
    if (type == XCB_KEY_PRESS)
        QMetaObject::invokeMethod(this, &X11HotKey::pressed, Qt::QueuedConnection);
    return false;
}

} // namespace Kestro
