// SPDX-License-Identifier: MIT
#include <algorithm>

#include "streams/web_server.h"

namespace twr {
namespace {

bool EqualsInAscii(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(left, right, {}, lower, lower);
}

// Without its port: "[::1]:80" is "::1". Empty if it is none.
std::string_view HostOf(std::string_view place) {
    const bool bracketed = place.starts_with('[');
    const std::size_t end = bracketed ? place.find(']') : std::min(place.find(':'), place.size());
    if (end == place.npos) return {};
    const std::string_view port = place.substr(end + (bracketed ? 1 : 0));
    const bool isPort = port.empty() || (port[0] == ':' && port.find_first_not_of("0123456789", 1) == port.npos);
    return isPort ? place.substr(bracketed ? 1 : 0, end - (bracketed ? 1 : 0)) : std::string_view();
}

}  // namespace

bool WebGuard::Admits(const WebRequest& request) const {
    const std::string_view host = HostOf(request.host);
    return (IsAddress(host) || IsOurs(host)) && MayAsk(request.origin, request.host);
}

bool WebGuard::IsOurs(std::string_view host) const {
    if (EqualsInAscii(host, "localhost")) return true;
    if (machine_.empty()) return false;
    const std::string_view bare = std::string_view(machine_).substr(0, machine_.find('.'));
    return EqualsInAscii(host, machine_) || EqualsInAscii(host, bare) || EqualsInAscii(host, std::string(bare) + ".local");
}

// A program that is no browser names no origin.
bool WebGuard::MayAsk(std::string_view origin, std::string_view host) const {
    if (origin.empty() || allowed_ == "*" || allowed_ == origin) return true;
    const std::size_t scheme = origin.find("://");
    if (scheme == origin.npos) return false;
    const std::string_view place = origin.substr(scheme + 3);
    if (place == host || IsOurs(HostOf(place))) return true;
    return IsNearAddress(HostOf(place));
}

}  // namespace twr
