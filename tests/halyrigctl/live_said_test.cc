// SPDX-License-Identifier: MIT
// Every word of what is streamed and served of a live record.
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "core/record_access.h"
#include "halyrigctl/serve/page_talk.h"
#include "halyrigctl/serve/site.h"
#include "halyrigctl/transcript.h"

namespace twr::testing {
namespace {

// Channels of each kind.
const std::set<int> kChannelsShown{1, 2, 6, 13, 17, 48, 49, 93, 117, 118, 146, 172, 173, 174, 175, 176, 177, 178, 204};

struct LiveTest : SceneTest {
    LiveTest() {
        zone.state = ZoneState{-330, -330, false};
        WriteSettings(Core().registry, Settings{.dfwFolder = test.folder.File("Deckman")});
        console.goOn = [this] { return Step(); };
    }
    // Of each channel that a format knows, all different.
    void SetAll(BoatSlot boat) {
        for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel) {
            if (EntryOf(*suite->View(), channel, boat)) suite->SetChannel(channel, boat, channel / 8.0 + boat, clock.Days());
        }
        Publish(boat == 0 ? "GpsMethod=1, Lon=-170.25, MagVar=9.5, MkRng=9.25, HDG=355"
                          : "GpsMethod@1=2, Lon@1=179.75, MagVar@1=-3.25, MkRng@1=10.25, HDG@1=354",
                0);
        suite->SetChannel(kGpsTime, boat, clock.Days() - (boat == 0 ? 0.504 : 0.0) / kSecondsPerDay, clock.Days());
        suite->SetChannel(kTmToGun, boat, -61.5 / kSecondsPerDay, clock.Days());
    }
};

TEST_F(LiveTest, EachWordOfAStream) {
    Transcript said("stream", *this);
    clock.AdvanceMs(86'399'998);  // to the end of a day
    happenings["of two boats all is known"] = [&] { SetAll(0), SetAll(1); };
    said.Play("As a day ends");
}

TEST_F(LiveTest, EachWordOfTheServer) {
    Transcript said("serve", *this);
    Lookout lookout(*this);
    Site site(*this, lookout, "");
    std::map<std::string, std::unique_ptr<WebTalk>> clients;
    std::string self;
    const auto plain = [&](std::string text) {
        for (std::size_t at = 0; !self.empty() && (at = text.find(self, at)) != text.npos;) text.replace(at, self.size(), "OWN");
        return text;
    };
    // "$ GET TARGET"; of hundreds of channels some.
    said.ways['$'] = [&](const std::string& get, const std::string&) {
        const WebAnswer answer = site.Answer({.method = "GET", .target = get.substr(4), .host = "10.0.0.2:8377"});
        std::string text = std::to_string(answer.status) + " " + std::string(answer.type) + "\n";
        nlohmann::ordered_json all = nlohmann::ordered_json::parse(answer.body);
        if (!all.is_object() || !all.contains("channels")) return text + plain(answer.body);
        std::string some;
        for (const auto& row : all["channels"])
            if (kChannelsShown.contains(row["id"])) some += row.dump() + "\n";
        all.erase("channels");
        return text + all.dump() + "\n" + some;
    };
    // "+ MILLISECONDS" later: what each client is told.
    said.ways['+'] = [&](const std::string& ms, const std::string&) {
        clock.AdvanceMs(std::stoi(ms));
        if (suite) suite->StampTime();
        lookout.Look(), site.Take();
        std::string all;
        for (const auto& [name, client] : clients) {
            std::vector<WebMessage> messages;
            client->Say(messages);
            for (const WebMessage& message : messages) all += "  to " + name + ": " + plain(*message) + "\n";
        }
        return all;
    };
    // "& CLIENT" comes, as "GET TARGET", or says something.
    said.ways['&'] = [&](const std::string& words, const std::string&) {
        const std::string name = words.substr(0, words.find(' ')), what = words.substr(name.size() + 1);
        if (what.starts_with("GET ")) {
            clients[name] = site.Talk({.method = "GET", .target = what.substr(4)});
        } else {
            clients.at(name)->Hear(what);
        }
        return "";
    };
    std::optional<RunningBridge> bridge;
    happenings["the bridge starts"] = [&] { bridge.emplace(test), bridge->clock.ticks = clock.ticks, bridge->Ticked(); };
    happenings["the bridge calls Deckman's library"] = [&] { bridge->PassBegins(clock.Days()); };
    std::unique_ptr<System> replay;
    happenings["a replay begins"] = [&] { replay = SystemOf(test.Arguments()), replay->GetInstance().Claim(kReplayName); };
    happenings["a replay ends"] = [&] { replay.reset(); };
    happenings["bearings are shown true, and speeds in knots"] = [&] { Record().SetFlag(3, false), Record().SetInt(2, 0); };
    happenings["the clock is set back"] = [&] { clock.AdvanceMs(-3'600'000); };
    said.Play("Two boats are sailing, and a server starts");
    self = nlohmann::json::parse(site.Answer({.method = "GET", .target = "/signalk/v1/api/self", .host = "a"}).body);
    self = self.substr(self.find('.') + 1);
    const auto named = Site(*this, lookout, "Spirit").Answer({.method = "GET", .target = "/halyrig/v1/channels", .host = "a"});
    EXPECT_TRUE(named.body.starts_with(R"({"name":"Spirit",)")) << "in place of the boat's";
    said.Play("A page watches, and programs of Signal K listen");
    Happens("HDG=33");
    said.ways['+']("1000", "");
    Happens("HDG=null");
    for (int second = 0; second < 600; ++second) said.ways['+']("1000", "");
    const std::string past = said.ways['$']("GET /halyrig/v1/history?channel=13", "");
    EXPECT_NE(past.npos, past.find(R"("points":[])")) << "nothing is left of what is gone for ten minutes\n" << past;
}

}  // namespace
}  // namespace twr::testing
