// SPDX-License-Identifier: MIT
#include "streams/endpoint.h"

#include <asio/error.hpp>
#include <asio/ip/address.hpp>
#include <charconv>

namespace twr {
namespace {

std::optional<std::uint16_t> ParsePort(std::string_view digits) {
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return port;
}

// "localhost" may stand for either kind of address, and a client tries both; one answer for both systems is the older.
std::optional<asio::ip::address> ParseAddress(std::string_view host) {
    if (host == "localhost") return asio::ip::address_v4::loopback();
    const bool bracketed = host.starts_with('[') && host.ends_with(']');
    if (bracketed) host = host.substr(1, host.size() - 2);
    asio::error_code error;
    const auto address = asio::ip::make_address(std::string(host), error);
    if (error || address.is_v6() != bracketed) return std::nullopt;
    if (address.is_v4() && address.to_string() != host) return std::nullopt;  // Windows takes 127.1 and octal digits too
    return address;
}

bool IsForMany(const asio::ip::address& address) {
    return address.is_multicast() || address == asio::ip::address(asio::ip::address_v4::broadcast());
}

EndpointReading Refused(std::string fault) { return {.fault = std::move(fault)}; }

}  // namespace

std::string Endpoint::Text() const {
    const bool isV6 = address.find(':') != std::string::npos;
    return (isV6 ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

EndpointReading ParseEndpoint(std::string_view typed, EndpointUse use, bool allowRemote) {
    const std::size_t colon = typed.rfind(':');
    const std::string_view host = colon == typed.npos ? "127.0.0.1" : typed.substr(0, colon);
    const std::string_view digits = colon == typed.npos ? typed : typed.substr(colon + 1);
    const auto port = ParsePort(digits);
    if (!port || (*port == 0 && use == EndpointUse::kSend)) {
        return Refused("'" + std::string(digits) + "' is no port; give a number from 1 to 65535, such as 10110");
    }
    const auto address = ParseAddress(host);
    if (!address) {
        return Refused("'" + std::string(host) +
                       "' is no address; give it in digits, such as 127.0.0.1:10110, or [::1]:10110 for IPv6, or 'localhost'");
    }
    const Endpoint endpoint{address->to_string(), *port};
    if (use == EndpointUse::kListen && IsForMany(*address)) {
        return Refused(endpoint.Text() + " stands for many machines; give an address of this one, or 0.0.0.0 for all that it has");
    }
    if (use == EndpointUse::kSend && address->is_unspecified()) {
        return Refused(endpoint.Text() + " is no place to send to; give the address of the machine that receives");
    }
    if (!allowRemote && !address->is_loopback()) {
        return Refused(endpoint.Text() +
                       " reaches beyond this machine: everyone in that network can read the boat's data, which is not encrypted; "
                       "add --allow-remote if you want that");
    }
    return {.endpoint = endpoint};
}

std::string WhyNotServed(int systemError, const Endpoint& at) {
    if (systemError == asio::error::address_in_use) {
        return at.Text() + " is in use; choose another port, or close the program that has it";
    }
    if (systemError == asio::error::access_denied) {
        return at.Text() + " is not allowed to this user; choose a port from 1024 on";
    }
    return at.Text() + " can't be served (system error " + std::to_string(systemError) + "); is it an address of this machine?";
}

}  // namespace twr
