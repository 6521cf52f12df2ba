#pragma once

#include "Service.h"

#include <memory>

namespace httplib {
class Server;
}

namespace devservice {

// Builds the HTTP server with every route: sign-in, actions, pages.
std::unique_ptr<httplib::Server> makeServer(Service& service);

} // namespace devservice
