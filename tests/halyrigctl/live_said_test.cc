// SPDX-License-Identifier: MIT
// Every word of what is streamed and served of a live record.
#include <map>
#include <nlohmann/json.hpp>

#include "config/bridge_settings.h"
#include "core/record_access.h"
#include "halyrigctl/serve/page_talk.h"
#include "halyrigctl/serve/site.h"
#include "halyrigctl/transcript.h"

namespace twr::testing {
namespace {

// Of each kind of unit and path of Signal K, and the alternating ones.
constexpr const char* kMany =
    "1,2,6,11,12,13,14,16,18,19,20,30,32,34,39,46,48,49,58,74,75,91,93,96,97,105,106,117,118,146,161,162,163,164,172,174,204,"
    "269,286,365,387";

struct LiveTest : CtlTest {
    LiveTest() {
        const std::string config = "ProgramData/Tidewright/config/";
        test.folder.Write(config + "channels.xml",
                          "<channels><channel id='172' user='Jib' type='15'/><channel id='173' user='Tack \"X\"' type='12'/>"
                          "<channel id='174' type='23'/><channel id='175' type='7'/><channel id='176' type='1'/>"
                          "<channel id='177' type='2'/><channel id='178' type='10'/><channel id='1' damp='5'/></channels>");
        test.folder.Write(config + "boats.xml",
                          "<boats><boat id='0' name='Aurora' r='255'/><boat id='1' name='Borealis' mmsi='11234560' g='128'/>"
                          "<boat id='2' name='Carina' b='64'/><boat id='3' mmsi='211000000' name='Draco'/></boats>");
        test.folder.Write(config + "alternate.csv", "0,13,118,0,0,0,0,0,0,0\n1,1,117,1,0,0,0,0,0,0\n");
        zone.state = ZoneState{-330, -330, false};
        WriteSettings(Core().registry, Settings{.dfwFolder = test.folder.File("Deckman")});
        StartSuite();
    }
    CoreServices Core() override {
        const CoreServices real = test.system->Core();
        return {clock, zone, real.memory, real.registry, real.files, real.xml, real.desktop};
    }
    void Set(BoatSlot boat, const std::map<ChannelId, double>& values, double secondsAgo = 0.0) {
        for (const auto& [channel, value] : values) suite->SetChannel(channel, boat, value, clock.Days() - secondsAgo / 86400);
    }
    void Flag(std::size_t flag, bool on) { Put(suite->View()->sysFlag[flag], std::uint8_t{on}); }
    void Unit(std::size_t selector, std::int32_t row) { Put(suite->View()->sysInt[selector], row); }
    // Of each channel that a format knows, all different.
    void SetAll(BoatSlot boat) {
        for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel) {
            if (EntryOf(*suite->View(), channel, boat)) Set(boat, {{channel, channel / 8.0 + boat}});
        }
        Set(boat, {{kGpsTime, clock.Days() - (boat == 0 ? 0.504 : 0.0) / 86400},
                   {kGpsMethod, 1.0 + boat},
                   {kLon, -170.25 + 350.0 * boat}});
        Set(boat, {{kTmToGun, -61.5 / 86400}, {kMagVar, boat == 0 ? 9.5 : -3.25}, {kMkRng, 9.25 + boat}, {kHdg, 355.0 - boat}});
    }
    // At each second of a command, from its first look on.
    void EachSecond(std::vector<std::function<void()>> steps) {
        console.waited = 0;
        int seen = 0;
        console.goOn = [this, steps = std::move(steps), seen, next = std::size_t{0}]() mutable {
            clock.AdvanceMs(console.waited - seen);
            seen = console.waited;
            for (; next < steps.size() && console.waited >= 1000 * static_cast<int>(next + 1); ++next) steps[next]();
            return console.waited < 1000 * static_cast<int>(steps.size() + 1);
        };
    }

