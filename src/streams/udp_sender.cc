// SPDX-License-Identifier: MIT
#include "streams/udp_sender.h"

#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

namespace twr {
namespace {

using asio::ip::udp;

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

struct UdpSender::Impl {
    asio::error_code Open(const Endpoint& at) {
        asio::error_code error, lesser;
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
    asio::error_code error;
    try {
        impl_ = std::make_unique<Impl>();
        impl_->fits = fits;
        error = impl_->Open(to);
    } catch (const std::system_error& refused) {
        error = refused.code();
    }
    if (!error) return "";
    return "nothing can be sent to " + to.Text() + " (system error " + std::to_string(error.value()) +
           "); give the address of a network that this machine has";
}

bool UdpSender::Put(std::string_view lines) {
    while (!lines.empty()) {
        const std::string_view datagram = NextDatagram(lines, impl_->fits);
        asio::error_code lost;
        impl_->socket.send_to(asio::buffer(datagram), impl_->to, 0, lost);
        lines.remove_prefix(datagram.size());
    }
    return true;
}

}  // namespace twr
