// SPDX-License-Identifier: MIT
#include "streams/network.h"

#include <algorithm>
#include <array>
#include <boost/asio/ip/host_name.hpp>
#include <boost/asio/ip/udp.hpp>
#include <cctype>
#include <charconv>
#include <deque>
#include <vector>

#include "streams/acceptor.h"

namespace twr {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using asio::ip::udp;
using boost::system::error_code;
using Bytes = std::shared_ptr<const std::string>;  // one copy, whoever still has to get it

// --- Addresses ---

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
    error_code error;
    const auto address = asio::ip::make_address(std::string(host), error);
    if (error || address.is_v6() != bracketed) return std::nullopt;
    if (address.is_v4() && address.to_string() != host) return std::nullopt;  // Windows takes 127.1 and octal digits too
    return address;
}

bool IsForMany(const asio::ip::address& address) {
    return address.is_multicast() || address == asio::ip::address(asio::ip::address_v4::broadcast());
}

EndpointReading Refused(std::string fault) { return {.fault = std::move(fault)}; }

// Of plain characters alone: a zero, or what stands behind a '%', would hide the rest.
std::optional<asio::ip::address> AddressIn(std::string_view host) {
    const auto isPlain = [](unsigned char c) { return std::isalnum(c) != 0 || c == '.' || c == ':' || c == '%'; };
    if (!std::ranges::all_of(host, isPlain)) return std::nullopt;
    error_code error;
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

// --- Clients ---

constexpr int kMostArrivals = 100;  // in one put; more wait for the next

class Client {
public:
    explicit Client(tcp::socket connected) : socket_(std::move(connected)) {
        Hasten(socket_);
        error_code error;
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
        if (backlog_ > allowance_ && !bytes->empty()) return Drop(socket_);
        Queue(bytes);
        Send();
    }

    // Sends what the system takes.
    void Send() {
        for (error_code error; IsOpen() && !queue_.empty();) {
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
        error_code error;
        if (IsOpen()) socket_.read_some(asio::buffer(discarded), error);
        LetGoUnlessBusy(error);
    }

private:
    void Queue(Bytes bytes) {
        if (bytes->empty()) return;
        backlog_ += bytes->size();
        queue_.push_back(std::move(bytes));
    }

    void LetGoUnlessBusy(const error_code& error) {
        if (error && error != asio::error::would_block && error != asio::error::try_again) Close();
    }

    void Close() {
        error_code gone;
        socket_.close(gone);
    }

    tcp::socket socket_;
    std::deque<Bytes> queue_;
    std::size_t sent_ = 0;     // of the front of the queue
    std::size_t backlog_ = 0;  // in the queue and not sent
    std::size_t allowance_ = StreamServer::kMostBacklog;
};

// --- Datagrams ---

// The first line and as many of the next as fit.
std::string_view NextDatagram(std::string_view lines, std::size_t fits) {
    std::size_t end = 0;
    while (end < lines.size()) {
        const std::size_t feed = lines.find('\n', end);
        const std::size_t next = feed == lines.npos ? lines.size() : feed + 1;
        if (end > 0 && next > fits) break;
        end = next;
    }
    return lines.substr(0, end);
}

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

std::string MachineName() {
    error_code none;
    return asio::ip::host_name(none);
}

bool IsAddress(std::string_view host) { return AddressIn(host).has_value(); }

bool IsNearAddress(std::string_view host) {
    const auto address = AddressIn(host);
    return address && IsNear(*address);
}

struct StreamServer::Impl {
    error_code Open(const Endpoint& at) {
        error_code error = OpenAt(acceptor, at);
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
            error_code none;  // or too many open files: they wait for the next put
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
    const error_code error = Try([&] {
        impl_ = std::make_unique<Impl>();
        return impl_->Open(at);
    });
    return error ? WhyNotServed(error.value(), at) : "";
}

Endpoint StreamServer::At() const { return PlaceOf(impl_->acceptor); }

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

struct UdpSender::Impl {
    error_code Open(const Endpoint& at) {
        error_code error, lesser;
        to = {asio::ip::make_address(at.address, error), at.port};
        if (!error) socket.open(to.protocol(), error);
        if (!error) socket.non_blocking(true, error);
        socket.set_option(asio::socket_base::broadcast(true), lesser);  // whether the address is one, only the network knows
        return error;
    }

    asio::io_context context{1};
    udp::socket socket{context};
    udp::endpoint to;
    std::size_t fits = 0;
};

UdpSender::UdpSender() = default;
UdpSender::~UdpSender() = default;

std::string UdpSender::Open(const Endpoint& to, std::size_t fits) {
    const error_code error = Try([&] {
        impl_ = std::make_unique<Impl>();
        impl_->fits = fits;
        return impl_->Open(to);
    });
    if (!error) return "";
    return "nothing can be sent to " + to.Text() + " (system error " + std::to_string(error.value()) +
           "); give the address of a network that this machine has";
}

bool UdpSender::Put(std::string_view lines) {
    while (!lines.empty()) {
        const std::string_view datagram = NextDatagram(lines, impl_->fits);
        error_code lost;
        impl_->socket.send_to(asio::buffer(datagram), impl_->to, 0, lost);
        lines.remove_prefix(datagram.size());
    }
    return true;
}

}  // namespace twr
