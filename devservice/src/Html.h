#pragma once

#include <string>

namespace devservice {

std::string escapeHtml(const std::string& text);
// A whole HTML page in the service's look, titled "<title> · Kestro", that
// follows the "theme" local-storage key (light, dark or the system's).
std::string page(const std::string& title, const std::string& body, const std::string& extraHead = {});

} // namespace devservice
