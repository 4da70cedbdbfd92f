// SPDX-License-Identifier: MIT
// The server's manners towards clients good and bad; the test is the clients, of plain sockets.
#include "streams/web_server.h"

#include <gtest/gtest.h>

#include <list>

#include "streams/tcp_client.h"

namespace twr::testing {
namespace {

TEST(WebGuardTest, AdmitsOnlyWhoNamesThisMachineAndComesFromIt) {
    const std::tuple<const char*, bool, std::vector<const char*>> rows[] = {
        {"", true, {"127.0.0.1:8377", "192.168.1.10", "203.0.113.5:8377", "[::1]:8377", "[fe80::1]", "localhost"}},
        {"", true, {"NAV:8377", "nav.local", "nav.harbour.example"}},
        {"", false, {"nav.evil.example", "evil.example:8377", "", "127.0.0.1.evil.example"}},
        {"", false, {"127.0.0.1:8377; script-src *", "[::1", "[::1]x"}},
        {"http://127.0.0.1", true, {"127.0.0.1"}},
        {"http://203.0.113.5:8377", true, {"203.0.113.5:8377"}}};
    const WebGuard guard("nav.harbour.example", "https://kip.example");
    for (const auto& [origin, admitted, hosts] : rows) {
        for (const char* host : hosts) EXPECT_EQ(admitted, guard.Admits({.host = host, .origin = origin})) << host << origin;
    }
    const auto admits = [&](const char* origin) { return guard.Admits({.host = "10.0.0.2:8377", .origin = origin}); };
    for (const char* origin : {"http://10.0.0.2:8377", "http://192.168.7.7:3000", "http://172.31.0.5", "http://[fd00::7]",
                               "http://nav.local", "https://kip.example"})
        EXPECT_TRUE(admits(origin)) << origin;
    for (const char* origin : {"https://kip.example:444", "http://203.0.113.5", "http://172.32.0.1", "http://192.169.0.1",
                               "https://evil.example", "http://10.0.0.2.evil.example", "null"})
        EXPECT_FALSE(admits(origin)) << origin;
    EXPECT_TRUE(WebGuard("", "*").Admits({.host = "10.0.0.2", .origin = "https://evil.example"}));
    EXPECT_FALSE(WebGuard("", {}).Admits({.host = ".local"}));
}

// Says its message at each beat, and what it hears once more.
struct StubTalk : WebTalk {
    explicit StubTalk(const WebMessage& ofSite) : message(ofSite) {}
    bool Hear(std::string_view said) override {
        heard = said;
        return said != "end";
    }
    void Say(std::vector<WebMessage>& messages) override {
        if (message) messages.push_back(message);
        if (!heard.empty()) messages.push_back(std::make_shared<const std::string>(std::exchange(heard, {})));
    }
    const WebMessage& message;
    std::string heard;
};

struct StubSite : WebSite {
    WebAnswer Answer(const WebRequest& request) override {
        if (request.method == "POST") return {.status = 405, .body = "{}"};
        return {.type = "text/plain", .body = std::string(request.target), .tag = "\"1\""};
    }
    std::unique_ptr<WebTalk> Talk(const WebRequest& request) override {
        return request.target == "/talk" ? std::make_unique<StubTalk>(message) : nullptr;
    }
    WebMessage message;
};

struct WebServerTest : ::testing::Test {
    void SetUp() override { ASSERT_EQ("", server.Listen({"127.0.0.1", 0}, {})); }

