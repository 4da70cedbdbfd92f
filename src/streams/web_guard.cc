// SPDX-License-Identifier: MIT
#include <algorithm>
#include <asio/ip/address.hpp>
#include <asio/ip/host_name.hpp>
#include <cctype>

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

// Of plain characters alone: a zero, or what stands behind a '%', would hide the rest.
std::optional<asio::ip::address> AddressIn(std::string_view host) {
    const auto isPlain = [](unsigned char c) { return std::isalnum(c) != 0 || c == '.' || c == ':' || c == '%'; };
    if (!std::ranges::all_of(host, isPlain)) return std::nullopt;
    asio::error_code error;
    const auto address = asio::ip::make_address(std::string(host), error);
    return error ? std::nullopt : std::optional(address);
}

// A network without a name server: one's own, not the world's.
bool IsNear(const asio::ip::address_v4& address) {
    const auto bits = address.to_uint();
    const auto within = [&](std::uint32_t net, int length) { return bits >> (32 - length) == net >> (32 - length); };
    return within(0x0A000000, 8) || within(0xAC100000, 12) || within(0xC0A80000, 16) || within(0xA9FE0000, 16) ||
           within(0x64400000, 10) || address.is_loopback();
}

bool IsNear(const asio::ip::address& address) {
    if (address.is_v4()) return IsNear(address.to_v4());
    const auto v6 = address.to_v6();
    if (v6.is_v4_mapped()) return IsNear(asio::ip::make_address_v4(asio::ip::v4_mapped, v6));
    constexpr unsigned kUniqueLocal = 0xFC, kTopSeven = 0xFE;
    return v6.is_loopback() || v6.is_link_local() || (v6.to_bytes()[0] & kTopSeven) == kUniqueLocal;
}

}  // namespace

std::string MachineName() {
    asio::error_code none;
    return asio::ip::host_name(none);
}

bool WebGuard::Admits(const WebRequest& request) const {
    const std::string_view host = HostOf(request.host);
    return (AddressIn(host) || IsOurs(host)) && MayAsk(request.origin, request.host);
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
    const auto address = AddressIn(HostOf(place));
    return address && IsNear(*address);
}

}  // namespace twr
