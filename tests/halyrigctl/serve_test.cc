// SPDX-License-Identifier: MIT
// What halyrigctl serve answers and says, without a network.
#include <algorithm>
#include <cctype>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "ctl_fixture.h"
#include "halyrigctl/serve/page_files.h"
#include "halyrigctl/serve/page_talk.h"
#include "halyrigctl/serve/signalk_talk.h"
#include "halyrigctl/serve/site.h"

namespace twr::testing {
namespace {

using Json = nlohmann::json;

struct ServeTest : TimedCtlTest {
    // The server as it is at its start.
    struct Server {
        explicit Server(System& system) : lookout(system), site(system, lookout, "") {}
        Lookout lookout;
        Site site;
    };
    void Restart() { server.emplace(*this), Look(); }
    void Look() {
        server->lookout.Look();
        server->site.Take();
    }
    WebAnswer Get(std::string_view target, std::string_view method = "GET") {
        return server->site.Answer({.method = method, .target = target, .host = "10.0.0.2:8377"});
    }
    Json Told(std::string_view target) { return Json::parse(Get(target).body); }
    std::unique_ptr<WebTalk> Talk(std::string_view target) { return server->site.Talk({.method = "GET", .target = target}); }
    static std::vector<Json> SaidBy(WebTalk& talk) {
        std::vector<WebMessage> messages;
        talk.Say(messages);
        std::vector<Json> said;
        for (const WebMessage& message : messages) said.push_back(Json::parse(*message));
        return said;
    }
    // After a look: the paths of what is said, with their values.
    std::string DeltasOf(WebTalk& talk) {
        Look();
        std::string list;
        for (const Json& message : SaidBy(talk)) {
            for (const Json& update : message.value("updates", Json::array())) {
                for (const Json& pair : update.value("values", Json::array()))
                    list += pair["path"].get<std::string>() + "=" + pair["value"].dump() + " ";
            }
        }
        return list;
    }

