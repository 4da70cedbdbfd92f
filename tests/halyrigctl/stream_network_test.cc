// halyrigctl stream into the network: the test is the client, while the command waits for the next look.
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>

#include "ctl_fixture.h"

namespace twr::testing {
namespace {

using asio::ip::tcp;

class StreamNetworkTest : public CtlTest {
protected:
    // What a client gets that connects while the command runs, up to `last`. HDG is published once there is anything.
    std::string Got(const std::string& options, const std::string& last) {
        asio::io_context context;
        tcp::socket socket(context);
        std::string got;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        console.goOn = [&] {
            if (!socket.is_open()) {
                const std::string_view port = std::string_view(console.written).substr(console.written.find("127.0.0.1:") + 10);
                socket.connect({asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(std::atoi(port.data()))});
                socket.non_blocking(true);
            }
            char bytes[4096];
            asio::error_code none;
            got.append(bytes, socket.read_some(asio::buffer(bytes), none));
            if (!got.empty()) Publish(kHdg, 123.0);
            return got.find(last) == got.npos && std::chrono::steady_clock::now() < end;
        };
        Said("stream --listen 0 " + options);
        return got;
    }
};

TEST_F(StreamNetworkTest, GreetsWithWhatHoldsAndGoesOnWithWhatChanges) {
    StartSuite();
    Publish(kBsp, 6.5);
    ExpectIn(Got("--channels BSP,HDG", "HDG"), {R"("name":"BSP")", R"("value":123)"});
    const std::string deltas = Got("--channels BSP --format signalk", "speedThroughWater");
    EXPECT_EQ(0u, deltas.find(R"({"name":"halyrig")"));
    ExpectIn(deltas, {R"("self":"vessels.self")", R"("units":"m/s")"});
}

TEST_F(StreamNetworkTest, RefusesWhatItCanNotServe) {
    ExpectSaid(2, {{"stream --listen 0.0.0.0:10110", {"--allow-remote", "not encrypted"}},
                   {"stream --udp 192.168.1.255:10110", {"--allow-remote"}},
                   {"stream --udp 10110 --listen plotter", {"'plotter' is no port"}}});
    ExpectSaid(1, {{"stream --listen 192.0.2.1:10110 --allow-remote", {"192.0.2.1:10110", "an address of this machine?"}}});
}

}  // namespace
}  // namespace twr::testing
