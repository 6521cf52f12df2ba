#pragma once

#include <QUrl>

namespace Kestro {
class Auth;
}

namespace KestroTest {

// Signs `auth` in at its service as the app would: authorize, take the
// redirect's callback, exchange the code. The service must approve by
// itself (kestro-devservice --auto-approve); the tokens land in the store
// `auth` was given. Stops the program when the service does not answer so.
void signIn(Kestro::Auth& auth);

// The same into the Secret Service, so an app launched afterwards starts
// signed in (run under scripts/headless-session).
void storeSignIn(const QUrl& origin);

} // namespace KestroTest
