#pragma once

#include <QUrl>

namespace KestroTest {

// Signs in to the service at `origin` as the app would (authorize, follow
// the redirect, exchange the code) and leaves the tokens in the keyring, so
// an app launched afterwards starts signed in. Needs a Secret Service (run
// under scripts/headless-session) and a service that approves by itself
// (kestro-devservice --auto-approve).
void storeSignIn(const QUrl& origin);

} // namespace KestroTest
