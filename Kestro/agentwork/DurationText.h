#pragma once

#include "Duration.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// The duration wording for views: Duration.text(seconds).
class DurationText : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Duration)
    QML_SINGLETON

public:
    using QObject::QObject;
    Q_INVOKABLE static QString text(double seconds) { return durationText(seconds); }
};

} // namespace Kestro
