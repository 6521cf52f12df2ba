#include "PlaceChords.h"

#include <QKeyEvent>
#include <QWindow>

namespace Kestro {

int PlaceChords::placeOf(quint32 nativeScanCode, int key, Qt::KeyboardModifiers modifiers)
{
    // The keypad flag and the layout group switch say nothing about intent.
    const Qt::KeyboardModifiers held = modifiers & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    if (held != (Qt::ControlModifier | Qt::ShiftModifier))
        return -1;
    // A press made inside the program (a test, an input method) has no scan
    // code: its key says which digit.
    if (nativeScanCode == 0)
        return key >= Qt::Key_1 && key <= Qt::Key_4 ? key - Qt::Key_1 : -1;
    constexpr quint32 firstDigit = 10; // the "1" key: evdev 2, plus X's offset of 8
    if (nativeScanCode < firstDigit || nativeScanCode > firstDigit + 3)
        return -1;
    return int(nativeScanCode - firstDigit);
}

bool PlaceChords::eventFilter(QObject* watched, QEvent* event)
{
    // Windows only: the same press reaches the focused item afterwards.
    if (event->type() != QEvent::KeyPress || !watched->isWindowType())
        return false;
    auto* key = static_cast<QKeyEvent*>(event);
    const int place = placeOf(key->nativeScanCode(), key->key(), key->modifiers());
    if (place < 0 || (m_active && !m_active()))
        return false;
    if (!key->isAutoRepeat())
        emit pressed(place);
    return true;
}

} // namespace Kestro
