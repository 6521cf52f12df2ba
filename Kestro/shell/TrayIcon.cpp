#include "TrayIcon.h"

#include "DBusAnswer.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QHash>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformmenu.h>
#include <qpa/qplatformsystemtrayicon.h>
#include <qpa/qplatformtheme.h>

namespace Kestro {

namespace {

constexpr QLatin1StringView watcherService("org.kde.StatusNotifierWatcher");

// The app's icon at one size, drawn from its SVG once.
const QImage& plainIcon(int size)
{
    static QHash<int, QImage> drawn;
    auto at = drawn.find(size);
    if (at == drawn.end()) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        QSvgRenderer(QStringLiteral(":/Kestro/assets/kestro.svg")).render(&painter, QRectF(0, 0, size, size));
        painter.end();
        at = drawn.insert(size, image);
    }
    return *at;
}

QImage drawIcon(int size, int count)
{
    QImage image = plainIcon(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    if (count > 0) {
        // The count in a red disc at the top right, as launchers draw it.
        const QString text = count > 99 ? QStringLiteral("99+") : QString::number(count);
        QFont font;
        font.setBold(true);
        font.setPixelSize(std::max(8, size * 9 / 22));
        const qreal height = size * 0.62;
        const qreal width = std::max(height, QFontMetricsF(font).horizontalAdvance(text) + size * 0.22);
        const QRectF disc(size - width, 0, width, height);
        QPainterPath path;
        path.addRoundedRect(disc, height / 2, height / 2);
        painter.fillPath(path, QColor(0xd9, 0x30, 0x25));
        painter.setPen(Qt::white);
        painter.setFont(font);
        painter.drawText(disc, Qt::AlignCenter, text);
    }
    return image;
}

} // namespace

TrayIcon::TrayIcon(Hooks hooks, QDBusConnection bus, QObject* parent)
    : QObject(parent), m_hooks(std::move(hooks)), m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    // A host may come later (the panel restarts, or starts after Kestro).
    auto* watcher = new QDBusServiceWatcher(
        watcherService, m_bus,
        QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &TrayIcon::lookForHost);
    // The panel went: nothing shows the icon (or the count on it) now.
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &TrayIcon::hide);
    m_bus.connect(watcherService, QStringLiteral("/StatusNotifierWatcher"), watcherService,
                  QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(lookForHost()));
    lookForHost();
}

TrayIcon::~TrayIcon()
{
    if (m_icon)
        m_icon->cleanup();
}

void TrayIcon::hide()
{
    if (!m_icon)
        return;
    m_icon->cleanup();
    m_icon.reset();
    m_menu.reset();
    emit shownChanged();
}

void TrayIcon::lookForHost()
{
    if (m_icon)
        return;
    QDBusMessage get = QDBusMessage::createMethodCall(
        watcherService, QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QString(watcherService) << QStringLiteral("IsStatusNotifierHostRegistered");
    whenAnswered(m_bus, get, this, [this](const QDBusMessage& answer) {
        const QDBusReply<QDBusVariant> reply(answer);
        if (reply.isValid() && reply.value().variant().toBool())
            show();
    });
}

void TrayIcon::show()
{
    if (m_icon)
        return;
    QPlatformTheme* theme = QGuiApplicationPrivate::platformTheme();
    m_icon.reset(theme ? theme->createPlatformSystemTrayIcon() : nullptr);
    // Only Qt's own StatusNotifierItem: a desktop's theme plugin may hand
    // out a tray built on widgets, which this app (no QApplication) lacks.
    if (m_icon && qstrcmp(m_icon->metaObject()->className(), "QDBusTrayIcon") != 0) {
        qInfo("Kestro shows no tray icon: the desktop's Qt theme offers one Kestro cannot use (%s).",
              m_icon->metaObject()->className());
        m_icon.reset();
    }
    if (!m_icon)
        return;
    m_icon->init();
    m_menu.reset(m_icon->createMenu());
    if (m_menu) {
        auto add = [this](const QString& text, const std::function<void()>& action) {
            if (!action)
                return;
            QPlatformMenuItem* item = m_menu->createMenuItem();
            item->setParent(m_menu.get()); // the menu does not own its items
            item->setText(text);
            item->setEnabled(true);
            item->setVisible(true);
            connect(item, &QPlatformMenuItem::activated, this, action);
            m_menu->insertMenuItem(item, nullptr);
        };
        add(QStringLiteral("Open Needs you"), m_hooks.openNeedsYou);
        add(QStringLiteral("Check for Updates…"), m_hooks.checkForUpdates);
        add(QStringLiteral("Quit"), m_hooks.quit);
        m_icon->updateMenu(m_menu.get());
    }
    connect(m_icon.get(), &QPlatformSystemTrayIcon::activated, this,
            [this](QPlatformSystemTrayIcon::ActivationReason reason) {
                if (reason == QPlatformSystemTrayIcon::Trigger && m_hooks.raise)
                    m_hooks.raise();
            });
    paint();
    emit shownChanged();
}

void TrayIcon::setCount(int count)
{
    count = std::max(count, 0);
    if (count == m_count)
        return;
    m_count = count;
    paint();
}

void TrayIcon::paint()
{
    if (!m_icon)
        return;
    QIcon icon;
    for (const int size : {22, 32, 48, 64})
        icon.addPixmap(QPixmap::fromImage(drawIcon(size, m_count)));
    m_icon->updateIcon(icon);
    m_icon->updateToolTip(m_count > 0 ? QStringLiteral("Kestro: %1 unread").arg(m_count)
                                      : QStringLiteral("Kestro"));
}

} // namespace Kestro
