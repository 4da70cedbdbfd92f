// SPDX-License-Identifier: MIT
// Serves a stream over TCP to every client that connects.
#pragma once
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "streams/endpoint.h"
#include "streams/outlet.h"

namespace twr {

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

}  // namespace twr
