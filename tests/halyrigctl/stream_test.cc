// SPDX-License-Identifier: MIT
#include <functional>
#include <map>

#include "halyrigctl/ctl_fixture.h"

namespace twr::testing {
namespace {

class StreamTest : public CtlTest {
protected:
    // Goes on until so many milliseconds have passed, with one step at the given ones.
    void Steps(int end, std::map<int, std::function<void()>> steps) {
        console.waited = 0;
        console.goOn = [this, end, steps = std::move(steps)]() mutable {
            if (const auto step = steps.find(console.waited); step != steps.end()) step->second(), steps.erase(step);
            return console.waited < end;
        };
    }
    void AskToClose() { Record().SetFlag(35, true); }
    std::size_t Count(const std::string& part) {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = console.written.find(part, at)) != std::string::npos; ++at) ++count;
        return count;
    }
};

TEST_F(StreamTest, WritesEachFormatAsItIsPublished) {
    StartSuite();
    Publish(kBsp, 6.5);
    Publish(kMagVar, 3.0);
    Publish(kAws, 3.0, 20.0);
    const auto publish = [&] { Publish(kHdg, 90.0); };
    const std::pair<const char*, std::vector<const char*>> rows[] = {
        {"stream", {R"("id":1,"name":"BSP","boat":0,"value":6.5,"unit":"kn","text":"6.50"})", "\n{", R"("name":"HDG")"}},
        {"stream --channels hdg --boat 0", {R"("id":13)"}},
        {"stream --all --channels 13,1", {R"("id":13)", R"("id":1,)"}},
        {"stream --format signalk --channels BSP,HDG", {R"("context":"vessels.self")", "headingMagnetic", "headingTrue"}},
        {"stream --format nmea", {"$IIVHW,", "$IIHDT,93.0,T*"}}};
    for (const auto& [typed, said] : rows) {
        SCOPED_TRACE(typed);
        Publish(kHdg, kNoValue);
        Steps(2500, {{1200, publish}});
        ExpectIn(Said(typed), said);
        EXPECT_EQ(0u, Count("AWS"));
    }
    console.goOn = [] { return true; };
    console.waited = 0;
    Said("stream --seconds 3 --rate 0.5");
    EXPECT_EQ(3000, console.waited);
    EXPECT_EQ(0u, Count("halyrigctl:"));
}

TEST_F(StreamTest, OutlivesTheRecord) {
    const auto end = [&] {
        suite.reset();
        EXPECT_FALSE(Held()) << "the request would stay with it";
    };
    const auto start = [&] { StartSuite(), Publish(kBsp, 7.0), Publish(kMkLat, 50.0); };
    const auto silence = [&] {
        for (const std::size_t boat : {0u, 1u})
            Record().Set(RecordBytes::Time(boat, kTime), UtcNowDays(Core().clock) - 11.0 / 86400);
    };
    Steps(12000, {{1000, start}, {3000, [&] { AskToClose(); }}, {3300, end}, {5000, start}, {8000, silence}, {8300, end}});
    const std::string said = Said("stream");
    ExpectIn(said, {"there is no record yet", "Start " HALYRIG_PROGRAM, "halyrigctl: the record is there.\n{",
                    "asked to close; waiting for the next record.\n{", "has published anything for 10 s"});
    EXPECT_EQ(2u, Count("the record is there"));
    EXPECT_EQ(4u, Count(R"("text":null})")) << "the end of both values of each record";
    EXPECT_EQ(2u, Count(R"("value":7,)"));
    EXPECT_TRUE(said.ends_with("}\n"));
}

TEST_F(StreamTest, LeavesARecordThatClosesWhileNobodyTakesTheOutput) {
    StartSuite();
    Publish(kBsp, 7.0);
    console.held = true;
    console.goOn = [&, asked = 0]() mutable {
        if (++asked == 3) AskToClose();
        if (asked == 5) {
            suite.reset();
            EXPECT_FALSE(Held());
        }
        return asked < 7;
    };
    ExpectIn(Said("stream"), {"asked to close"});
}

TEST_F(StreamTest, SaysWhatItDoesNotUnderstandAndThatItsOutputIsLost) {
    StartSuite();
    Publish(kBsp, 7.0);
    console.goOn = [&] { return console.waited < 60000; };
    ExpectSaid(2, {{"stream --channels BSP,speed", {"there is no channel speed;"}},
                   {"stream --channels BSP,time", {"Time"}},
                   {"stream --format xml", {"xml not in {json,signalk,nmea}"}},
                   {"stream --rate 11", {"not in range 0.1"}},
                   {"stream --boat 100", {"not in range 0 to 99"}}});
    console.closed = true;
    ExpectIn(Said("stream", 1), {"standard output can't be written"});
    EXPECT_EQ(0, console.waited);
}

}  // namespace
}  // namespace twr::testing
