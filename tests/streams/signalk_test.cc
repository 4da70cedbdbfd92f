// SPDX-License-Identifier: MIT
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>

#include "streams/follow_fixture.h"
#include "streams/stream_format.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

using Json = nlohmann::json;

struct SignalKTest : FollowTest {
    // The messages of a look.
    std::vector<Json> Messages() {
        std::string out;
        deltas->Append(out, follower->Look(), *follower);
        std::vector<Json> messages;
        for (const std::string& line : LinesOf(out)) messages.push_back(Json::parse(line));
        return messages;
    }
    // The values of a look by path and member; those of other boats after their context.
    std::map<std::string, Json> Values() {
        std::map<std::string, Json> values;
        for (const Json& message : Messages()) {
            const std::string context = message["context"];
            for (const Json& update : message["updates"]) {
                for (const Json& value : update.value("values", Json::array())) {
                    const std::string path = (context == "vessels.self" ? "" : context + " ") + value["path"].get<std::string>();
                    const Json members = value["value"].flatten();
                    for (const auto& [member, number] : members.items()) values[path + member] = number;
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

    const std::unique_ptr<StreamFormat> deltas = StreamFormatOf("signalk").make();
};

constexpr double kRadians = std::numbers::pi / 180;

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
        "navigation.attitude/pitch=0.017453292519943295\nnavigation.attitude/roll=0.17453292519943295\n"
        "navigation.speedThroughWater=0\n",
        Listed(Values()))
        << "half a position is none";
    Publish(kLon, -7.0), Publish(kHeel, kNoValue), Publish(kBsp, kNoValue);
    EXPECT_EQ(
        "navigation.attitude/pitch=0.017453292519943295\nnavigation.position/latitude=50\n"
        "navigation.position/longitude=-7\nnavigation.speedThroughWater=null\n",
        Listed(Values()));
    Publish(kTrim, kNoValue), Publish(kLat, kNoValue), Publish(kBsp, kNoValue);
    EXPECT_EQ("navigation.attitude=null\nnavigation.position=null\n", Listed(Values()));
    Publish(kLon, -7.0);
    record.SetEntry(0, kMkRng, 1e308, Now(), 0.0);
    record.SetEntry(0, kGpsTime, 3e6, Now(), 0.0);
    EXPECT_EQ("", Listed(Values())) << "nor what is too great in metres, nor a moment that is none";
}

TEST_F(SignalKTest, NamesBoatsByTheirMmsi) {
    for (const auto& [boat, mmsi] : {std::pair(0u, 0u), {1u, 11234560u}, {2u, 0u}, {3u, 1000000000u}}) {
        Publish(kBsp, 0.0, boat);
        record.Set<std::uint32_t>(RecordBytes::Boat(boat) + 72, mmsi);
    }
    EXPECT_EQ("navigation.speedThroughWater=0\nvessels.urn:mrn:imo:mmsi:011234560 navigation.speedThroughWater=0\n",
              Listed(Values()));
}

}  // namespace
}  // namespace twr::testing
