// SPDX-License-Identifier: MIT
// Where in the network a stream is served or sent to, as a user types it, and the outlets that do so.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "streams/outlet.h"

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

// This machine's name; empty if it is unknown.
std::string MachineName();

// Whether a host, without brackets, is an address in digits.
bool IsAddress(std::string_view host);

// Whether it is one of a network without a name server: one's own, not the world's.
bool IsNearAddress(std::string_view host);

// Serves a stream over TCP to every client that connects.
// It works while something is put, never waits for a client, and has no thread. A client gets the greeting, then everything that is
// put from then on, or is dropped; what it sends is discarded, and it is let go when it closes its side.
class StreamServer final : public Outlet {
public:
    // A client that lags by more bytes than these when more come, beyond its greeting and what the system has taken, is dropped.
    static constexpr std::size_t kMostBacklog = 65'536;
    // Of more, each is let go at once.
    static constexpr std::size_t kMostClients = 250;

    StreamServer();
    ~StreamServer() override;

    // Begins to take clients. Empty, or why it can't and what to do; nothing else may be called then.
    std::string Listen(const Endpoint& at);

    // Where clients connect, with the port that the system chose if none was given.
    Endpoint At() const;

    // What a client gets first: called at the end of the put in which it joins, whose bytes it does not get.
    void SetGreeting(std::function<std::string()> greeting);

    // Sends to every client that has joined, then takes those who wait. Always true: others may come.
    bool Put(std::string_view bytes) override;

    // Those that have joined and are not known to have gone.
    std::size_t Clients() const;

    // The bytes that the slowest of them lags by, its greeting included.
    std::size_t Backlog() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
    std::function<std::string()> greeting_;
};

// Sends a stream as UDP datagrams.
class UdpSender final : public Outlet {
public:
    // Fits the packets of every usual network; only a longer line makes a longer datagram.
    static constexpr std::size_t kUsualDatagram = 1400;

    UdpSender();
    ~UdpSender() override;

    // Empty, or why nothing can be sent and what to do. Lines go together as far as they fit so many bytes; 0 for each by itself.
    std::string Open(const Endpoint& to, std::size_t fits = kUsualDatagram);

    // Sends whole lines. Always true: what the network doesn't take now is lost, as with UDP it may be anywhere.
    bool Put(std::string_view lines) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace twr
