#pragma once

#include <QStringList>

namespace Kestroctl {

// Exit codes of `call`, one per kind of failure, so scripts can tell a
// refused request from a broken answer or a dead network.
enum Exit {
    Ok = 0,
    Failed = 1, // usage, bad input, sign-in refused
    Http = 2,
    Decode = 3,
    NotFound = 4,
    SignedOut = 5,
    Redirect = 6,
    Transport = 7,
};

struct Options {
    bool openBrowser = true;
};

int signIn(const Options& options);
int signOut();
int call(const QStringList& words);
int actions();
int usage(bool asError);

} // namespace Kestroctl
