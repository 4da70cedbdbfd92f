// SPDX-License-Identifier: MIT
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/udp.hpp>
#include <functional>
#include <map>

#include "halyrigctl/ctl_fixture.h"

namespace twr::testing {
namespace {

struct StreamTest : CtlTest {
    void AskToClose() { Record().SetFlag(35, true); }
    std::size_t Count(const std::string& part) {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = console.written.find(part, at)) != std::string::npos; ++at) ++count;
        return count;
    }
};

TEST_F(StreamTest, TellsTheEndOfARecordAtOnceHoweverSeldomItLooks) {
    StartSuite({{kBsp, 7.0}});
    console.goOn = [&] {
        if (console.waited >= 1000 && suite) AskToClose(), suite.reset();
        return console.waited < 8000 && Count(R"("text":null})") == 0;
    };
    Said("stream --rate 0.1");
    EXPECT_GT(2000, console.waited);
}

TEST_F(StreamTest, LeavesARecordThatClosesWhileNobodyTakesTheOutput) {
    StartSuite({{kBsp, 7.0}});
    console.held = true;
    console.goOn = [&, asked = 0]() mutable {
        if (++asked == 3) AskToClose();
        if (asked == 5) {
            suite.reset();
            EXPECT_FALSE(Held());
        }
        return asked < 7;
    };
    ExpectIn(Said("stream"), {"asked to close"});
}

TEST_F(StreamTest, SaysThatItsOutputIsLost) {
    StartSuite({{kBsp, 7.0}});
    console.goOn = [&] { return console.waited < 60000; };
    console.closed = true;
    ExpectIn(Said("stream", 1), {"standard output can't be written"});
    EXPECT_EQ(0, console.waited);
}

// Into the network: the test is the client, while the command waits for the next look.

namespace asio = boost::asio;
using StreamNetworkTest = CtlTest;

// Who connects gets what holds and then what changes, and who is sent datagrams gets the same beside them.
TEST_F(StreamNetworkTest, GivesBothKindsOfListenersWhatIsAskedForAndNothingElse) {
    StartSuite();
    Record().Set<std::uint32_t>(RecordBytes::Boat(1) + 72, 11234560u);
    asio::io_context context;
    asio::ip::udp::socket datagrams(context, {asio::ip::address_v4::loopback(), 0});
    datagrams.non_blocking(true);
    const struct {
        const char* options;
        std::vector<const char*> greeting, later;
        const char* lacks;
        int most;  // lines in a datagram
    } rows[] = {{"--format signalk",
                 {R"("self":"vessels.self")", R"("units":"m/s")", R"("navigation.speedThroughWater")", "mmsi:011234560"},
                 {"headingMagnetic"},
                 "xx",
                 1},  // its readers take one for a message
                {"--format json", {R"("name":"BSP","boat":0,)", R"("name":"BSP","boat":1,)"}, {R"("HDG")"}, "format", 2},
                {"--boat 1", {R"("name":"BSP","boat":1,)"}, {R"("HDG","boat":1,)"}, R"("boat":0)", 1},
                {"--channels HDG,BSP --boat 0", {R"("name":"BSP")"}, {R"("HDG")"}, R"("boat":1)", 1}};
    const auto publish = [&](ChannelId channel, double value) {
        for (const BoatSlot boat : {0u, 1u}) suite->SetChannel(channel, boat, value, 0.0);
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.options);
        publish(kHdg, kNoValue);
        publish(kBsp, 6.5);  // told at the first look, which no client hears
        asio::ip::tcp::socket socket(context);
        std::string got, sent;
        int looks = 0, most = 0;
        char bytes[8192];
        const auto has = [](const std::string& text, const std::vector<const char*>& parts) {
            return std::ranges::all_of(parts, [&](const char* part) { return text.find(part) != text.npos; });
        };
        console.goOn = [&] {
            boost::system::error_code none;
            if (!socket.is_open()) {
                const int port = std::stoi(console.written.substr(console.written.find("127.0.0.1:") + 10));
                socket.connect({asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(port)});
                socket.non_blocking(true);
            }
            got.append(bytes, socket.read_some(asio::buffer(bytes), none));
            if (has(got, row.greeting)) publish(kHdg, 90.0);
            while (const std::size_t size = datagrams.receive(asio::buffer(bytes), 0, none)) {
                sent.append(bytes, size);
                most = std::max(most, static_cast<int>(std::count(bytes, bytes + size, '\n')));
            }
            return !(has(got, row.later) && has(sent, row.later)) && ++looks < 100'000;
        };
        Said(std::string("stream --listen 0 --udp 127.0.0.1:") + std::to_string(datagrams.local_endpoint().port()) + " " +
             row.options);
        for (const std::string& text : {got, sent}) {
            ExpectIn(text, row.later);
            EXPECT_EQ(std::string::npos, text.find(row.lacks)) << text;
        }
        ExpectIn(got, row.greeting);
        EXPECT_EQ(row.most, most) << sent;
    }
}

TEST_F(StreamNetworkTest, RefusesWhatItCanNotServe) {
    ExpectSaid(1, {{"stream --listen 192.0.2.1:10110 --allow-remote", {"an address of this machine?"}}});
}

}  // namespace
}  // namespace twr::testing
