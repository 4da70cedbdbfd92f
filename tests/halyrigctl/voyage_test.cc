// SPDX-License-Identifier: MIT
// A day of sailing in seconds: the stand-in's races at a hundred times their speed through the real bridge, while the world goes
// wrong in its ways. What each voice says is compared with what the simulation knows to be true.
#include <bitset>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <random>

#include "base/numbers.h"
#include "bridge/bridge_fixture.h"
#include "config/saved_settings.h"
#include "halyrigctl/ctl_fixture.h"
#include "halyrigctl/serve/site.h"
#include "stand_in/sailing_simulation.h"
#include "streams/iso_time.h"

namespace twr::testing {
namespace {

using Json = nlohmann::json;

constexpr unsigned kSeed = 20261119;
constexpr int kLegMs = 288'000, kSpeed = 100;          // three legs are a day
constexpr std::int64_t kHourOfTicks = 36'000'000'000;  // in ticks of the clock
constexpr BoatSlot kBoats = 5;                         // of which 2 and more may come
constexpr const char* kFolders[] = {"Deckman", "Second", "nowhere"};
constexpr int kFarther = 100;  // are the numbers of the variables in the second

// What is sailed by, and where it is told: "MWVR" is the sentence MWV with reference R.
struct Sensor {
    ChannelId channel;
    Quantity quantity;
    double factor, signalKUnit;  // from what Deckman gives to the channel's unit; in the channel's
    const char *name, *path, *sentence;
    std::size_t field;
};
constexpr double kKnot = 1852.0 / 3600, kDegree = 3.14159265358979 / 180, kFoot = 1 / 3.2808;
constexpr Sensor kSensors[] = {{kBsp, Quantity::kBsp, 1, kKnot, "BSP", "/navigation/speedThroughWater/value", "VHW", 5},
                               {kHdg, Quantity::kHdg, 1, kDegree, "HDG", "/navigation/headingMagnetic/value", "VHW", 3},
                               {kAwa, Quantity::kAwa, 1, kDegree, "AWA", "/environment/wind/angleApparent/value", "MWVR", 1},
                               {kTws, Quantity::kTws, 1, kKnot, "TWS", "/environment/wind/speedTrue/value", "MWVT", 3},
                               {kTwd, Quantity::kTwd, 1, kDegree, "TWD", "/environment/wind/directionMagnetic/value", "MWD", 3},
                               {kHeel, Quantity::kHeel, -1, kDegree, "Heel", "/navigation/attitude/value/roll", "XDR", 2},
                               {kDepth, Quantity::kDepth, kFoot, 1, "Depth", "/environment/depth/belowTransducer/value", "DPT", 1}};
constexpr const char* kNames = "BSP HDG AWA TWS TWD Heel Depth";
constexpr const char* kSailedBy =
    "<remote remote='1' twr='1'/><remote remote='2' twr='51' boat='2'/><var twr='1' dfw='BSP'/><var twr='13' dfw='HDG'/>"
    "<var twr='2' dfw='AWA'/><var twr='5' dfw='TWS'/><var twr='6' dfw='TWD'/><var twr='18' dfw='Heel'/><var twr='17' dfw='Depth'/>";
constexpr const char* kWatched = R"({"watch":[[1,0],[13,0],[2,0],[5,0],[6,0],[18,0],[17,0]]})";

using Values = std::map<ChannelId, double>;  // kNoValue, or not there, without one

double ValueIn(const Values& values, ChannelId channel) { return values.contains(channel) ? values.at(channel) : kNoValue; }
double NumberIn(const Json& json) { return json.is_number() ? json.get<double>() : kNoValue; }

// Angles are the same by another turn.
bool Same(double one, double other, double within = 0.01) {
    if (one == kNoValue || other == kNoValue) return one == other;
    return std::fabs(std::remainder(one - other, 360.0)) < within;
}

std::vector<std::string> Parts(const std::string& text, char between) {
    std::vector<std::string> parts;
    std::istringstream all(text);
    for (std::string part; std::getline(all, part, between);) parts.push_back(part.substr(0, part.find_first_of("*\r")));
    return parts;
}

class VoyageTest : public BridgeTest {
protected:
    // What goes wrong in the world.
    const std::vector<std::pair<const char*, std::function<void()>>> faults = {
        {"Deckman's library goes, or is back", [this] { aboard = !aboard, Choose(); }},
        {"another folder is chosen", [this] { second = !second, Choose(); }},
        {"a value is lost, or is back", [this] { lost = lost ? nullptr : &kSensors[random() % std::size(kSensors)]; }},
        {"a boat comes, or goes", [this] { boats.flip(2 + random() % (kBoats - 2)); }},
        {"the clock is set on", [this] { machine.clock.AdvanceMs(60'000); }},
        {"the wind shifts", [this] { windShift = static_cast<float>(random() % 40); }}};

    // Who says what is sailed when asked, and who by itself, each for a leg, how precisely. A recording is looked at afterwards.
    const std::vector<std::pair<const char*, std::function<Values()>>> asked = {
        {"get", [this] { return InLines(Answered(std::string("get --json ") + kNames)); }},
        {"the page", [this] { return OnPage(); }},
        {"Signal K", [this] { return InSignalK(); }}};
    static constexpr std::pair<const char*, double> kListened[] = {{"stream --boat 0", 0.01},
                                                                   {"stream --boat 0 --format nmea --rate 10", 0.06}};

    VoyageTest() {
        machine.console = &console;
        console.goOn = [this] { return GoOn(); };
        host.beforeTick = [] {};
        MappingXml(kSailedBy);
        for (const int folder : {0, 1}) {
            std::string list;
            for (int i = kFarther * folder; const Sensor& sensor : kSensors) list += std::to_string(++i) + " " + sensor.name + "\n";
            Variables(list, kFolders[folder]);
            deckman.Install(test.folder.File(kFolders[folder]));
            test.folder.Write(kFolders[folder] + ("/ShDfW2" + ToUtf8(kLibrarySuffix)), BytesOf(STAND_IN_LIBRARY));
        }
        stored->depthInFeet = true;
        Stored().Write(kSavedSettingsKey, u"Sys_b3", DwordValue(1));  // bearings are shown magnetic
        machine.clock.ticks =
            (test.system->Core().clock.Ticks() / kHourOfTicks + 2) * kHourOfTicks;  // after all files were written
    }

    // The world.
    std::int64_t Now() const { return ToMillisecond(machine.clock.Days()); }
    void Choose() {
        deckman.sent.clear();
        host.PickFolder(test.folder.File(kFolders[aboard ? second : 2]));
    }
    void Sail(int ms) {
        simulation.Advance(ms * kSpeed / 1000.0);
        if (random() % 60 == 0) {
            const auto& [name, happens] = faults[random() % faults.size()];
            happens(), ++happened[name];
        }
        for (int i = kFarther * second; const Sensor& sensor : kSensors) {
            float given = simulation.Now()[sensor.quantity];
            if (sensor.channel == kTwd) given = std::fmod(given + windShift, 360.0f);
            if (lost == &sensor) given = kAbsent;
            deckman.variables[++i] = given;
            if (aboard) last[sensor.channel] = given == kAbsent ? kNoValue : given * sensor.factor;
        }
        if (aboard) published[lastAt = Now()] = last;
        for (BoatSlot boat = 2; boat < kBoats; ++boat) {
            if (boats[boat]) other->SetChannel(kSog, boat, 5.0 + boat, 0.0), boatAt[boat] = Now();
        }
        other->StampTime();
        host.Tick();
        lookout->Look(), site->Take();
    }

    // What the voices say.
    std::string Answered(const std::string& command, bool atOnce = true) {
        const std::string kept = std::exchange(console.written, {});
        std::istringstream words(command);
        asks = atOnce;
        RunCommandLine(machine, {std::istream_iterator<std::string>(words), {}});
        asks = false;
        return std::exchange(console.written, kept);
    }
    static void Take(const Json& one, Values& said) { said[one["id"].get<ChannelId>()] = NumberIn(one["value"]); }
    static void TakeSentence(const std::vector<std::string>& fields, Values& said) {
        const std::string sentence = fields[0].substr(3) + (fields[0].ends_with("MWV") ? fields[2] : "");
        for (const Sensor& sensor : kSensors) {
            if (sentence == sensor.sentence && !fields.at(sensor.field).empty())
                said[sensor.channel] = std::stod(fields[sensor.field]);
        }
    }
    static Values InLines(const std::string& lines, Values said = {}) {
        for (const std::string& line : Parts(lines, '\n'))
            line[0] == '$' ? TakeSentence(Parts(line, ','), said) : Take(Json::parse(line), said);
        return said;
    }
    Values OnPage() {
        std::vector<WebMessage> messages;
        talk->Say(messages);
        for (const WebMessage& message : messages) {
            const Json said = Json::parse(*message);
            for (const Json& tile : said["values"]) Take(tile, page);
        }
        return page;
    }
    Values InSignalK() {
        const WebRequest request{.method = "GET", .target = "/signalk/v1/api/vessels/self", .host = "10.0.0.2:8377"};
        const Json self = Json::parse(site->Answer(request).body);
        Values said;
        for (const Sensor& sensor : kSensors) {
            const double value = NumberIn(self.value(Json::json_pointer(sensor.path), Json()));
            said[sensor.channel] = value == kNoValue ? value : value / sensor.signalKUnit;
        }
        return said;
    }

    // Runs a command for a leg, and listens to it unless that is in vain.
    void Leg(const std::string& command, double within = 0.0) {
        left = kLegMs, speaks = command, precision = within, heard = {};
        console.forgets = false;
        const std::string said = Answered(command, false);
        EXPECT_GE(0, left) << said;
    }
    bool GoOn() {
        const int passed = std::exchange(console.waited, 0);
        if (asks || passed == 0) return true;
        machine.clock.AdvanceMs(passed);
        SCOPED_TRACE(::testing::Message() << speaks << ", " << left << " ms before the end of the leg");
        if (precision > 0.01) heard.clear();  // sentences tell all each time
        heard = InLines(std::exchange(console.written, {}), heard);
        if (precision > 0.0) ExpectKnown(speaks, heard, precision);
        if (++ticks % 150 == 0) AskAll();  // the page is told the same text once a second
        if (HasFailure() || (left -= passed) <= 0) return false;
        Sail(passed);
        return true;
    }
    void AskAll() {
        for (const auto& [voice, says] : asked) ExpectKnown(voice, says());
        for (const std::string& line : Parts(Answered(std::string("explain --json ") + kNames), '\n')) {
            const Json said = Json::parse(line);
            const bool isLost = last[said["id"].get<ChannelId>()] == kNoValue;
            EXPECT_EQ(!aboard ? Json("library") : isLost ? Json("Deckman") : Json(), said["link"]) << said;
        }
        EXPECT_EQ(aboard ? 0 : std::string::npos, Answered("check").find("All is well")) << Answered("check");
        for (BoatSlot boat = 2; boat < kBoats; ++boat) {
            const double said = NumberIn(Json::parse(Answered("get --json SOG --boat " + std::to_string(boat)))["value"]);
            const auto fresh = IsFresh(boatAt[boat]);
            if (!fresh) continue;
            EXPECT_EQ(*fresh ? 5.0 + boat : kNoValue, said) << "boat " << boat;
            if (aboard && boat == 2) ExpectRemote("2=", said);
        }
        if (aboard) ExpectRemote("1=", last[kBsp]);
    }

    // What was published then is fresh for ten seconds; what repeats itself was published up to a second before. nullopt: just
    // between them.
    std::optional<bool> IsFresh(std::int64_t at) const {
        const std::int64_t age = Now() - at;
        return age > 8500 && age < 10'500 ? std::nullopt : std::optional(age < 10'000);
    }
    void ExpectKnown(const std::string& voice, const Values& said, double within = 0.01) {
        if (const auto fresh = IsFresh(lastAt)) Expect(*fresh ? last : Values(), voice, said, within);
    }
    void Expect(const Values& known, const std::string& voice, const Values& said, double within = 0.01) {
        for (const Sensor& sensor : kSensors) {
            const double value = ValueIn(known, sensor.channel), told = ValueIn(said, sensor.channel);
            EXPECT_TRUE(Same(value, told, within)) << voice << " says " << told << " of " << sensor.name << ", which is " << value;
            ++(value == kNoValue ? nones : values)[voice];
        }
    }
    // Since its library was chosen. A remote that had no value then is told nothing.
    void ExpectRemote(const char* remote, double known) {
        std::string shown = "-0";
        for (const std::string& text : deckman.sent) shown = text.starts_with(remote) ? text.substr(2) : shown;
        EXPECT_EQ(known == kNoValue ? "-0" : Printed("%.2f", known).substr(0, 4), shown) << remote;
    }

    // The recording holds what was published.
    void ExpectExported(const std::string& recording) {
        std::map<std::int64_t, Values> rows;
        for (const std::string& line :
             Parts(Answered("export --format jsonl --every 50ms " + recording + " --channels " + kNames), '\n')) {
            const Json row = Json::parse(line);
            Values& at = rows[ToMillisecond(ParseIsoTime(row["time"].get<std::string>()).value())];
            for (const Sensor& sensor : kSensors) at[sensor.channel] = NumberIn(row[sensor.name]);
        }
        for (const auto& [at, row] : rows) {
            const auto after = published.upper_bound(at);
            EXPECT_TRUE(after != published.begin() && at - std::prev(after)->first < 10'500) << at;
        }
        for (const auto& [at, known] : published) Expect(known, "the export", rows[at]);
    }
    // In its order, up to its end.
    void ExpectReplayed(const std::string& recording) {
        auto at = published.begin();
        int count = 0;
        other->SetChannel(kBsp, 0, kNoValue, 0.0);
        console.goOn = [&] {
            machine.clock.AdvanceMs(std::exchange(console.waited, 0));
            const double speed = Own(kBsp);
            if (speed == kNoValue) return true;
            at = std::find_if(at, published.end(), [&](const auto& moment) { return Same(moment.second.at(kBsp), speed, 1e-6); });
            return ++count, at != published.end();
        };
        Answered("replay " + recording + " --speed 20");
        EXPECT_NE(published.end(), at) << "nothing that was not measured";
        EXPECT_LT(kLegMs / 10'000, count);
        EXPECT_TRUE(Own(kBsp) == kNoValue || Own(kBsp) == published.rbegin()->second[kBsp]);
    }

    FakeConsole console;
    bool asks = false;
    std::mt19937 random{kSeed};
    SailingSimulation simulation{kSeed, 300};
    bool aboard = true, second = false;  // Deckman's library; in the second folder
    float windShift = 0;
    const Sensor* lost = nullptr;
    std::bitset<kBoats> boats{1 << 2};
    std::array<std::int64_t, kBoats> boatAt{};  // published; milliseconds
    Values last;                                // published of the own boat
    std::int64_t lastAt = 0;                    // milliseconds
    std::map<std::int64_t, Values> published;

    std::string speaks;
    double precision = 0.0;   // of what it says
    int left = 0, ticks = 0;  // milliseconds of the leg; of all
    Values heard, page;
    std::map<std::string, int> happened, values, nones;  // said by a voice
    std::optional<Lookout> lookout;
    std::optional<Site> site;
    std::unique_ptr<WebTalk> talk;
};

TEST_F(VoyageTest, EachVoiceSaysWhatIsTrue) {
    SCOPED_TRACE(::testing::Message() << "seed " << kSeed);
    const std::string recording = ToUtf8(test.folder.File("log.jsonl"));
    std::map<std::int64_t, Values> recorded;
    Run([&] {
        lookout.emplace(machine), site.emplace(machine, *lookout, "");
        talk = site->Talk({.method = "GET", .target = "/halyrig/v1/stream"});
        talk->Hear(kWatched);
        Sail(0);
        Leg("record " + recording + " --boat 0");
        recorded = published;
        for (const auto& [command, within] : kListened) Leg(command, within);
    });
    if (HasFailure()) return;
    published = recorded;
    ExpectExported(recording);
    ExpectReplayed(recording);
    for (const auto& [name, happens] : faults) EXPECT_LT(5, happened[name]) << name;
    EXPECT_EQ(std::size(asked) + std::size(kListened) + 1, values.size());
    for (const auto& [voice, times] : values) EXPECT_TRUE(times > 100 && nones[voice] > 30) << voice;
}

}  // namespace
}  // namespace twr::testing
