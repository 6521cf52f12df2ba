#pragma once

#include <QObject>
#include <QStringList>

#include <optional>

class QDBusVariant;

namespace Kestro {

// How the app looks: the mode ("system", "light", "dark"), the dark and the
// light shade, kept in the user's settings, and the desktop's own colour
// scheme read from the desktop portal (Qt 6.4 has no colour-scheme API).
// `dark` is the effective answer every view and web page follows.
class Appearance : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString mode READ mode WRITE setMode NOTIFY changed)
    Q_PROPERTY(QString darkShade READ darkShade WRITE setDarkShade NOTIFY changed)
    Q_PROPERTY(QString lightShade READ lightShade WRITE setLightShade NOTIFY changed)
    Q_PROPERTY(bool systemDark READ systemDark NOTIFY changed)
    Q_PROPERTY(bool dark READ isDark NOTIFY changed)
    // "system", "full" or "reduced"; `reduceMotion` is the effective answer.
    Q_PROPERTY(QString motion READ motion WRITE setMotion NOTIFY changed)
    Q_PROPERTY(bool systemReducedMotion READ systemReducedMotion NOTIFY changed)
    Q_PROPERTY(bool reduceMotion READ reduceMotion NOTIFY changed)
    Q_PROPERTY(QStringList motions READ motions CONSTANT)
    Q_PROPERTY(QStringList modes READ modes CONSTANT)
    Q_PROPERTY(QStringList darkShades READ darkShades CONSTANT)
    Q_PROPERTY(QStringList lightShades READ lightShades CONSTANT)

public:
    static const QStringList& modes();
    static const QStringList& darkShades();
    static const QStringList& lightShades();
    static const QStringList& motions();

    // Reads the settings; with `followDesktop`, also asks the desktop portal
    // for its colour scheme and listens for changes.
    explicit Appearance(bool followDesktop = true, QObject* parent = nullptr);

    QString mode() const { return m_mode; }
    QString darkShade() const { return m_darkShade; }
    QString lightShade() const { return m_lightShade; }
    bool systemDark() const { return m_systemDark; }
    bool isDark() const;
    QString motion() const { return m_motion; }
    bool systemReducedMotion() const;
    bool reduceMotion() const;

    void setMode(const QString& mode);
    void setDarkShade(const QString& shade);
    void setLightShade(const QString& shade);
    void setSystemDark(bool dark);
    void setMotion(const QString& motion);
    // The desktop's answers, as its portal gives them (GNOME's and KDE's
    // own settings count where the portal has no answer of its own).
    void setDesktopMotion(std::optional<bool> reduced, std::optional<bool> gnomeAnimations,
                          std::optional<double> kdeAnimationFactor);

signals:
    void changed();

private slots:
    void portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void readPortal();
    void readSetting(const QString& group, const QString& key);

    QString m_mode;
    QString m_darkShade;
    QString m_lightShade;
    QString m_motion;
    bool m_systemDark = false;
    std::optional<bool> m_reducedMotion;
    std::optional<bool> m_gnomeAnimations;
    std::optional<double> m_kdeAnimationFactor;
};

} // namespace Kestro
