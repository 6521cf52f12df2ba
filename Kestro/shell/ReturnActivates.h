#pragma once

#include <QObject>

namespace Kestro {

// Return and keypad Enter press the focused button, as Space does: a
// sidebar place, a menu row, a list row or any other button. Qt Quick's
// buttons take Space only, while desktop users reach for Return. The press
// becomes a Space press and release on the same item, so the button acts
// (and keeps its focus ring) exactly as with Space. Text fields and the
// rest keep their Return.
class ReturnActivates : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace Kestro
