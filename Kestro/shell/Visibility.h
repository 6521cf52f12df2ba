#pragma once

#include <QObject>

namespace Kestro {

// Whether the app can be seen at all: false while its window is minimised
// or hidden. Timed reloads wait while it is false. GUI thread only.
class Visibility : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY visibleChanged)
public:
    static Visibility& shared();

    bool isVisible() const { return m_visible; }
    void setVisible(bool visible);

signals:
    void visibleChanged();

private:
    bool m_visible = true;
};

} // namespace Kestro
