// SPDX-License-Identifier: MIT
#include "streams/web_server.h"

#include <algorithm>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <deque>
#include <utility>

#include "streams/acceptor.h"

namespace twr {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using asio::ip::tcp;
using std::chrono::seconds;

constexpr auto kHeaderTime = seconds(15);  // also how long a connection may stay without a question
constexpr auto kAnswerTime = seconds(30);
constexpr auto kTalkTime = seconds(20);  // without a word, nor an answer to a ping
constexpr int kMostHeard = 8;            // messages of a talk in a beat; who floods the machine gets no more

std::string_view View(beast::string_view text) { return {text.data(), text.size()}; }

class Talker;

// Those who are connected, whatever they do.
struct Connected {
    const WebGuard guard;
    WebSite& site;
    std::size_t count = 0;
    std::vector<std::shared_ptr<Talker>> talkers = {};
};

class Place {
public:
    explicit Place(Connected& clients) : clients_(&clients) { ++clients_->count; }
    Place(Place&& other) noexcept : clients_(std::exchange(other.clients_, nullptr)) {}
    ~Place() {
        if (clients_) --clients_->count;
    }
    Connected& All() const { return *clients_; }

private:
    Connected* clients_;
};

// --- A WebSocket ---

class Talker : public std::enable_shared_from_this<Talker> {
public:
    Talker(beast::tcp_stream&& stream, Place place, std::unique_ptr<WebTalk> talk)
        : place_(std::move(place)), socket_(std::move(stream)), talk_(std::move(talk)) {
        beast::get_lowest_layer(socket_).expires_never();  // the WebSocket has a timer of its own
        socket_.set_option(websocket::stream_base::timeout{kHeaderTime, kTalkTime, true});
        socket_.read_message_max(WebServer::kLongestMessage);
        socket_.auto_fragment(false);
    }

    template <class Request>
    void Accept(const Request& request) {
        socket_.async_accept(request, [self = shared_from_this()](beast::error_code error) {
            if (error) return self->End();
            self->open_ = true;
            self->Read();
        });
    }

    bool HasEnded() const { return ended_; }

    void Say() {
        if (!open_) return;
        heard_ = 0;
        if (waits_) Read();
        messages_.clear();
        talk_->Say(messages_);
        for (WebMessage& message : messages_) Queue(std::move(message));
    }

private:
    void Read() {
        waits_ = false;
        socket_.async_read(buffer_, [self = shared_from_this()](beast::error_code error, std::size_t) {
            if (error) return self->End();
            self->Hear();
        });
    }

    void Hear() {
        const auto bytes = buffer_.data();
        const bool goesOn = talk_->Hear({static_cast<const char*>(bytes.data()), bytes.size()});
        buffer_.consume(buffer_.size());
        if (!goesOn) return Drop();
        waits_ = ++heard_ >= kMostHeard;
        if (!waits_) Read();
    }

    void Queue(WebMessage message) {
        if (!open_) return;
        largest_ = std::max(largest_, message->size());
        if (backlog_ > WebServer::kMostBacklog + largest_) return Drop();
        backlog_ += message->size();
        queue_.push_back(std::move(message));
        if (queue_.size() == 1) Write();
    }

    void Write() {
        socket_.text(true);
        socket_.async_write(asio::buffer(*queue_.front()), [self = shared_from_this()](beast::error_code error, std::size_t) {
            if (error) return self->End();
            self->backlog_ -= self->queue_.front()->size();
            self->queue_.pop_front();
            if (!self->queue_.empty()) self->Write();
        });
    }

    void Drop() {
        twr::Drop(beast::get_lowest_layer(socket_).socket());
        End();
    }

    void End() {
        open_ = false;
        ended_ = true;
    }

    Place place_;
    websocket::stream<beast::tcp_stream, false> socket_;
    const std::unique_ptr<WebTalk> talk_;
    beast::flat_buffer buffer_;
    std::vector<WebMessage> messages_;
    std::deque<WebMessage> queue_;  // the front is being written
    std::size_t backlog_ = 0;       // bytes in the queue
    std::size_t largest_ = 0;       // message
    int heard_ = 0;
    bool waits_ = false;  // to read on at the next beat
    bool open_ = false;
    bool ended_ = false;
};

// --- HTTP ---

class Asker : public std::enable_shared_from_this<Asker> {
public:
    Asker(tcp::socket&& socket, Connected& clients) : place_(clients), stream_(std::move(socket)) {}

    void Read() {
        parser_.emplace();
        parser_->header_limit(WebServer::kLongestHeader);
        stream_.expires_after(kHeaderTime);
        http::async_read_header(stream_, buffer_, *parser_, [self = shared_from_this()](beast::error_code error, std::size_t) {
            if (error == http::error::header_limit) return self->Refuse(431, "the header is too long");
            if (error && error.category() == make_error_code(http::error::bad_method).category() &&
                error != http::error::end_of_stream && error != http::error::partial_message)
                return self->Refuse(400, "that is no request");
            if (!error) self->Answer();
        });
    }

private:
    using Response = http::response<http::string_body>;

    WebRequest Asked() const {
        const auto& request = parser_->get();
        return {.method = View(request.method_string()),
                .target = View(request.target()),
                .host = View(request[http::field::host]),
                .origin = View(request[http::field::origin]),
                .knownTag = View(request[http::field::if_none_match]),
                .takesGzip = View(request[http::field::accept_encoding]).find("gzip") != std::string_view::npos};
    }

