#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QString>

#include <memory>

namespace Kestro {

// A key combination grabbed on the X server's root window, so it reaches
// Kestro whichever window has the focus. The grab covers the combination
// with Num Lock and Caps Lock on or off, since X counts those as modifiers.
// Exists only while the grab holds; ungrabs when destroyed.
class X11HotKey : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
public:
    // Grabs Ctrl+Alt and `keysym` on this application's X display. Null with
    // `refusal` set when the application is not on X11, or when another
    // program holds the combination already.
    static std::unique_ptr<X11HotKey> grab(unsigned long keysym, QString* refusal);
    ~X11HotKey() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

signals:
    void pressed();

private:
    X11HotKey() = default;

    struct Grab;
    std::unique_ptr<Grab> m_grab;
};

} // namespace Kestro
