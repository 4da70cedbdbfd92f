#include <gtest/gtest.h>

#include "platform/wide_text.h"
#include "support/fakes.h"
#include "support/record_writer.h"

namespace twr {
namespace {

constexpr double kNoon = 46345.5;

TEST(TimeText, StandsInTheZoneThatTheUserChose) {
    using State = std::optional<ZoneState>;
    const struct {
        bool local;
        State zone;
        double display;
        const char* text;
    } rows[] = {
        {false, State({-60, 0, false}), kNoon, "19-Nov-2026 12:00:00"},
        {true, State({0, 0, false}), kNoon, "19-Nov-2026 12:00:00"},
        {true, State({-60, -60, false}), kNoon + 1.0 / 24, "19-Nov-2026 13:00:00"},
        {true, State({0, -60, true}), kNoon + 1.0 / 24, "19-Nov-2026 13:00:00"},
        {true, State({300, -60, true}), kNoon - 4.0 / 24, "19-Nov-2026 08:00:00"},
        {true, State({-780, 0, false}), kNoon + 13.0 / 24, "20-Nov-2026 01:00:00"},
        {true, std::nullopt, kNoon, ""},
        {false, std::nullopt, kNoon, "19-Nov-2026 12:00:00"},
    };
    testing::FakeMachine machine;
    CCore core(machine.Services());
    testing::RecordWriter record(core);
    for (const auto& row : rows) {
        record.SetFlag(1, row.local);
        machine.zone.state = row.zone;
        EXPECT_DOUBLE_EQ(row.display, core.ToDisplayTime(kNoon)) << row.text;
        EXPECT_EQ(row.text, ToUtf8(core.TimeText(kNoon)));
    }
    EXPECT_EQ("Invalid DateTime", ToUtf8(core.TimeText(1e9)));
}

TEST(TimeText, WithoutARecordIsUtc) {
    testing::FakeMachine machine;
    machine.memory.failCreate = true;
    machine.zone.state = ZoneState{-60, 0, false};
    CCore core(machine.Services());
    EXPECT_EQ(kNoon, core.ToDisplayTime(kNoon));
    EXPECT_EQ("19-Nov-2026 12:00:00", ToUtf8(core.TimeText(kNoon)));
}

}  // namespace
}  // namespace twr
