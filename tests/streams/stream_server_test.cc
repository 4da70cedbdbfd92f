// SPDX-License-Identifier: MIT
// Streams in the network: real sockets of 127.0.0.1, both ends of which are served by the one thread of the test.
#include <gtest/gtest.h>

#include <boost/asio/ip/udp.hpp>
#include <deque>

#include "streams/network.h"
#include "streams/tcp_client.h"

namespace twr::testing {
namespace {

using asio::ip::udp;

TEST(Endpoint, IsReadOrRefused) {
    constexpr auto kListen = EndpointUse::kListen, kSend = EndpointUse::kSend;
    // Empty faults are of endpoints that are read as they are typed.
    const std::tuple<EndpointUse, bool, const char*, std::vector<const char*>> rows[] = {
        {kListen, false, "", {"127.0.0.1:10110", "127.9.8.7:65535", "[::1]:1", "127.0.0.1:0"}},
        {kListen, true, "", {"0.0.0.0:10110", "[::]:10110", "[fd00::7]:1"}},
        {kSend, true, "", {"239.2.1.1:1", "255.255.255.255:1", "10.0.0.255:1"}},
        {kListen, true, "is no port", {"65536", "-1", "", "127.0.0.1:", "127.0.0.1:80x", "[::1]"}},
        {kSend, true, "is no port", {"0", "127.0.0.1:0"}},
        {kListen, true, "is no address", {":1", "::1:1", "[127.0.0.1]:1", "[::1:1", "127.1:1", "0x7f.0.0.1:1", "plotter:1"}},
        {kListen, false, "not encrypted", {"0.0.0.0:1", "[::]:1", "[::ffff:10.0.0.1]:1"}},
        {kSend, false, "--allow-remote", {"192.168.1.255:1", "255.255.255.255:1", "128.0.0.1:1"}},
        {kListen, true, "many machines", {"239.2.1.1:1", "255.255.255.255:1", "[ff02::1]:1"}},
        {kSend, true, "no place to send to", {"0.0.0.0:1", "[::]:1"}}};
    const auto text = [](const EndpointReading& reading) { return reading.endpoint ? reading.endpoint->Text() : reading.fault; };
    for (const auto& [use, allowRemote, fault, all] : rows) {
        for (const std::string typed : all) {
            const EndpointReading reading = ParseEndpoint(typed, use, allowRemote);
            EXPECT_NE(text(reading).find(*fault ? fault : typed), std::string::npos) << typed << ": " << text(reading);
            EXPECT_EQ(*fault != 0, !reading.endpoint) << typed;
        }
    }
    for (const char* typed : {"10110", "localhost:10110"}) EXPECT_EQ("127.0.0.1:10110", text(ParseEndpoint(typed, kListen, false)));
}

// False if it is not so within ten seconds.
bool Until(const std::function<bool()>& so) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!so() && std::chrono::steady_clock::now() < end) continue;
    return so();
}

struct StreamServerTest : ::testing::Test {
    void SetUp() override { ASSERT_EQ("", server_.Listen({"127.0.0.1", 0})); }

    TcpClient Connected(int receiveBuffer = 256 * 1024) { return {context_, server_.At().port, receiveBuffer}; }

    TcpClient Joined(int receiveBuffer = 256 * 1024) {
        TcpClient reader = Connected(receiveBuffer);
        EXPECT_TRUE(Served([&, before = server_.Clients()] { return server_.Clients() > before; }));
        return reader;
    }

    bool Served(const std::function<bool()>& so) {
        return Until([&] { return server_.Put({}), so(); });
    }

    asio::io_context context_;
    StreamServer server_;
};

TEST_F(StreamServerTest, DropsWhoDoesNotReadAndLosesNothingForWhoDoes) {
    std::deque<TcpClient> readers, sleepers;
    for (int i = 0; i < 50; ++i) {
        readers.push_back(Joined());
        sleepers.push_back(Joined(4096));
    }
    std::string all;
    for (int i = 0; server_.Clients() > readers.size() && i < 5000; ++i) {
        const std::string line = std::to_string(i) + std::string(1000, 'x') + "\r\n";
        EXPECT_TRUE(server_.Put(line));
        all += line;
        for (TcpClient& reader : readers) reader.Read();
        EXPECT_LE(server_.Backlog(), StreamServer::kMostBacklog + line.size());
    }
    ASSERT_EQ(server_.Clients(), readers.size());
    for (TcpClient& reader : readers) {
        EXPECT_TRUE(Served([&] { return reader.Read(), reader.got.size() >= all.size() || reader.ended; }));
        EXPECT_TRUE(reader.got == all && !reader.ended) << reader.got.size() << " of " << all.size();
    }
    for (TcpClient& sleeper : sleepers) EXPECT_TRUE(Served([&] { return sleeper.Read(), sleeper.ended; }));
}