    using Client = TcpClient;
    Client& Connect() { return clients.emplace_back(context, server.At().port); }
    // Lets the server work until it is so, or it is clear that it never will be.
    template <class Condition>
    bool Until(Condition condition) {
        for (int i = 0; i < 2'000; ++i) {
            if (condition()) return true;
            server.Serve(std::chrono::milliseconds(5));
        }
        return false;
    }
    Client& Talk() {
        Client& client = Connect();
        client.Put(
            "GET /talk HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
            "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
        EXPECT_TRUE(Until([&] { return client.Read(), client.got.find("\r\n\r\n") != std::string::npos; }));
        EXPECT_EQ(0u, client.got.find("HTTP/1.1 101")) << client.got;
        client.got.clear();
        return client;
    }
    // Of text, masked by zeros.
    static std::string Frame(const std::string& text) {
        std::string frame = "\x81";
        if (text.size() < 126) {
            frame += static_cast<char>(0x80 | text.size());
        } else {
            frame += '\xFE';
            frame += static_cast<char>(text.size() >> 8);
            frame += static_cast<char>(text.size() & 0xFF);
        }
        return frame + std::string(4, '\0') + text;
    }

    StubSite site;
    WebServer server{site};
    asio::io_context context;
    std::list<Client> clients;
};

TEST_F(WebServerTest, AnswersARequestAndRefusesABadOne) {
    const std::string host = "Host: 127.0.0.1\r\n";
    // what is answered, holds and lacks, and whether the connection ends
    using Row = std::tuple<std::string, const char*, const char*, const char*, bool>;
    const Row rows[] = {
        {"GET /a HTTP/1.1\r\n" + host + "\r\n", "HTTP/1.1 200", "\r\n\r\n/a", "Access-Control", false},
        {"GET /a HTTP/1.0\r\n" + host + "\r\n", "HTTP/1.1 200", "/a", "", true},
        {"HEAD /a HTTP/1.1\r\n" + host + "\r\n", "HTTP/1.1 200", "Content-Length: 2", "\r\n\r\n/a", false},
        {"GET /a HTTP/1.1\r\n" + host + "If-None-Match: \"1\"\r\n\r\n", "HTTP/1.1 304", "ETag: \"1\"", "/a", false},
        {"GET /a HTTP/1.1\r\n" + host + "\r\n", "HTTP/1.1 200", "Content-Security-Policy: default-src 'self';", "", false},
        {"GET /a HTTP/1.1\r\n" + host + "\r\n", "HTTP/1.1 200", "X-Content-Type-Options: nosniff", "", false},
        {"GET /a HTTP/1.1\r\n" + host + "\r\n", "HTTP/1.1 200", "Referrer-Policy: no-referrer", "", false},
        {"POST /a HTTP/1.1\r\n" + host + "Content-Length: 5\r\n\r\nabcde", "HTTP/1.1 405", "Allow: GET, HEAD", "", true},
        {"GET /a HTTP/1.1\r\n\r\n", "HTTP/1.1 403", "address", "", true},
        {"GET /a HTTP/1.1\r\n" + host + host + "\r\n", "HTTP/1.1 403", "", "/a", true},
        {"GET /a HTTP/1.1\r\nHost: evil.example\r\n\r\n", "HTTP/1.1 403", "", "evil", true},
        {"GET /a HTTP/1.1\r\n" + host + "Origin: http://evil.example\r\n\r\n", "HTTP/1.1 403", "", "evil", true},
        {"GET /none HTTP/1.1\r\n" + host +
             "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
             "Sec-WebSocket-Version: 13\r\n\r\n",
         "HTTP/1.1 404", "", "", true},
        {"GET /a HTTP/1.1\r\n" + host + "X: " + std::string(9'000, 'x') + "\r\n\r\n", "HTTP/1.1 431", "", "", true},
        {std::string("\x16\x03\x01\x00\x05 TLS\r\n\r\n", 13), "HTTP/1.1 400", "", "", true}};
    for (const auto& [request, answer, holds, lacks, ends] : rows) {
        SCOPED_TRACE(request.substr(0, 120));
        Client& client = Connect();
        client.Put(request);
        const auto& got = client.got;
        EXPECT_TRUE(Until([&, end = ends] { return client.Read(), end ? client.ended : got.find("\r\n\r\n") != got.npos; }));
        EXPECT_TRUE(got.starts_with(answer) && got.find(holds) != got.npos && (*lacks == 0 || got.find(lacks) == got.npos)) << got;
        EXPECT_EQ(ends, client.ended);
        if (ends) continue;
        client.got.clear();
        client.Put("GET /next HTTP/1.1\r\n" + host + "\r\n");
        EXPECT_TRUE(Until([&] { return client.Read(), got.ends_with("\r\n\r\n/next"); })) << got;
    }
}

TEST_F(WebServerTest, DropsWhoDoesNotReadAndTheOthersLoseNothing) {
    site.message = std::make_shared<const std::string>(100'000, 'x');
    Client& slow = Talk();
    Client& good = Talk();
    std::size_t said = 0;
    EXPECT_TRUE(Until([&] {
        if (good.got.size() == said * (100'000 + 10)) server.SayAll(), ++said;  // however slow the machine is
        server.Serve(std::chrono::milliseconds(1));
        good.Read();
        return server.Clients() == 1;
    }));
    site.message = nullptr;
    EXPECT_TRUE(Until([&] { return good.Read(), good.got.size() == said * (100'000 + 10); })) << good.got.size() << " of " << said;
    slow.Read();
    EXPECT_TRUE(Until([&] { return slow.Read(), slow.ended; }));
}

TEST_F(WebServerTest, HearsWholeMessagesAndDropsWhoBreaksTheRules) {
    const std::tuple<const char*, std::string, bool> rows[] = {
        {"a message", Frame("hello"), true},
        {"in two parts", std::string("\x01\x82\0\0\0\0he\x80\x83\0\0\0\0llo", 17), true},
        {"the longest", Frame(std::string(16'384, 'x')), true},
        {"too long", Frame(std::string(16'385, 'x')), false},
        {"without a mask", "\x81\x05hello", false},
        {"no frame", std::string(64, '\xFF'), false},
        {"a request", "GET / HTTP/1.1\r\n\r\n", false},
        {"what the site does not want", Frame("end"), false}};
    for (const auto& [what, bytes, stays] : rows) {
        SCOPED_TRACE(what);
        Client& client = Talk();
        // Torn anywhere.
        client.Put(bytes.substr(0, 3));
        server.Serve(std::chrono::milliseconds(2));
        client.Put(bytes.substr(3));
        EXPECT_TRUE(Until([&, stay = stays] { return server.SayAll(), client.Read(), stay ? !client.got.empty() : client.ended; }));
        EXPECT_EQ(!stays, client.ended);
        if (stays) {
            client.Put(Frame("again"));
            EXPECT_TRUE(Until([&] {
                return server.SayAll(), client.Read(),
                       client.got.ends_with(
                           "\x81\x05"
                           "again");
            })) << "and nothing of the first";
        }
        client.socket.close();
        EXPECT_TRUE(Until([&] { return server.SayAll(), server.Clients() == 0; }));
    }
}

TEST_F(WebServerTest, AFloodIsHeardSlowlyAndMoreClientsThanFitAreLetGo) {
    Client& flood = Talk();
    std::string many;
    for (int i = 0; i < 1'000; ++i) many += Frame("x");
    flood.Put(many);
    server.Serve(std::chrono::milliseconds(50));
    server.SayAll();
    EXPECT_TRUE(Until([&] { return flood.Read(), !flood.got.empty(); })) << "once for all that it has heard";
    for (std::size_t i = server.Clients(); i < WebServer::kMostClients; ++i) Connect();
    EXPECT_TRUE(Until([&] { return server.Clients() == WebServer::kMostClients; }));
    Client& over = Connect();
    EXPECT_TRUE(Until([&] { return over.Read(), over.ended; }));
    EXPECT_EQ("", over.got);
    clients.clear();
    EXPECT_TRUE(Until([&] { return server.SayAll(), server.Clients() == 0; }));
}

}  // namespace
}  // namespace twr::testing