    void Answer() {
        const auto& request = parser_->get();
        const WebRequest asked = Asked();
        // What follows the header is not read: nobody here has a use for it.
        goesOn_ = request.keep_alive() && !parser_->chunked() && parser_->content_length().value_or(0) == 0;
        Connected& clients = place_.All();
        if (request.count(http::field::host) != 1 || !clients.guard.Admits(asked))
            return Refuse(403, "this name is not this machine's: use its address");
        if (websocket::is_upgrade(request)) {
            auto talk = clients.site.Talk(asked);
            if (!talk) return Refuse(404, "there is no stream of that name");
            const auto talker = std::make_shared<Talker>(std::move(stream_), std::move(place_), std::move(talk));
            clients.talkers.push_back(talker);
            return talker->Accept(request);
        }
        Send(clients.site.Answer(asked), asked);
    }

    void Refuse(int status, std::string_view why) {
        goesOn_ = false;
        Send({.status = status, .body = "{\"error\":\"" + std::string(why) + "\"}"}, {});
    }

    void Send(WebAnswer answer, const WebRequest& asked) {
        constexpr int kNotModified = 304, kNotAllowed = 405;
        const bool known = !answer.tag.empty() && asked.knownTag == answer.tag;
        response_ = Response(static_cast<http::status>(known ? kNotModified : answer.status), 11);
        SetPolicy(asked);
        if (!known) response_.set(http::field::content_type, Beast(answer.type));
        if (answer.packed && !known) response_.set(http::field::content_encoding, "gzip");
        if (!answer.tag.empty()) response_.set(http::field::etag, Beast(answer.tag));
        response_.set(http::field::cache_control, answer.tag.empty() ? "no-store" : "no-cache");
        if (answer.status == kNotAllowed) response_.set(http::field::allow, "GET, HEAD");
        response_.keep_alive(goesOn_);
        if (!known) response_.body() = std::move(answer.body);
        Write(asked.method == "HEAD");
    }

    // A page can be loaded from here alone, and connect to here alone; older browsers take 'self' to be without WebSockets.
    void SetPolicy(const WebRequest& asked) {
        const std::string host(asked.host);
        const std::string sockets = host.empty() ? "" : " ws://" + host + " wss://" + host;
        response_.set("Content-Security-Policy",
                      "default-src 'self'; connect-src 'self'" + sockets +
                          "; object-src 'none'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
        response_.set("X-Content-Type-Options", "nosniff");
        response_.set("Referrer-Policy", "no-referrer");
        if (asked.origin.empty()) return;
        response_.set(http::field::access_control_allow_origin, Beast(asked.origin));
        response_.set(http::field::vary, "Origin");
    }

    void Write(bool headerOnly) {
        response_.prepare_payload();
        stream_.expires_after(kAnswerTime);
        const auto then = [self = shared_from_this()](beast::error_code error, std::size_t) {
            if (!error && self->goesOn_) return self->Read();
            self->Close();
        };
        if (!headerOnly) return http::async_write(stream_, response_, then);
        serializer_.emplace(response_);
        http::async_write_header(stream_, *serializer_, then);
    }

    // What the client still sends would else make the system take back the answer.
    void Close() {
        beast::error_code gone;
        stream_.socket().shutdown(tcp::socket::shutdown_send, gone);
    }

    static beast::string_view Beast(std::string_view text) { return {text.data(), text.size()}; }

    Place place_;
    beast::tcp_stream stream_;
    beast::flat_buffer buffer_{2 * WebServer::kLongestHeader};
    std::optional<http::request_parser<http::empty_body>> parser_;
    Response response_;
    std::optional<http::response_serializer<http::string_body>> serializer_;
    bool goesOn_ = false;
};

}  // namespace

struct WebServer::Impl {
    explicit Impl(WebSite& site, std::optional<std::string> allowedOrigin)
        : clients{WebGuard(MachineName(), std::move(allowedOrigin)), site} {}
    ~Impl() { clients.talkers.clear(); }  // while their sockets have a context
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void Accept() {
        acceptor.async_accept([this](beast::error_code error, tcp::socket socket) {
            if (error == asio::error::operation_aborted) return;
            if (error) return AcceptLater();
            if (clients.count < kMostClients) Welcome(std::move(socket));
            Accept();
        });
    }

    void Welcome(tcp::socket socket) {
        Hasten(socket);
        std::make_shared<Asker>(std::move(socket), clients)->Read();
    }

    // Too many open files, say: they wait.
    void AcceptLater() {
        constexpr auto kRest = std::chrono::milliseconds(100);
        rest.expires_after(kRest);
        rest.async_wait([this](beast::error_code error) {
            if (!error) Accept();
        });
    }

    Connected clients;  // outlives whoever is counted in it
    asio::io_context context{1};
    tcp::acceptor acceptor{context};
    asio::steady_timer rest{context};
};

WebServer::WebServer(WebSite& site) : site_(site) {}
WebServer::~WebServer() = default;

std::string WebServer::Listen(const Endpoint& at, std::optional<std::string> allowedOrigin) {
    const beast::error_code error = Try([&] {
        impl_ = std::make_unique<Impl>(site_, std::move(allowedOrigin));
        return OpenAt(impl_->acceptor, at);
    });
    if (error) return WhyNotServed(error.value(), at);
    impl_->Accept();
    return {};
}

Endpoint WebServer::At() const { return PlaceOf(impl_->acceptor); }

void WebServer::Serve(std::chrono::milliseconds time) { impl_->context.run_for(time); }

void WebServer::SayAll() {
    auto& talkers = impl_->clients.talkers;
    for (const auto& talker : talkers) talker->Say();
    std::erase_if(talkers, [](const auto& talker) { return talker->HasEnded(); });
}

std::size_t WebServer::Clients() const { return impl_->clients.count; }

}  // namespace twr
