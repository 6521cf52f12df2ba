#include "Visibility.h"

#include "MainThread.h"

namespace Kestro {

Visibility& Visibility::shared()
{
    static Visibility* visibility = new Visibility;
    return *visibility;
}

void Visibility::setVisible(bool visible)
{
    requireMainThread("Visibility::setVisible");
    if (visible == m_visible)
        return;
    m_visible = visible;
    emit visibleChanged();
}

} // namespace Kestro