    FakeClock clock;
    FakeZone zone;
};

TEST_F(LiveTest, EachWordOfAStream) {
    Transcript said("stream", *this);
    clock.AdvanceMs(86'399'998);  // to the end of a day
    said.Tell("Two boats of which all is known, at " + std::to_string(clock.Days()));
    Unit(1, 2), Unit(2, 2);  // feet, km/h
    SetAll(0), SetAll(1);
    EachSecond({});
    said.Type("stream --format signalk --seconds 1 --channels " + std::string(kMany));
    EachSecond({});
    said.Type("stream --format nmea --seconds 1");
    EachSecond({});
    said.Type("stream --format nmea --seconds 1 --boat 1 --talker EI --talker gps=GN");

    said.Tell("Of the other boat no time by satellites, nor a variation; the own one's position is by dead reckoning");
    Set(0, {{kGpsMethod, 6.0}, {kLat, 50.0}, {kMkRng, kNoValue}, {kAltitude, kNoValue}}, 2);
    Set(1, {{kGpsTime, kNoValue}, {kMagVar, kNoValue}, {kLat, -33.5}, {kGpsMethod, 0.0}}, 3);
    Set(2, {{kBsp, 5.25}});  // a boat without an MMSI
    const std::vector<std::function<void()>> changes = {
        [&] {
            Set(0, {{kBsp, 6.5}, {kHdg, 1.5}, {kTwd, kNoValue}, {kLat, 50.0}, {kLon, -0.5}, {kGpsMethod, 6.0}}),
                Set(1, {{kBsp, 7.25}, {172, 1013.5}}), Set(3, {{kSog, 11.5}});
        },
        [&] {
            Set(0, {{kHdg, 1.5}, {kMagVar, -1.25}, {kMkRng, 1.5}, {kMkBrg, 359.0}}), Set(1, {{kBsp, kNoValue}, {kSog, 4.5}});
        },
        [&] {
            Set(0, {{173, 8.125}, {174, 101325.0}, {175, -90.0}, {176, 46345.75}, {177, -0.001}, {178, 55.5}});
        }};
    const char* const few = " --channels 1,13,6,93,35,172,173,174,175,176,177,178,117,118 --seconds 4";
    for (const char* typed : {"stream", "stream --format signalk", "stream --boat 1"}) {
        EachSecond(changes);
        said.Type(typed + std::string(few));
    }
    EachSecond(changes);
    said.Type("stream --all --rate 1 --boat 0 --channels 1,13,178 --seconds 4");
    for (const char* typed :
         {"stream --format nmea", "stream --format nmea --boat 1 --rate 0.5", "stream --format nmea --boat 3"}) {
        EachSecond(changes);
        said.Type(typed + std::string(" --seconds 2"));
    }
}

TEST_F(LiveTest, EachWordOfTheServer) {
    Transcript said("serve", *this);
    test.folder.Write("ProgramData/Tidewright/instruments/halyrig.xml", "<halyrig><var twr='1' dfw='BSP'/></halyrig>");
    Flag(kFlagMagnetic, true);
    Unit(1, 1), Unit(2, 1), Unit(3, 3);  // fathoms, m/s, km
    const std::map<ChannelId, double> own = {{kBsp, 6.5},          {kHdg, 355.0},   {kTwd, 12.5},
                                             {kAwa, -31.5},        {kDepth, 12.5},  {kMkRng, 1.5},
                                             {kLat, 60.5},         {kLon, -170.25}, {kTmToGun, 90.0 / 86400},
                                             {kGpsTime, 46345.75}, {kMagVar, 9.5},  {kBaro, 1013.5},
                                             {kPolBspPct, 97.5},   {172, 1001.5},   {174, 5.5}};
    Set(0, own);
    Set(0, {{kTws, 12.0}}, 25);
    Set(1, {{kBsp, 7.25}, {kHdg, 11.0}, {kTwd, 20.0}, {kMagVar, -3.25}, {kLat, -33.5}, {kLon, 151.25}}, 2);
    Set(3, {{kSog, 11.5}, {kCog, 200.0}});
    Lookout lookout(*this);
    Site site(*this, lookout, "");
    const auto look = [&](int ms) {
        clock.AdvanceMs(ms);
        if (suite) suite->StampTime();
        lookout.Look(), site.Take();
    };
    std::string self;
    const auto plain = [&](std::string text) {
        for (std::size_t at = 0; !self.empty() && (at = text.find(self, at)) != text.npos;) text.replace(at, self.size(), "OWN");
        return text;
    };
    const auto get = [&](const std::string& target, const char* rows = nullptr) {
        const WebAnswer answer = site.Answer({.method = "GET", .target = target, .host = "10.0.0.2:8377"});
        std::string body = answer.body;
        if (rows) {  // of which there are hundreds
            nlohmann::ordered_json all = nlohmann::ordered_json::parse(body), some;
            for (auto& row : all["channels"])
                if (std::string(rows).find("," + std::to_string(row["id"].get<int>()) + ",") != std::string::npos)
                    some += row.dump() + "\n";
            all.erase("channels");
            body = all.dump() + "\n";
            for (const auto& row : some) body += row.get<std::string>();
        }
        said.Tell("$ GET " + target + " " + std::to_string(answer.status) + " " + std::string(answer.type), plain(body));
    };
    const auto hear = [&](const char* who, WebTalk& talk) {
        std::vector<WebMessage> messages;
        talk.Say(messages);
        for (const WebMessage& message : messages) said.Tell(std::string("  to ") + who + ": " + plain(*message));
    };
    const auto talk = [&](const std::string& target) { return site.Talk({.method = "GET", .target = target}); };
    look(0);
    self = nlohmann::json::parse(site.Answer({.method = "GET", .target = "/signalk/v1/api/self", .host = "a"}).body);
    self = self.substr(self.find('.') + 1);
    get("/halyrig/v1/channels", ",1,2,6,13,17,48,49,93,117,118,146,172,173,174,175,176,177,178,204,");
    get("/halyrig/v1/boats");
    get("/halyrig/v1/explain?channel=1"), get("/halyrig/v1/explain?channel=13&boat=1");
    get("/signalk"), get("/signalk/v1/api"), get("/signalk/v1/api/vessels/self/navigation/headingTrue/value");
    get("/signalk/v1/api/vessels/urn:mrn:imo:mmsi:011234560/navigation/position");

    const auto named = Site(*this, lookout, "Spirit").Answer({.method = "GET", .target = "/halyrig/v1/channels", .host = "a"});
    EXPECT_TRUE(named.body.starts_with(R"({"name":"Spirit",)")) << "in place of the boat's";

    said.Tell("A page watches, and programs of Signal K listen");
    const auto page = talk("/halyrig/v1/stream"), all = talk("/signalk/v1/stream?subscribe=all&sendMeta=all");
    const auto mine = talk("/signalk/v1/stream"), fresh = talk("/signalk/v1/stream?sendCachedValues=false");
    const auto chosen = talk("/signalk/v1/stream?subscribe=none");
    const auto everyone = [&](int ms) {
        look(ms);
        said.Tell("After " + std::to_string(ms) + " ms");
        hear("the page", *page), hear("all", *all), hear("the own boat", *mine), hear("what is new", *fresh),
            hear("what is chosen", *chosen);
    };
    page->Hear(
        R"({"watch":[[1,0],[13,0],[13,1],[6,1],[17,0],[204,0],[146,0],[5,0],[51,3],[117,0],[118,0],[172,0],[48,0],[82,0]]})");
    chosen->Hear(
        R"({"context":"*","subscribe":[{"path":"navigation.speed*","policy":"instant"},{"path":"*.wind.*","period":1500},)"
        R"({"path":"navigation.position","policy":"fixed","period":3000},{"path":"halyrig.*","policy":"instant","minPeriod":2500}]})");
    everyone(0);
    Set(0, {{kBsp, 7.5}, {kHdg, 5.0}}), Set(1, {{kHdg, 350.0}, {kBsp, 7.5}});
    everyone(50);
    Set(0, {{kBsp, 7.501}, {172, 1002.5}});  // which is shown as before
    everyone(50);
    Set(0, {{kBsp, 7.5}, {kDepth, kNoValue}, {kTmToGun, -1.0 / 86400}, {kBaro, 990.0}, {kTwa, -40.0}});
    Set(1, {{kTwd, 21.0}}), Set(2, {{kBsp, 4.0}});
    everyone(1000);
    chosen->Hear(R"({"requestId":"q","context":"vessels.self","unsubscribe":[{"path":"navigation.speed*"}],"put":{"path":"a"}})");
    page->Hear(R"({"watch":[[1,0],[17,0],[13,0],[1,2]]})");
    Set(0, {{kHdg, 120.0}, {kBsp, 2.0}, {kTwd, 100.0}});
    everyone(2000);
    all->Hear(R"({"context":"*","unsubscribe":[{"path":"*"}]})");
    for (const char* of : {"1", "13", "17", "204", "118", "13&boat=1", "1&boat=2"})
        get(std::string("/halyrig/v1/history?channel=") + of);
    Flag(kFlagMagnetic, false), Unit(2, 0);
    everyone(9000);
    get("/halyrig/v1/history?channel=13"), get("/halyrig/v1/history?channel=6&boat=1");

    said.Tell("The clock is set back");
    clock.AdvanceMs(-3'600'000);
    Set(0, {{kHdg, 20.0}, {kBsp, 5.5}});
    everyone(0);
    get("/halyrig/v1/history?channel=13");
    said.Tell("The suite ends");
    Flag(kFlagQuitRequest, true);
    everyone(1000);
    suite.reset();
    get("/halyrig/v1/channels"), get("/signalk/v1/api");
    everyone(600);
    StartSuite({{kBsp, 3.5}});
    everyone(600);
}

}  // namespace
}  // namespace twr::testing
