#pragma once

#include "Service.h"

namespace httplib {
class Server;
}

namespace devservice {

// The service's own web pages for the paths the app shows in a web view,
// signed in through the session cookie; plus icons, flags and the update feed.
void installPages(httplib::Server& server, Service& service);

} // namespace devservice
