#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace Kestro {

class PortalShortcuts;
class X11HotKey;

// Ctrl+Alt+K from anywhere on the desktop: brings Kestro forward with its
// command palette open. On X11 the key is grabbed on the root window; on
// Wayland the desktop's portal is asked for it, where the desktop offers
// one. Where neither works, `kestro --palette` does the same, for the user
// to bind in the desktop's keyboard settings; the refusal is logged once,
// never retried.
class GlobalHotKey : public QObject {
    Q_OBJECT
public:
    explicit GlobalHotKey(QObject* parent = nullptr);
    ~GlobalHotKey() override;

    // Registers the key once; a later call keeps the first registration
    // and its action.
    void install(std::function<void()> open);

    // What to press: "Ctrl+Alt+K", what the desktop bound instead, or empty
    // while asking and when there is no global key.
    QString key() const { return m_key; }
    // The registration has an outcome (a key, or none).
    bool settled() const { return m_settled; }

signals:
    void changed();

private:
    void settle(QString key, const QString& refusal);
    void press();

    std::function<void()> m_open;
    std::unique_ptr<X11HotKey> m_x11;
    std::unique_ptr<PortalShortcuts> m_portal;
    QString m_key;
    bool m_installed = false;
    bool m_settled = false;
};

} // namespace Kestro
