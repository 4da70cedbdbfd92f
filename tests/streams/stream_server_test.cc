// Streams in the network: real sockets of 127.0.0.1, both ends of which are served by the one thread of the test.
#include "streams/stream_server.h"

#include <gtest/gtest.h>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/ip/udp.hpp>
#include <deque>

#include "streams/udp_sender.h"

namespace twr {
namespace {

using asio::ip::tcp;
using asio::ip::udp;
using namespace std::chrono_literals;

TEST(Endpoint, IsReadOrRefused) {
    constexpr auto kListen = EndpointUse::kListen, kSend = EndpointUse::kSend;
    const struct {
        const char* typed;
        EndpointUse use;
        bool allowRemote;
        const char* expected;  // the endpoint, or a fragment of the fault
    } rows[] = {{"10110", kListen, false, "127.0.0.1:10110"},
                {"localhost:80", kListen, false, "127.0.0.1:80"},
                {"127.9.8.7:65535", kListen, false, "127.9.8.7:65535"},
                {"[::1]:10110", kListen, false, "[::1]:10110"},
                {"0", kSend, false, "'0' is no port"},
                {"65536", kListen, false, "'65536' is no port"},
                {"80x", kListen, false, "'80x' is no port"},
                {"127.0.0.1:", kListen, false, "'' is no port"},
                {":10110", kListen, true, "'' is no address"},
                {"::1:10110", kListen, true, "[::1]:10110 for IPv6"},
                {"127.0.0:10110", kListen, true, "is no address"},
                {"plotter:10110", kSend, true, "'plotter' is no address"},
                {"0.0.0.0:10110", kListen, false, "--allow-remote"},
                {"[::]:10110", kListen, false, "--allow-remote"},
                {"[::ffff:10.0.0.1]:10110", kListen, false, "--allow-remote"},
                {"192.168.1.255:10110", kSend, false, "not encrypted"},
                {"0.0.0.0:10110", kListen, true, "0.0.0.0:10110"},
                {"[fd00:0:0:0::7]:10110", kListen, true, "[fd00::7]:10110"},
                {"239.2.1.1:10110", kSend, true, "239.2.1.1:10110"},
                {"239.2.1.1:10110", kListen, true, "many machines"},
                {"255.255.255.255:10110", kListen, true, "many machines"},
                {"[::]:10110", kSend, true, "no place to send to"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.typed);
        const EndpointReading reading = ParseEndpoint(row.typed, row.use, row.allowRemote);
        EXPECT_NE(reading.endpoint.has_value(), !reading.fault.empty());
        if (reading.endpoint) {
            EXPECT_EQ(row.expected, reading.endpoint->Text());
        } else {
            EXPECT_NE(reading.fault.find(row.expected), std::string::npos) << reading.fault;
        }
    }
}

struct Reader {
    // Takes what has come.
    void Read() {
        char bytes[8192];
        for (asio::error_code none; !gone;) {
            const std::size_t count = socket.read_some(asio::buffer(bytes), none);
            got.append(bytes, count);
            if (none == asio::error::would_block) return;
            gone = bool(none);
        }
    }

    tcp::socket socket;
    std::string got = {};
    bool gone = false;
};

class StreamServerTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ("", server_.Listen({"127.0.0.1", 0})); }

    Reader Connected(int receiveBuffer = 256 * 1024) {
        Reader reader{tcp::socket(context_, tcp::v4())};
        reader.socket.set_option(asio::socket_base::receive_buffer_size(receiveBuffer));
        reader.socket.connect({asio::ip::make_address(server_.At().address), server_.At().port});
        reader.socket.non_blocking(true);
        return reader;
    }

    // False if it is not so within ten seconds of serving.
    bool Until(const std::function<bool()>& so) {
        for (const auto end = std::chrono::steady_clock::now() + 10s; !so(); server_.Put({})) {
            if (std::chrono::steady_clock::now() > end) return false;
        }
        return true;
    }

    Reader Joined(int receiveBuffer = 256 * 1024) {
        const std::size_t before = server_.Clients();
        Reader reader = Connected(receiveBuffer);
        EXPECT_TRUE(Until([&] { return server_.Clients() > before; }));
        return reader;
    }

    asio::io_context context_;
    StreamServer server_;
};

