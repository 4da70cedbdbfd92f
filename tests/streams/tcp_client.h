// SPDX-License-Identifier: MIT
// A client of a server in the same thread, which never waits for it.
#pragma once
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <string>

namespace twr::testing {

namespace asio = boost::asio;
using asio::ip::tcp;

struct TcpClient {
    TcpClient(asio::io_context& context, std::uint16_t port, int receiveBuffer = 256 * 1024) : socket(context, tcp::v4()) {
        socket.set_option(asio::socket_base::receive_buffer_size(receiveBuffer));
        socket.connect({asio::ip::address_v4::loopback(), port});
        socket.non_blocking(true);
    }
    void Put(const std::string& bytes) {
        boost::system::error_code gone;
        asio::write(socket, asio::buffer(bytes), gone);
    }
    // Takes what has come.
    void Read() {
        char bytes[65'536];
        boost::system::error_code none;
        while (!none) got.append(bytes, socket.read_some(asio::buffer(bytes), none));
        ended = none != asio::error::would_block;
    }

    tcp::socket socket;
    std::string got;
    bool ended = false;
};

}  // namespace twr::testing
