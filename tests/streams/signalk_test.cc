#include "streams/signalk.h"

#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>

#include "streams/follow_fixture.h"

namespace twr::testing {
namespace {

using Json = nlohmann::json;

class SignalKTest : public FollowTest {
protected:
    // The messages of a look.
    std::vector<Json> Messages() {
        std::string out;
        deltas.Append(out, follower->Look(), *follower, *core->View());
        std::vector<Json> messages;
        std::istringstream lines(out);
        for (std::string line; std::getline(lines, line);) messages.push_back(Json::parse(line));
        return messages;
    }
    // The values of a look by path, members of objects as "path member"; those of other boats after their context.
    std::map<std::string, Json> Values() {
        std::map<std::string, Json> values;
        for (const Json& message : Messages()) {
            const std::string context = message["context"];
            const std::string prefix = context == "vessels.self" ? "" : context + " ";
            for (const Json& update : message["updates"]) {
                for (const Json& value : update.value("values", Json::array())) {
                    const std::string path = prefix + value["path"].get<std::string>();
                    if (!value["value"].is_object())
                        values[path] = value["value"];
                    else
                        for (const auto& [member, number] : value["value"].items()) values[path + " " + member] = number;
                }
            }
        }
        return values;
    }
    static std::string Listed(const std::map<std::string, Json>& values) {
        std::string list;
        for (const auto& [path, value] : values) list += path + "=" + value.dump() + "\n";
        return list;
    }

