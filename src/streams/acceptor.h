// SPDX-License-Identifier: MIT
// How clients are taken, whatever they are served. For the .cc files of servers alone, since Asio's headers come with it.
#pragma once
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <type_traits>

#include "streams/network.h"

namespace twr {

// What the system takes ahead of a client, so that a stalled one is found within seconds and its data are recent.
inline constexpr int kSystemBuffer = 65'536;

// A restarted server finds connections of its predecessor still fading on its port, which POSIX takes for use unless told
// otherwise. Windows does not, and the same option there would let a second program take the port away.
inline constexpr bool kReusesAddress = std::is_same_v<boost::asio::ip::tcp::socket::native_handle_type, int>;

inline boost::system::error_code OpenAt(boost::asio::ip::tcp::acceptor& acceptor, const Endpoint& at) {
    using boost::asio::ip::tcp;
    boost::system::error_code error, lesser;
    const tcp::endpoint place(boost::asio::ip::make_address(at.address, error), at.port);
    if (!error) acceptor.open(place.protocol(), error);
    if (kReusesAddress) acceptor.set_option(boost::asio::socket_base::reuse_address(true), lesser);
    if (place.protocol() == tcp::v6())
        acceptor.set_option(boost::asio::ip::v6_only(false), lesser);  // the systems' defaults differ
    if (!error) acceptor.bind(place, error);
    if (!error) acceptor.listen(boost::asio::socket_base::max_listen_connections, error);
    return error;
}

inline Endpoint PlaceOf(const boost::asio::ip::tcp::acceptor& acceptor) {
    boost::system::error_code error;
    const auto at = acceptor.local_endpoint(error);
    return {at.address().to_string(), at.port()};
}

// What `open` returns, or why the system refuses even to let it begin.
template <class Opening>
boost::system::error_code Try(Opening open) {
    try {
        return open();
    } catch (const boost::system::system_error& refused) {
        return refused.code();
    }
}

// Service is only a little worse without.
inline void Hasten(boost::asio::ip::tcp::socket& socket) {
    boost::system::error_code lesser;
    socket.set_option(boost::asio::ip::tcp::no_delay(true), lesser);
    socket.set_option(boost::asio::socket_base::send_buffer_size(kSystemBuffer), lesser);
}

// Without a farewell, for which it might be waited, and so that the system forgets at once what it has taken ahead.
inline void Drop(boost::asio::ip::tcp::socket& socket) {
    boost::system::error_code gone;
    socket.set_option(boost::asio::socket_base::linger(true, 0), gone);
    socket.close(gone);
}

}  // namespace twr
