#pragma once

#include <QString>

namespace Kestro {

// What the user typed in a composer and left without sending, by place
// ("kest", "kest/thread/<id>", "chat/<handle>/<thread>"). Kept in memory
// for the run: a page that is left and rebuilt, or a thread closed and
// opened again, gives the words back. Nothing reaches the disk.
namespace Drafts {

QString of(const QString& place);
// An empty or blank text forgets the place.
void keep(const QString& place, const QString& text);
// Forgets every place: another workspace or user must not see the words.
void clear();

} // namespace Drafts

} // namespace Kestro
