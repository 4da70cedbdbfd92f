#include "platform/paths.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

class SystemLogTest : public CoreTest {
protected:
    std::string Line(const std::string& text) { return text + std::string(kLineEnd); }
    std::u16string Path(std::u16string_view file) { return JoinPath(core->GetDataFolder(u"log_system"), file); }
};

TEST_F(SystemLogTest, ShowsTheMessageAndThenLogsIt) {
    std::size_t filesAtTheBox = 99;
    machine.desktop.answer = [&](const auto&) {
        machine.clock.AdvanceMs(1000);  // the user takes a second
        filesAtTheBox = machine.files.files.size();
        return BoxAnswer::kOk;
    };
    core->WriteSystemLog(u"One");
    EXPECT_EQ(0u, filesAtTheBox);
    core->WriteSystemLog(u"");
    ASSERT_EQ(2u, machine.desktop.boxes.size());
    EXPECT_EQ(u"One", machine.desktop.boxes[0].text);
    EXPECT_EQ(u"Halyrig32", machine.desktop.boxes[0].caption);
    EXPECT_EQ(BoxButtons::kOk, machine.desktop.boxes[0].buttons);
    EXPECT_EQ(BoxIcon::kStop, machine.desktop.boxes[0].icon);
    ASSERT_EQ(1u, machine.files.files.size());
    EXPECT_EQ(Path(u"log_system_19Nov2026.log"), machine.files.files[0].path);
    EXPECT_EQ(Line("00:00:01 : One") + Line("00:00:02 : "), machine.files.files[0].bytes);
}

TEST_F(SystemLogTest, TheFileIsOfTheUsersDayAndTheLineOfUtc) {
    machine.zone.state = ZoneState{-60, 0, false};
    machine.clock.AdvanceMs((23 * 3600 + 3000) * 1000);
    core->WriteSystemLog(u"Local");
    SetFlag(kFlagLocalTime, false);
    core->WriteSystemLog(u"Utc");
    ASSERT_EQ(2u, machine.files.files.size());
    EXPECT_EQ(Path(u"log_system_20Nov2026.log"), machine.files.files[0].path);
    EXPECT_EQ(Line("23:50:00 : Local"), machine.files.files[0].bytes);
    EXPECT_EQ(Path(u"log_system_19Nov2026.log"), machine.files.files[1].path);
}

}  // namespace
}  // namespace twr::testing
