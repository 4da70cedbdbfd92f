// Serves a stream over TCP to every client that connects.
#pragma once
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "streams/endpoint.h"
#include "streams/outlet.h"

namespace twr {

// It runs in its caller's thread and never waits for a client. A client gets the greeting, then everything that is put from then
// on, or is dropped; what it sends is discarded, and it is let go when it closes its side.
class StreamServer final : public Outlet {
public:
    // A client that lags by more bytes than these when more come, beyond its greeting and what the system has taken, is dropped.
    static constexpr std::size_t kMostBacklog = 64 * 1024;
    // Of more, each is let go at once.
    static constexpr std::size_t kMostClients = 250;

    StreamServer();
    ~StreamServer() override;

    // Begins to take clients. Empty, or why it can't and what to do.
    std::string Listen(const Endpoint& at);

    // Where clients connect, with the port that the system chose if none was given. For Listen's success only.
    Endpoint At() const;

    // What each client gets first; called between two puts, when a client joins.
    void SetGreeting(std::function<std::string()> greeting);

    // Sends to every client that has joined. Always true: others may come.
    bool Put(std::string_view bytes) override;

    // Takes and serves clients for so long. They join only here.
    void Wait(std::chrono::milliseconds time);

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
