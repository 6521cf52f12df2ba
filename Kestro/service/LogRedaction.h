#pragma once

#include <QString>

namespace Kestro::LogRedaction {

// Installs a message handler that hides secrets from every line the program
// logs: the tokens this process holds, any "Bearer ..." value, and
// access_token / refresh_token / code_verifier values in forms and JSON.
void install();

// The secrets to hide by their exact text; tokens are remembered as they
// arrive, and forgotten when they are replaced.
void remember(const QString& secret);
void forget(const QString& secret);

// The redaction itself, for the handler and for tests.
QString redact(QString line);

} // namespace Kestro::LogRedaction