    SignalKDeltas deltas;
};

constexpr double kRadians = std::numbers::pi / 180;

// By the channel's type, as the units are defined, with nothing of the table of paths.
double InSi(ChannelId channel, double value) {
    if (channel == kRpm1 || channel == kRpm2) return value / 60;
    switch (ChannelCatalogue()[channel].type) {
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return value * 1852 / 3600;
        case kTypeBearing:
        case kTypeAngle:
        case kTypeWindAngle:
        case kTypeTurnRate:
            return value * kRadians;
        case kTypeDistance:
        case kTypeShortDistance:
            return value * 1852;
        case kTypeDuration:
            return value * 86400;
        case kTypeTemperature:
            return value + 273.15;
        case kTypePercent:
            return value / 100;
        case kTypeBarometer:
            return value * 100;
        default:
            return value;
    }
}

TEST_F(SignalKTest, EveryPathGivesItsChannelBack) {
    std::map<std::string, double> expected;
    for (const SignalKPath& path : SignalKPaths()) {
        for (const SignalKPart& part : path.parts) {
            const double value = part.channel == kGpsTime ? 46351.5 : 1.0 + part.channel / 128.0;
            Publish(part.channel, value);
            const std::string name = std::string(path.path) + (*part.member ? " " : "") + part.member;
            ASSERT_FALSE(expected.contains(name)) << name;
            const bool bearing = ChannelCatalogue()[part.channel].type == kTypeBearing;
            EXPECT_EQ(bearing && !name.ends_with("Magnetic"), part.trueBearing) << name;
            EXPECT_TRUE(!bearing || !part.trueBearing || name.ends_with("True")) << name;
            expected[name] = InSi(part.channel, part.trueBearing ? value + 1.0 + 93 / 128.0 : value);
        }
    }
    const auto values = Values();
    EXPECT_EQ(expected.size(), values.size()) << Listed(values);
    for (const auto& [name, value] : values) {
        if (name == "navigation.datetime") {
            EXPECT_EQ("2026-11-25T12:00:00Z", value);
        } else {
            EXPECT_NEAR(expected[name], value.get<double>(), 1e-9) << name;
        }
    }
}

TEST_F(SignalKTest, HasTrueDirectionsOnlyWithTheVariation) {
    const auto directions = [&] {
        Publish(kHdg, 355.0), Publish(kTwd, 10.0), Publish(kCog, 0.0), Publish(kSet, 90.0);
        return Listed(Values());
    };
    const auto isTrue = [](const std::string& list) { return list.find("True") != std::string::npos; };
    EXPECT_FALSE(isTrue(directions()));
    Pass(1);
    Publish(kMagVar, 15.0);
    auto list = Values();
    EXPECT_NEAR(10.0 * kRadians, list["navigation.headingTrue"].get<double>(), 1e-9);
    EXPECT_NEAR(25.0 * kRadians, list["environment.wind.directionTrue"].get<double>(), 1e-9);
    EXPECT_FALSE(list.contains("navigation.headingMagnetic")) << "it is as before";
    Pass(5);
    directions();
    Pass(5.1);
    list = Values();
    EXPECT_TRUE(list.at("navigation.headingTrue").is_null()) << "it is stale: " << Listed(list);
    EXPECT_FALSE(isTrue(directions()));
}

TEST_F(SignalKTest, NoValueIsNullOnceAndNeverANumber) {
    Publish(kBsp, 0.0), Publish(kHeel, 10.0), Publish(kTrim, 1.0), Publish(kLat, 50.0), Publish(kTws, kNoValue);
    EXPECT_EQ(
        "navigation.attitude pitch=0.017453292519943295\nnavigation.attitude roll=0.17453292519943295\n"
        "navigation.speedThroughWater=0\n",
        Listed(Values()))
        << "half a position is none";
    Publish(kLon, -7.0), Publish(kHeel, kNoValue), Publish(kBsp, kNoValue);
    EXPECT_EQ(
        "navigation.attitude pitch=0.017453292519943295\nnavigation.position latitude=50\n"
        "navigation.position longitude=-7\nnavigation.speedThroughWater=null\n",
        Listed(Values()));
    Publish(kTrim, kNoValue), Publish(kLat, kNoValue), Publish(kBsp, kNoValue);
    EXPECT_EQ("navigation.attitude=null\nnavigation.position=null\n", Listed(Values()));
    Publish(kLon, -7.0);
    EXPECT_EQ("", Listed(Values()));
}

TEST_F(SignalKTest, NamesBoatsByTheirMmsi) {
    for (const BoatSlot boat : {0u, 1u, 2u, 3u}) Publish(kHdg, 90.0, boat);
    record.Set<std::uint32_t>(RecordBytes::Boat(1) + 72, 11234560);
    record.Set<std::uint32_t>(RecordBytes::Boat(3) + 72, 1000000000);
    Publish(kMagVar, 3.0);
    const auto values = Values();
    EXPECT_TRUE(values.contains("vessels.urn:mrn:imo:mmsi:011234560 navigation.headingTrue")) << "by the own boat's variation";
    EXPECT_EQ(5u, values.size()) << "of boats without one nothing: " << Listed(values);
}

TEST_F(SignalKTest, TellsUnitsOnceAndValuesUnderTheirOwnTime) {
    const double now = Now();
    Publish(kBsp, 3.6), Publish(kGpsNum, 9.0), Publish(kLat, 50.0), Publish(kLon, 7.0);
    Publish(kTws, 10.0, 0, now - 1.5 / 86400);
    const Json first = Messages().at(0)["updates"];
    ASSERT_EQ(3u, first.size()) << first;
    ASSERT_EQ(2u, first[0]["meta"].size()) << "neither for an object nor for a plain number";
    EXPECT_EQ("m/s", first[0]["meta"][0]["value"]["units"]);
    EXPECT_EQ("2026-11-19T00:00:00Z", first[1]["timestamp"]);
    EXPECT_EQ(3u, first[1]["values"].size());
    EXPECT_EQ("2026-11-18T23:59:58.5Z", first[2]["timestamp"]);
    EXPECT_EQ("environment.wind.speedTrue", first[2]["values"][0]["path"]);
    Pass(0.1);
    Publish(kDepth, 12.5);
    Messages();
    Publish(kDepth, 13.5);
    EXPECT_EQ(R"({"context":"vessels.self","updates":[{"$source":"halyrig","timestamp":"2026-11-19T00:00:00.1Z",)"
              R"("values":[{"path":"environment.depth.belowTransducer","value":13.5}]}]})",
              Messages().at(0).dump());
}

TEST_F(SignalKTest, LeavesOutWhatIsNotChosen) {
    Follow({.channels = {kHdg, kLat}});
    Publish(kMagVar, 3.0), Publish(kHdg, 90.0), Publish(kLat, 50.0), Publish(kLon, 7.0), Publish(kBsp, 5.0);
    const auto values = Values();
    EXPECT_EQ(2u, values.size()) << Listed(values);
    EXPECT_TRUE(values.contains("navigation.headingTrue"));
}

}  // namespace
}  // namespace twr::testing
