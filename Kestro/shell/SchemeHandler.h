#pragma once

#include <QString>

#include <functional>

namespace Kestro::SchemeHandler {

// The desktop entry that hands "kestro:" addresses (the browser's sign-in
// callback, deep links) to `program`.
QString desktopEntry(const QString& program);

// The browser sign-in ends on a "kestro:" address, which only reaches the
// app when the desktop knows who opens it. When no program handles
// "kestro:" for this user (an installed package's entry does), this writes
// an entry for `program` under $XDG_DATA_HOME/applications and makes it the
// default with xdg-mime. It runs in the background and does nothing where
// xdg-mime is missing or under Flatpak; `done` hears whether it registered.
void ensureRegistered(const QString& program, std::function<void(bool registered)> done = {});

} // namespace Kestro::SchemeHandler
