#pragma once

#include <QByteArray>
#include <QUrl>

#include <optional>

namespace Kestro {

// The longest line a later launch may hand over; a longer one ends the
// connection.
inline constexpr qsizetype handOffLineLimit = 8 * 1024;
// The line of `kestro --palette`: forward, with the command palette open.
inline constexpr char paletteHandOffLine[] = "palette";

// One line a later launch handed over, read: an empty line asks the window
// to come forward (an empty URL), a "kestro:" address is a deep link;
// anything else is not taken.
std::optional<QUrl> readHandOffLine(const QByteArray& line);

} // namespace Kestro
