// SPDX-License-Identifier: MIT
// halyrigctl stream into the network: the test is the client, while the command waits for the next look.
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include "ctl_fixture.h"

namespace twr::testing {
namespace {

namespace asio = boost::asio;
using StreamNetworkTest = CtlTest;

TEST_F(StreamNetworkTest, GreetsWithWhatHoldsAndGoesOnWithWhatChanges) {
    StartSuite();
    Publish(kBsp, 6.5);  // told at the first look, which nobody hears
    asio::io_context context;
    asio::ip::tcp::socket socket(context);
    std::string got;
    int looks = 0;
    console.goOn = [&] {
        if (!socket.is_open()) {
            const int port = std::stoi(console.written.substr(console.written.find("127.0.0.1:") + 10));
            socket.connect({asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(port)});
            socket.non_blocking(true);
        }
        char bytes[4096];
        boost::system::error_code none;
        got.append(bytes, socket.read_some(asio::buffer(bytes), none));
        if (!got.empty()) Publish(kHdg, 90.0);
        return got.find("heading") == got.npos && ++looks < 100'000;
    };
    Said("stream --format signalk --listen 0");
    EXPECT_EQ(0u, got.find(R"({"name":"halyrig")"));
    ExpectIn(got, {R"("self":"vessels.self")", R"("units":"m/s")", R"("navigation.speedThroughWater")", "heading"});
}

TEST_F(StreamNetworkTest, RefusesWhatItCanNotServe) {
    ExpectSaid(2, {{"stream --listen 0.0.0.0:10110", {"not encrypted"}}, {"stream --udp 192.168.1.255:10110", {"--allow-remote"}}});
    ExpectSaid(1, {{"stream --listen 192.0.2.1:10110 --allow-remote", {"an address of this machine?"}}});
}

}  // namespace
}  // namespace twr::testing
