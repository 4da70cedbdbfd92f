#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <string>

#include "support/linux/environment_variable.h"
#include "support/test_system.h"

namespace twr {
namespace {

// The part of a zone's rule that puts daylight time into force on the day that lies this many days from today, and ends it on
// another.
std::string Rule(int startFromToday, int endFromToday) {
    const std::time_t now = std::time(nullptr);
    std::tm today{};
    gmtime_r(&now, &today);
    const auto day = [&](int fromToday) { return ",J" + std::to_string((today.tm_yday + fromToday + 365) % 365 + 1); };
    return day(startFromToday) + day(endFromToday);
}

TEST(Zone, GivesBiasesAsMinutesToAddToLocalTime) {
    const std::string on = Rule(-60, 60);
    const std::string off = Rule(60, -60);
    const struct {
        std::string zone;
        std::int32_t bias, daylightBias;
        bool daylight;
    } rows[] = {
        {"UTC", 0, 0, false},
        {"CET-1", -60, 0, false},
        {"<-0330>3:30", 210, 0, false},
        {"EST5EDT" + on, 300, -60, true},
        {"EST5EDT" + off, 300, -60, false},
        {"<+1030>-10:30<+11>-11" + on, -630, -30, true},
        {"IST-1GMT0" + on, -60, 60, true},
        {"EST5EDT,J1/0,J365/25", 300, -60, true},
    };
    const testing::TestSystem test;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.zone);
        const testing::EnvironmentVariable zone("TZ", row.zone.c_str());
        const auto state = test.system->Core().zone.Now();
        ASSERT_TRUE(state);
        EXPECT_EQ(row.daylight, state->daylight);
        EXPECT_EQ(row.bias, state->bias);
        EXPECT_EQ(row.daylightBias, state->daylightBias);
    }
}

TEST(Zone, AgreesWithTheSystemsLocalTime) {
    if (!std::filesystem::exists("/usr/share/zoneinfo")) GTEST_SKIP() << "no zone data on this machine";
    const testing::TestSystem test;
    for (const char* name :
         {"Europe/Dublin", "Australia/Lord_Howe", "Asia/Kolkata", "America/St_Johns", "Africa/Casablanca", ":Europe/Paris"}) {
        SCOPED_TRACE(name);
        const testing::EnvironmentVariable zone("TZ", name);
        const auto state = test.system->Core().zone.Now();
        ASSERT_TRUE(state);
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        EXPECT_EQ(-local.tm_gmtoff, 60 * (state->bias + (state->daylight ? state->daylightBias : 0)));
        EXPECT_EQ(local.tm_isdst > 0, state->daylight);
    }
}

TEST(Zone, CantBeToldFromAnUnknownName) {
    const testing::TestSystem test;
    for (const char* name : {"Nowhere/Atlantis", "/dev/null", "x", "12", "<+03"}) {
        const testing::EnvironmentVariable zone("TZ", name);
        EXPECT_FALSE(test.system->Core().zone.Now()) << name;
    }
}

}  // namespace
}  // namespace twr
