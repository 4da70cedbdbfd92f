// SPDX-License-Identifier: MIT
// Serves HTTP and WebSocket to browsers and other programs: who may ask, how much and how long. What is said is a WebSite's.
#pragma once
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "streams/network.h"

namespace twr {

// A request, none of which can be trusted.
struct WebRequest {
    std::string_view method = {}, target = {};
    std::string_view host = {}, origin = {};  // empty if it names none
    std::string_view knownTag = {};           // of the copy that it has
    bool takesGzip = false;
};

struct WebAnswer {
    int status = 200;
    std::string_view type = "application/json";
    std::string body = {};
    bool packed = false;        // the body, by gzip
    std::string_view tag = {};  // of the body, to be asked for again; without one it is never kept
};

// The same bytes for all who get them.
using WebMessage = std::shared_ptr<const std::string>;

// The site's side of one WebSocket.
class WebTalk {
public:
    virtual ~WebTalk() = default;

    // Hears a message. False ends the talk.
    virtual bool Hear(std::string_view message) = 0;

    // What is to be said at this beat.
    virtual void Say(std::vector<WebMessage>& messages) = 0;
};

class WebSite {
public:
    virtual ~WebSite() = default;

    // Of GET and HEAD, and of others if it knows better than that the method isn't allowed.
    virtual WebAnswer Answer(const WebRequest& request) = 0;

    // nullptr if nobody talks there.
    virtual std::unique_ptr<WebTalk> Talk(const WebRequest& request) = 0;
};

// Who may ask. A page from elsewhere may be told by its name server that its own host is this machine, and would get what only this
// machine's network should: so the request must name an address, or this machine.
class WebGuard {
public:
    // `machine`: its name. `allowed`: an origin besides, such as https://example.org, or * for all.
    WebGuard(std::string machine, std::optional<std::string> allowed)
        : machine_(std::move(machine)), allowed_(std::move(allowed)) {}

    bool Admits(const WebRequest& request) const;

private:
    bool IsOurs(std::string_view host) const;
    bool MayAsk(std::string_view origin, std::string_view host) const;

    const std::string machine_;
    const std::optional<std::string> allowed_;
};

// It works while it is told to, in one thread, and never waits for a client.
class WebServer {
public:
    static constexpr std::size_t kMostClients = 250;        // of more, each is let go at once
    static constexpr std::size_t kMostBacklog = 65'536;     // bytes that a talk may lag by, beyond its largest message
    static constexpr std::size_t kLongestHeader = 8'192;    // bytes
    static constexpr std::size_t kLongestMessage = 16'384;  // bytes

    explicit WebServer(WebSite& site);
    ~WebServer();

    // Begins to take clients. Empty, or why it can't and what to do; nothing else may be called then.
    std::string Listen(const Endpoint& at, std::optional<std::string> allowedOrigin);

    // Where clients connect, with the port that the system chose if none was given.
    Endpoint At() const;

    // Answers whoever asks, for so long.
    void Serve(std::chrono::milliseconds time);

    // Says to everyone what is to be said at a beat.
    void SayAll();

    std::size_t Clients() const;

private:
    struct Impl;
    WebSite& site_;
    std::unique_ptr<Impl> impl_;
};

}  // namespace twr
