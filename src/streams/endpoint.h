// SPDX-License-Identifier: MIT
// Where in the network a stream is served or sent to, as a user types it.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace twr {

// A numeric IPv4 or IPv6 address and a port of it.
struct Endpoint {
    std::string address;
    std::uint16_t port = 0;

    std::string Text() const;  // such as [::1]:10110
};

enum class EndpointUse {
    kListen,  // an address of this machine, or 0.0.0.0 or [::] for all of them; port 0 lets the system choose a free one
    kSend,    // another program's, or a broadcast or multicast address
};

// Exactly one of the two is set; the fault says what is wrong and what to do, and may contain what was typed.
struct EndpointReading {
    std::optional<Endpoint> endpoint = {};
    std::string fault = {};
};

// Reads PORT, at 127.0.0.1, or HOST:PORT, where HOST is an address, in brackets if it is one of IPv6, or "localhost". Names are not
// looked up: at sea that fails, slowly. What can be reached beyond this machine is refused unless `allowRemote`.
EndpointReading ParseEndpoint(std::string_view typed, EndpointUse use, bool allowRemote);

// Why clients can't be served there, by the system's number, and what to do.
std::string WhyNotServed(int systemError, const Endpoint& at);

}  // namespace twr
