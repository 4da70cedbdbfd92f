// SPDX-License-Identifier: MIT
#include "streams/stream_server.h"

#include <algorithm>
#include <array>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/ip/v6_only.hpp>
#include <deque>
#include <type_traits>
#include <vector>

namespace twr {
namespace {

using asio::ip::tcp;
using Bytes = std::shared_ptr<const std::string>;  // one copy, whoever still has to get it

// What the system takes ahead of a client, so that a stalled one is found within seconds and its data are recent.
constexpr int kSystemBuffer = 65'536;
constexpr int kMostArrivals = 100;  // in one put; more wait for the next

// A restarted server finds connections of its predecessor still fading on its port, which POSIX takes for use unless told
// otherwise. Windows does not, and the same option there would let a second program take the port away.
constexpr bool kReusesAddress = std::is_same_v<tcp::socket::native_handle_type, int>;

class Client {
public:
    explicit Client(tcp::socket connected) : socket_(std::move(connected)) {
        asio::error_code lesser;  // service is only a little worse without
        socket_.set_option(tcp::no_delay(true), lesser);
        socket_.set_option(asio::socket_base::send_buffer_size(kSystemBuffer), lesser);
        asio::error_code error;
        if (socket_.non_blocking(true, error)) Close();
    }

    bool IsOpen() const { return socket_.is_open(); }
    std::size_t Backlog() const { return backlog_; }

    void Greet(Bytes greeting) {
        allowance_ += greeting->size();
        Queue(std::move(greeting));
    }

    void Put(const Bytes& bytes) {
        Send();
        if (backlog_ > allowance_ && !bytes->empty()) return Reset();
        Queue(bytes);
        Send();
    }

    // Sends what the system takes.
    void Send() {
        for (asio::error_code error; IsOpen() && !queue_.empty();) {
            const std::size_t count = socket_.write_some(asio::buffer(*queue_.front()) + sent_, error);
            if (error) return LetGoUnlessBusy(error);
            backlog_ -= count;
            sent_ += count;
            if (sent_ < queue_.front()->size()) continue;
            queue_.pop_front();
            sent_ = 0;
        }
    }

    // Once for each put: who floods the machine gets no more of this thread than any other.
    void Discard() {
        static std::array<char, 65'536> discarded;
        asio::error_code error;
        if (IsOpen()) socket_.read_some(asio::buffer(discarded), error);
        LetGoUnlessBusy(error);
    }

private:
    void Queue(Bytes bytes) {
        if (bytes->empty()) return;
        backlog_ += bytes->size();
        queue_.push_back(std::move(bytes));
    }

    void LetGoUnlessBusy(const asio::error_code& error) {
        if (error && error != asio::error::would_block && error != asio::error::try_again) Close();
    }

    void Close() {
        asio::error_code gone;
        socket_.close(gone);
    }

    // Without a farewell, so that the system forgets at once what it has taken ahead.
    void Reset() {
        asio::error_code gone;
        socket_.set_option(asio::socket_base::linger(true, 0), gone);
        Close();
    }

    tcp::socket socket_;
    std::deque<Bytes> queue_;
    std::size_t sent_ = 0;     // of the front of the queue
    std::size_t backlog_ = 0;  // in the queue and not sent
    std::size_t allowance_ = StreamServer::kMostBacklog;
};

}  // namespace

struct StreamServer::Impl {
    asio::error_code Open(const Endpoint& at) {
        asio::error_code error, lesser;
        const tcp::endpoint place(asio::ip::make_address(at.address, error), at.port);
        if (!error) acceptor.open(place.protocol(), error);
        if (kReusesAddress) acceptor.set_option(asio::socket_base::reuse_address(true), lesser);
        if (place.protocol() == tcp::v6()) acceptor.set_option(asio::ip::v6_only(false), lesser);  // the systems' defaults differ
        if (!error) acceptor.bind(place, error);
        if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
        if (!error) acceptor.non_blocking(true, error);
        return error;
    }

    void Serve(const Bytes& bytes) {
        for (Client& client : clients) {
            client.Put(bytes);
            client.Discard();
        }
        std::erase_if(clients, [](const Client& client) { return !client.IsOpen(); });
    }

    void Welcome(const std::function<std::string()>& greeting) {
        Bytes first;  // the same for all that join now
        for (int arrival = 0; arrival < kMostArrivals; ++arrival) {
            asio::error_code none;  // or too many open files: they wait for the next put
            tcp::socket socket = acceptor.accept(none);
            if (none) return;
            if (clients.size() == kMostClients) continue;
            Client& client = clients.emplace_back(std::move(socket));
            if (!first) first = std::make_shared<const std::string>(greeting ? greeting() : "");
            client.Greet(first);
            client.Send();
        }
    }

    asio::io_context context{1};
    tcp::acceptor acceptor{context};
    std::vector<Client> clients;
};

StreamServer::StreamServer() = default;
StreamServer::~StreamServer() = default;

std::string StreamServer::Listen(const Endpoint& at) {
    asio::error_code error;
    try {
        impl_ = std::make_unique<Impl>();
        error = impl_->Open(at);
    } catch (const std::system_error& refused) {
        error = refused.code();
    }
    return error ? WhyNotServed(error.value(), at) : "";
}

Endpoint StreamServer::At() const {
    asio::error_code error;
    const tcp::endpoint at = impl_->acceptor.local_endpoint(error);
    return {at.address().to_string(), at.port()};
}

void StreamServer::SetGreeting(std::function<std::string()> greeting) { greeting_ = std::move(greeting); }

bool StreamServer::Put(std::string_view bytes) {
    impl_->Serve(std::make_shared<const std::string>(bytes));
    impl_->Welcome(greeting_);
    return true;
}

std::size_t StreamServer::Clients() const { return impl_->clients.size(); }

std::size_t StreamServer::Backlog() const {
    std::size_t most = 0;
    for (const Client& client : impl_->clients) most = std::max(most, client.Backlog());
    return most;
}

}  // namespace twr
