#include "ReturnActivates.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QQuickItem>

namespace Kestro {

namespace {

bool isButton(const QObject* object)
{
    return object && object->inherits("QQuickAbstractButton");
}

} // namespace

bool ReturnActivates::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
        return false;
    // Only plain Return (the keypad's Enter carries KeypadModifier).
    if ((key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    // Key events reach the window first and then the item with the focus;
    // the focused button is the one to press, once.
    auto* item = qobject_cast<QQuickItem*>(watched);
    if (!item || !item->hasActiveFocus() || !isButton(item) || !item->isEnabled())
        return false;
    QKeyEvent space(key->type(), Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), key->isAutoRepeat());
    QCoreApplication::sendEvent(item, &space);
    return true;
}

} // namespace Kestro