    std::optional<Server> server{std::in_place, *this};
};

TEST(ServeWords, TargetsAreTakenApartOrRefused) {
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {{"/", "/", "", ""},
                                                                                   {"/a%2Fb%20c?x=1+2&y", "/a/b c", "x", "1 2"},
                                                                                   {"/a?x=1&x=%32", "/a", "x", "2"},
                                                                                   {"/a?=&&x=%e2%82%ac", "/a", "x", "€"}};
    for (const auto& [typed, path, name, text] : rows) {
        const auto target = ParseTarget(typed);
        ASSERT_TRUE(target) << typed;
        EXPECT_TRUE(path == target->path && text == target->Text(name)) << typed;
    }
    for (const char* none : {"a", "", "http://10.0.0.2/", "/%", "/%4", "/?x=%g0", "/%-1"}) EXPECT_FALSE(ParseTarget(none)) << none;
    const auto target = ParseTarget("/?a=13&b=-1&c=414&d=13x&e=&f=4294967297");
    EXPECT_EQ(13u, target->Number("a", 414));
    EXPECT_EQ(7u, target->Number("none", 414, 7));
    for (const char* name : {"b", "c", "d", "e", "f", "none"}) EXPECT_FALSE(target->Number(name, 414)) << name;
}

TEST(ServeWords, WhatAPageWatchesExists) {
    EXPECT_EQ(0u, ParseWatch(R"({"watch":[]})")->size());
    EXPECT_EQ(2u, ParseWatch(R"({"watch":[[1,0],[413,99]]})")->size());
    for (const char* places : {"[[414,0]]", "[[1,100]]", "[[1]]", "[[1.5,0]]", "[[-1,0]]", "{}", R"([["1","0"]])"})
        EXPECT_FALSE(ParseWatch(R"({"watch":)" + std::string(places) + "}")) << places;
    for (const char* none : {"{}", "[[1,0]]", "", "\xff"}) EXPECT_FALSE(ParseWatch(none)) << none;
}

TEST(ServeWords, PatternsOfSignalK) {
    const std::tuple<const char*, std::vector<const char*>, std::vector<const char*>> rows[] = {
        {"*", {"", "navigation.position"}, {}},
        {"navigation.*", {"navigation.position"}, {"navigation"}},
        {"*.temperature", {"propulsion.1.oil.temperature"}, {}},
        {"propulsion.*.oilTemperature", {"propulsion.1.oilTemperature"}, {"propulsion.1.oilPressure"}},
        {"navigation.speed", {}, {"navigation.speedOverGround"}},
        {"", {""}, {"a"}},
        {"a*b*c", {"abcbcc"}, {"abcbcd"}}};
    for (const auto& [pattern, matching, others] : rows) {
        for (const char* text : matching) EXPECT_TRUE(MatchesPattern(pattern, text)) << pattern << " " << text;
        for (const char* text : others) EXPECT_FALSE(MatchesPattern(pattern, text)) << pattern << " " << text;
    }
}

TEST(ServeWords, MessagesOfSignalK) {
    const auto said = ParseSignalK(
        R"({"context":"*","subscribe":[{"path":"a.b","period":2000,"minPeriod":200,"policy":"fixed"},{"path":"c"},{"period":1},7],)"
        R"("unsubscribe":[{"path":"*"}]})");
    ASSERT_TRUE(said);
    const std::vector<SignalKSubscription> expected = {{"*", "a.b", SignalKPolicy::kFixed, 2.0, 0.2}, {"*", "c"}};
    EXPECT_EQ(expected, said->subscribe);
    EXPECT_EQ(1u, said->unsubscribe.size());
    EXPECT_EQ(405, ParseSignalK(R"({"requestId":"1","put":{}})")->refusal);
    EXPECT_EQ(501, ParseSignalK(R"({"requestId":"1","login":{}})")->refusal);
    EXPECT_EQ("vessels.self", ParseSignalK(R"({"context":{"radius":1},"subscribe":[{"path":"a"}]})")->subscribe[0].context);
    for (const char* none : {"", "[]", "7", "{", "\xff"}) EXPECT_FALSE(ParseSignalK(none)) << none;
}

TEST_F(ServeTest, AnswersWhatItHasAndRefusesTheRest) {
    // status, without and with a record
    const std::tuple<const char*, int, int, std::vector<const char*>> rows[] = {
        {"GET", 200, 200, {"/", "/page/third_party/uplot/uPlot.min.css", "/halyrig/v1/check", "/signalk"}},
        {"GET", 200, 200, {"/signalk/v1/api", "/signalk/v1/api/"}},
        {"HEAD", 200, 200, {"/page/app.js"}},
        {"GET", 404, 404, {"/page/../serve.cc", "/page/%2e%2e/%2e%2e/etc/passwd", "/page//etc/passwd", "/page/", "/etc/passwd"}},
        {"GET", 404, 404, {"/halyrig/v1/explain?channel=414", "/halyrig/v1/explain", "/halyrig/v1/history?channel=1&boat=100"}},
        {"GET", 404, 404, {"/halyrig/v1/secrets", "/signalk/v1/apis", "/signalk/v1/api/vessels/self/navigation/nothing"}},
        {"GET", 400, 400, {"*", "/%zz"}},
        {"POST", 405, 405, {"/"}},
        {"DELETE", 405, 405, {"/halyrig/v1/channels"}},
        {"PUT", 405, 405, {"/signalk/v1/api/vessels/self/steering/rudderAngle"}},
        {"POST", 501, 501, {"/signalk/v1/auth/login"}},
        {"GET", 503, 200, {"/halyrig/v1/channels", "/halyrig/v1/boats", "/halyrig/v1/explain?channel=13"}},
        {"GET", 503, 200, {"/halyrig/v1/explain?channel=13&boat=0", "/halyrig/v1/history?channel=1"}},
        {"GET", 503, 200, {"/halyrig/v1/history?channel=117"}},
        {"GET", 404, 200, {"/signalk/v1/api/vessels/self/navigation/speedThroughWater/value"}}};
    const auto ask = [&](bool with) {
        Restart();
        for (const auto& [method, statusWithout, statusWith, targets] : rows) {
            for (const char* target : targets) {
                const WebAnswer answer = Get(target, method);
                EXPECT_EQ(with ? statusWith : statusWithout, answer.status) << method << " " << target << " " << answer.body;
                EXPECT_EQ(answer.status >= 400, answer.body.starts_with("{\"error\":\"")) << target;
            }
        }
    };
    ask(false);
    StartSuite({{kBsp, 6.5}});
    ask(true);
}

TEST_F(ServeTest, FilesOfThePageAreTypedAndKnownAgain) {
    std::size_t packed = 0;
    for (const PageFile& file : PageFiles()) {
        packed += file.bytes.size();
        const std::string target = "/page/" + std::string(file.name);
        const WebAnswer answer = server->site.Answer({.method = "GET", .target = target, .takesGzip = true});
        EXPECT_EQ(file.bytes, answer.body);
        EXPECT_TRUE(answer.packed);
        EXPECT_EQ(file.tag, answer.tag);
    }
    EXPECT_LT(packed, 150'000u);
    const WebAnswer plain = Get("/page/app.js");
    EXPECT_FALSE(plain.packed);
    EXPECT_EQ("text/javascript", plain.type);
    EXPECT_EQ(0u, plain.body.find("// SPDX"));
    EXPECT_EQ("application/manifest+json", Get("/page/manifest.webmanifest").type);
}

TEST_F(ServeTest, SaysWhereItIsFound) {
    const std::string here = LinesOf(Said("serve --listen 127.0.0.1:0")).at(0);
    EXPECT_TRUE(here.starts_with("halyrigctl: serves the page until Ctrl-C, at http://127.0.0.1:") && here.ends_with("/")) << here;
    const auto lines = LinesOf(Said("serve --listen 0.0.0.0:0 --allow-remote"));
    EXPECT_TRUE(std::ranges::none_of(lines, [](const std::string& line) { return line.find("http://[") != line.npos; }))
        << "nobody is served there\n"
        << console.written;
    ExpectSaid(2, {{"serve --listen 0.0.0.0:0", {"--allow-remote"}}, {"serve --listen nowhere:1", {"nowhere"}}});
}

TEST_F(ServeTest, TheOwnBoatHasSeveralNames) {
    StartSuite({{kBsp, 3600.0 / 1852}});
    Restart();
    const std::string own = Told("/signalk/v1/api/self").get<std::string>(), bare = own.substr(own.find('.') + 1);
    // in a subscription, and in its end
    const std::tuple<std::string, std::string, bool> rows[] = {{"self", own, true},
                                                               {"vessels.self", bare, true},
                                                               {own, "vessels.self", true},
                                                               {bare, "*", true},
                                                               {"*", "*", true},
                                                               {"vessels.urn:*", "vessels.urn:*", true},
                                                               {"vessels.urn:mrn:imo:mmsi:1", "*", false},
                                                               {"selfish", "*", false},
                                                               {"", "*", false}};
    for (const auto& [named, ended, isOwn] : rows) {
        const auto talk = Talk("/signalk/v1/stream?subscribe=none");
        SaidBy(*talk);
        talk->Hear(R"({"context":")" + named + R"(","subscribe":[{"path":"navigation.*","policy":"fixed","period":0}]})");
        const char* all = isOwn ? "navigation.speedThroughWater=1 " : "";
        EXPECT_EQ(all, DeltasOf(*talk)) << named;
        EXPECT_EQ(all, DeltasOf(*talk)) << named;
        talk->Hear(R"({"context":")" + ended + R"(","unsubscribe":[{"path":"*"}]})");
        EXPECT_EQ("", DeltasOf(*talk)) << ended << " of " << named;
    }
}

TEST_F(ServeTest, EveryChannelHasItsOwnPathOfSignalK) {
    std::map<std::string, int> paths;
    for (const SignalKPath& path : SignalKPaths()) {
        ++paths[path.path];
        const std::string name = IsOurs(path) ? std::string(path.path).substr(8) : "";
        EXPECT_TRUE(std::ranges::all_of(name, [](char c) { return c > 0 && std::isalnum(c) != 0; })) << name;
    }
    for (const auto& [path, count] : paths) EXPECT_EQ(1, count) << path;
    const std::pair<const char16_t*, const char*> rows[] = {
        {u"TWD+90", "twdPlus90"},  {u"TWD-90", "twdMinus90"}, {u"TWDPeriod", "twdPeriod"},
        {u"FStayLen", "fStayLen"}, {u"P burn", "pBurn"},      {u"D0 P", "d0P"},
        {u"XTE", "xte"},           {u"dTargBsp", "dTargBsp"}, {u"PolBsp%", "polBspPercent"}};
    for (const auto& [name, path] : rows) EXPECT_EQ(path, SignalKName(name));
}

}  // namespace
}  // namespace twr::testing