TEST_F(StreamServerTest, AShortDelayIsForgiven) {
    TcpClient reader = Joined(4096);
    std::string all;
    while (server_.Backlog() < StreamServer::kMostBacklog / 2 && all.size() < 10'000'000) {
        const std::string line = std::to_string(all.size()) + std::string(1000, 'x') + "\r\n";
        EXPECT_TRUE(server_.Put(line));
        all += line;
    }
    EXPECT_TRUE(Served([&] { return reader.Read(), reader.got.size() >= all.size() || reader.ended; }));
    EXPECT_TRUE(reader.got == all && !reader.ended) << reader.got.size() << " of " << all.size();
}

TEST_F(StreamServerTest, GreetsAndThenSendsOnlyWhatComes) {
    std::string greeting(300'000, 'g');  // no reason to drop who has not read it yet
    server_.SetGreeting([&] { return greeting; });
    server_.Put("before\n");
    TcpClient reader = Joined(4096);
    for (int i = 0; i < 50; ++i) server_.Put(std::string(1000, 'a'));
    EXPECT_TRUE(Served([&] { return reader.Read(), reader.got.size() >= greeting.size() + 50'000; }));
    EXPECT_TRUE(reader.got == greeting + std::string(50'000, 'a'));
}

TEST_F(StreamServerTest, DiscardsWhatIsSentAndLetsGoWhoCloses) {
    TcpClient reader = Joined(), talker = Joined();
    std::size_t talked = 0;
    EXPECT_TRUE(Served([&] {
        boost::system::error_code full;
        talked += talker.socket.write_some(asio::buffer(std::string(10'000, 't')), full);
        server_.Put("line\n");
        return talked > 1'000'000;
    }));
    EXPECT_TRUE(Served([&] { return reader.Read(), talker.Read(), server_.Backlog() == 0 && reader.got == talker.got; }));
    EXPECT_EQ(server_.Clients(), 2u);
    talker.socket.shutdown(tcp::socket::shutdown_send);
    EXPECT_TRUE(Served([&] { return server_.Clients() == 1; }));
    reader.socket.set_option(asio::socket_base::linger(true, 0));
    reader.socket.close();
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(server_.Put("nobody gets this\n"));
    EXPECT_TRUE(Served([&] { return server_.Clients() == 0; }));
}

TEST_F(StreamServerTest, TakesNoMoreClientsThanItCanServe) {
    std::deque<TcpClient> readers;
    for (std::size_t i = 0; i < StreamServer::kMostClients; ++i) readers.push_back(Joined());
    TcpClient late = Connected();
    EXPECT_TRUE(Served([&] { return late.Read(), late.ended; }));
    EXPECT_EQ(server_.Clients(), StreamServer::kMostClients);
}

TEST_F(StreamServerTest, SaysWhyItCanNotListenAndStartsAgainOnItsPort) {
    const Endpoint at = server_.At();
    StreamServer second;
    EXPECT_NE(second.Listen(at).find("in use"), std::string::npos);
    EXPECT_NE(second.Listen({"192.0.2.1", at.port}).find("an address of this machine?"), std::string::npos);
    TcpClient reader = Joined();
    EXPECT_EQ("", server_.Listen(at));  // while what is left of the connection fades
    EXPECT_TRUE((reader.Read(), reader.ended));
}

TEST(UdpSender, SendsWholeLines) {
    asio::io_context context;
    udp::socket receiver(context, udp::endpoint(asio::ip::address_v4::any(), 0));
    receiver.non_blocking(true);
    UdpSender sender, singly, toAll;
    const Endpoint at{"127.0.0.1", receiver.local_endpoint().port()};
    ASSERT_EQ("", sender.Open(at));
    ASSERT_EQ("", singly.Open(at, 0));
    ASSERT_EQ("", toAll.Open({"127.255.255.255", at.port}));
    std::string lines, got;
    for (int i = 0; i < 20; ++i) lines += std::string(98, 'x') + "\r\n";
    lines += std::string(3000, 'y') + "\r\nlast\r\n";
    EXPECT_TRUE(sender.Put(lines));
    EXPECT_TRUE(singly.Put("a\nbc\n"));
    EXPECT_TRUE(toAll.Put("all\n"));
    lines += "a\nbc\nall\n";
    std::vector<std::size_t> sizes;
    EXPECT_TRUE(Until([&] {
        char datagram[8192];
        boost::system::error_code none;
        const std::size_t size = receiver.receive(asio::buffer(datagram), 0, none);
        if (!none) sizes.push_back(size);
        return got.append(datagram, size).size() >= lines.size();
    }));
    EXPECT_EQ(sizes, (std::vector<std::size_t>{1400, 600, 3002, 6, 2, 3, 4}));
    EXPECT_EQ(got, lines);
}

}  // namespace
}  // namespace twr::testing
