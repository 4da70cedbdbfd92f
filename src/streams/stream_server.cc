#include "streams/stream_server.h"

#include <algorithm>
#include <array>
#include <asio/executor_work_guard.hpp>
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
constexpr int kSystemBuffer = 64 * 1024;
// Between two looks at the record; more wait a tenth of a second.
constexpr int kMostArrivals = 100;

// A restarted server finds connections of its predecessor still fading on its port, which POSIX takes for use unless told
// otherwise. Windows does not, and the same option there would let a second program take the port away.
constexpr bool kReusesAddress = std::is_same_v<tcp::socket::native_handle_type, int>;

struct Client {
    explicit Client(tcp::socket connected) : socket(std::move(connected)) {}

    void Queue(Bytes bytes) {
        if (bytes->empty()) return;
        backlog += bytes->size();
        queue.push_back(std::move(bytes));
    }

    // Drops what the system has taken.
    void Taken(std::size_t count) {
        backlog -= count;
        taken += count;
        for (; !queue.empty() && taken >= queue.front()->size(); queue.pop_front()) taken -= queue.front()->size();
    }

    std::vector<asio::const_buffer> Next() const {
        constexpr std::size_t kMostBuffers = 16;
        std::vector<asio::const_buffer> buffers;
        for (std::size_t i = 0; i < std::min(queue.size(), kMostBuffers); ++i) buffers.push_back(asio::buffer(*queue[i]));
        buffers.front() += taken;
        return buffers;
    }

    void Close() {
        asio::error_code gone;
        socket.close(gone);
    }

    // Without a farewell, so that the system forgets at once what it has taken ahead.
    void Reset() {
        asio::error_code gone;
        socket.set_option(asio::socket_base::linger(true, 0), gone);
        Close();
    }

    tcp::socket socket;
    std::deque<Bytes> queue;
    std::size_t taken = 0;    // of the front of the queue
    std::size_t backlog = 0;  // in the queue and not taken
    std::size_t allowance = StreamServer::kMostBacklog;
    bool sending = false;
    bool receiving = false;
};

using ClientList = std::vector<std::shared_ptr<Client>>;

void SetOptions(tcp::socket& socket) {
    asio::error_code lesser;  // service is only a little worse without
    socket.set_option(tcp::no_delay(true), lesser);
    socket.set_option(asio::socket_base::send_buffer_size(kSystemBuffer), lesser);
}

std::string WhyNot(const asio::error_code& error, const Endpoint& at) {
    if (error == asio::error::address_in_use) {
        return at.Text() + " is in use; choose another port, or close the program that has it";
    }
    if (error == asio::error::access_denied) {
        return at.Text() + " is not allowed to this user; choose a port from 1024 on";
    }
    return at.Text() + " can't be served (system error " + std::to_string(error.value()) + "); is it an address of this machine?";
}

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
        if (error) acceptor.close(lesser);
        return error;
    }

    void Accept() {
        accepting = true;
        acceptor.async_accept([this](const asio::error_code& error, tcp::socket socket) {
            accepting = false;
            if (error) return;  // such as too many open files; the next wait tries again
            if (clients.size() + arrivals.size() < kMostClients) arrivals.push_back(std::make_shared<Client>(std::move(socket)));
            if (--room > 0) Accept();
        });
    }

    // Clients join between two looks at the record, so that none gets half of one.
    void Welcome(const std::function<std::string()>& greeting) {
        for (const auto& client : arrivals) {
            SetOptions(client->socket);
            if (greeting) client->Queue(std::make_shared<const std::string>(greeting()));
            client->allowance += client->backlog;
            Send(client);
        }
        std::ranges::move(arrivals, std::back_inserter(clients));
        arrivals.clear();
    }

    void Send(const std::shared_ptr<Client>& client) {
        if (client->sending || client->queue.empty()) return;
        client->sending = true;
        client->socket.async_send(client->Next(), [this, client](const asio::error_code& error, std::size_t count) {
            client->sending = false;
            client->Taken(count);
            if (error) return client->Close();
            if (client->socket.is_open()) Send(client);
        });
    }

    // Once for each wait: a client that floods the machine gets no more of this thread than any other.
    void Receive(const std::shared_ptr<Client>& client) {
        if (client->receiving) return;
        client->receiving = true;
        client->socket.async_receive(asio::buffer(discarded), [client](const asio::error_code& error, std::size_t) {
            client->receiving = false;
            if (error) client->Close();
        });
    }

    void PutToAll(const Bytes& bytes) {
        for (const auto& client : clients) {
            if (client->backlog > client->allowance) {
                client->Reset();
            } else if (client->socket.is_open()) {
                client->Queue(bytes);
                Send(client);
            }
        }
        context.poll();
        Forget();
    }

    void Serve(std::chrono::milliseconds time) {
        room = kMostArrivals;
        if (!accepting) Accept();
        for (const auto& client : clients) Receive(client);
        context.poll();  // a time of 0 would not even look
        context.run_for(time);
        Forget();
    }

    void Forget() {
        std::erase_if(clients, [](const auto& client) { return !client->socket.is_open(); });
    }

    std::array<char, 64 * 1024> discarded;  // shared: nobody looks at it
    asio::io_context context{1};
    asio::executor_work_guard<asio::io_context::executor_type> staysOpen{context.get_executor()};
    tcp::acceptor acceptor{context};
    bool accepting = false;
    int room = 0;  // for arrivals in this wait
    ClientList arrivals, clients;
};

StreamServer::StreamServer() = default;
StreamServer::~StreamServer() = default;

std::string StreamServer::Listen(const Endpoint& at) {
    try {
        impl_ = std::make_unique<Impl>();
    } catch (const std::system_error& refused) {
        return WhyNot(refused.code(), at);
    }
    const asio::error_code error = impl_->Open(at);
    return error ? WhyNot(error, at) : "";
}

Endpoint StreamServer::At() const {
    asio::error_code error;
    const tcp::endpoint at = impl_->acceptor.local_endpoint(error);
    return {at.address().to_string(), at.port()};
}

void StreamServer::SetGreeting(std::function<std::string()> greeting) { greeting_ = std::move(greeting); }

bool StreamServer::Put(std::string_view bytes) {
    impl_->PutToAll(std::make_shared<const std::string>(bytes));
    return true;
}

void StreamServer::Wait(std::chrono::milliseconds time) {
    impl_->Serve(time);
    impl_->Welcome(greeting_);
}

std::size_t StreamServer::Clients() const { return impl_->clients.size(); }

std::size_t StreamServer::Backlog() const {
    std::size_t most = 0;
    for (const auto& client : impl_->clients) most = std::max(most, client->backlog);
    return most;
}

}  // namespace twr
