#pragma once

#include <QObject>

#include <functional>

namespace Kestro {

// Ctrl+Shift+1 to 4 (Home, Needs you, Tasks, Kest chat) on the physical
// digit keys of the top row, whatever the layout makes of them: with Shift
// held, a US layout sends "#" and "$" for 3 and 4, and AZERTY types digits
// only with Shift, so no key sequence matches on every keyboard. The keys
// are told apart by their scan codes (X and evdev number the top-row 1 to 4
// as 10 to 13), read off key presses as they reach the window. No Shortcut
// may name these chords: Qt's shortcut map would take the press first, and
// "Ctrl+Shift+4" next to "Ctrl+$" is ambiguous, so neither would fire.
class PlaceChords : public QObject {
    Q_OBJECT

public:
    // `active` tells whether the places can be opened now (signed in):
    // otherwise the keys go on to whatever has the focus.
    PlaceChords(std::function<bool()> active, QObject* parent = nullptr)
        : QObject(parent), m_active(std::move(active))
    {
    }

    // The place (0 to 3) a key press asks for, or -1.
    static int placeOf(quint32 nativeScanCode, int key, Qt::KeyboardModifiers modifiers);

signals:
    void pressed(int place);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<bool()> m_active;
};

} // namespace Kestro
