#pragma once

#include <QString>

namespace Kestro::LogRedaction {

// Installs a message handler that hides secrets from every line the program
// logs: the tokens this process holds, any "Bearer ..." value, and
// code, token, access_token / refresh_token / code_verifier and session
// cookie values in queries, forms, cookies and JSON.
void install();

// The secrets to hide by their exact text, remembered as they arrive and
// kept for the whole run: a token replaced or signed out of can still turn
// up in a later line.
void remember(const QString& secret);

// The redaction itself, for the handler and for tests.
QString redact(QString line);

} // namespace Kestro::LogRedaction