TEST_F(StreamServerTest, DropsWhoDoesNotReadAndLosesNothingForWhoDoes) {
    std::deque<Reader> readers, sleepers;
    for (int i = 0; i < 50; ++i) {
        readers.push_back(Joined());
        sleepers.push_back(Joined(4096));
    }
    std::string all;
    for (int i = 0; server_.Clients() > readers.size() && i < 5000; ++i) {
        const std::string line = std::to_string(i) + std::string(1000, 'x') + "\r\n";
        EXPECT_TRUE(server_.Put(line));
        all += line;
        for (Reader& reader : readers) reader.Read();
        EXPECT_LE(server_.Backlog(), StreamServer::kMostBacklog + line.size());
    }
    ASSERT_EQ(server_.Clients(), readers.size());
    EXPECT_GT(all.size(), StreamServer::kMostBacklog);
    for (Reader& reader : readers) {
        EXPECT_TRUE(Until([&] { return reader.Read(), reader.got.size() >= all.size() || reader.gone; }));
        EXPECT_TRUE(reader.got == all && !reader.gone) << reader.got.size() << " of " << all.size();
    }
    for (Reader& sleeper : sleepers) EXPECT_TRUE(Until([&] { return sleeper.Read(), sleeper.gone; }));
}

TEST_F(StreamServerTest, GreetsAndThenSendsOnlyWhatComes) {
    const std::string greeting(300'000, 'g');  // no reason to drop who has not read it yet
    server_.SetGreeting([&] { return greeting; });
    server_.Put("before\n");
    Reader reader = Joined(4096);
    for (int i = 0; i < 50; ++i) server_.Put(std::string(1000, 'a'));
    EXPECT_TRUE(Until([&] { return reader.Read(), reader.got.size() >= greeting.size() + 50'000; }));
    EXPECT_TRUE(reader.got == greeting + std::string(50'000, 'a'));
}

TEST_F(StreamServerTest, DiscardsWhatIsSentAndLetsGoWhoCloses) {
    Reader reader = Joined(), talker = Joined();
    std::size_t talked = 0;
    const std::string talk(10'000, 't');
    EXPECT_TRUE(Until([&] {
        asio::error_code full;
        talked += talker.socket.write_some(asio::buffer(talk), full);
        server_.Put("line\n");
        return talked > 1'000'000;
    }));
    EXPECT_TRUE(Until([&] { return reader.Read(), talker.Read(), server_.Backlog() == 0 && reader.got == talker.got; }));
    EXPECT_EQ(server_.Clients(), 2u);
    talker.socket.shutdown(tcp::socket::shutdown_send);
    EXPECT_TRUE(Until([&] { return server_.Clients() == 1; }));
    reader.socket.set_option(asio::socket_base::linger(true, 0));
    reader.socket.close();
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(server_.Put("nobody gets this\n"));
    EXPECT_TRUE(Until([&] { return server_.Clients() == 0; }));
}

TEST_F(StreamServerTest, TakesNoMoreClientsThanItCanServe) {
    std::deque<Reader> readers;
    for (std::size_t i = 0; i < StreamServer::kMostClients; ++i) readers.push_back(Joined());
    Reader late = Connected();
    EXPECT_TRUE(Until([&] { return late.Read(), late.gone; }));
    EXPECT_EQ(server_.Clients(), StreamServer::kMostClients);
    readers.pop_back();
    EXPECT_TRUE(Until([&] { return server_.Clients() < StreamServer::kMostClients; }));
    Joined();
}

TEST_F(StreamServerTest, SaysWhyItCanNotListenAndStartsAgainOnItsPort) {
    const Endpoint at = server_.At();
    StreamServer second;
    EXPECT_NE(second.Listen(at).find("in use"), std::string::npos);
    EXPECT_NE(second.Listen({"192.0.2.1", at.port}).find("an address of this machine?"), std::string::npos);
    Reader reader = Joined();
    EXPECT_EQ("", server_.Listen(at));  // while what is left of the connection fades
    EXPECT_TRUE((reader.Read(), reader.gone));
}

TEST(UdpSender, SendsWholeLines) {
    asio::io_context context;
    udp::socket receiver(context, udp::endpoint(asio::ip::address_v4::loopback(), 0));
    receiver.non_blocking(true);
    UdpSender sender;
    ASSERT_EQ("", sender.Open({"127.0.0.1", receiver.local_endpoint().port()}));
    const std::string line = std::string(98, 'x') + "\r\n", longLine = std::string(3000, 'y') + "\r\n";
    std::string many;
    for (int i = 0; i < 20; ++i) many += line;
    EXPECT_TRUE(sender.Put(many + longLine + line));
    EXPECT_TRUE(sender.Put(line));
    std::vector<std::size_t> sizes;
    std::string got;
    char datagram[65536];
    for (const auto end = std::chrono::steady_clock::now() + 10s; sizes.size() < 5 && std::chrono::steady_clock::now() < end;) {
        asio::error_code none;
        const std::size_t size = receiver.receive(asio::buffer(datagram), 0, none);
        if (none) continue;
        sizes.push_back(size);
        got.append(datagram, size);
    }
    EXPECT_EQ(sizes, (std::vector<std::size_t>{1400, 600, 3002, 100, 100}));
    EXPECT_EQ(got, many + longLine + line + line);
}

}  // namespace
}  // namespace twr
