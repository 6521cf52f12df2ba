#pragma once

#include "calls/Model.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace Kestro::NotificationRules {

// The settings key of the newest `at` already posted to the desktop; it
// survives sign-out and relaunch.
inline constexpr char notifiedAtKey[] = "kestro:notified-at";

// An item's `at`: ISO-8601 with fractional seconds, else without; nothing
// when it reads neither way (such an item is never posted).
std::optional<QDateTime> parseAt(const QString& at);

// The actor's name, the verb and the title, the non-empty ones joined by
// one blank: "Quill finished Draft the launch post".
QString titleOf(const Model::NotificationView& item);

struct Fresh {
    QList<Model::NotificationView> items; // in the answer's order
    std::optional<QDateTime> latest;      // the newest `at` among them
};

// The unread items later than `since`: what the desktop has not shown yet.
Fresh pick(const QList<Model::NotificationView>& items, const QDateTime& since);

} // namespace Kestro::NotificationRules
