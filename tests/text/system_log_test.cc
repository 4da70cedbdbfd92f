#include <gtest/gtest.h>

#include "platform/paths.h"
#include "platform/wide_text.h"
#include "support/fakes.h"
#include "support/record_writer.h"

namespace twr {
namespace {

class SystemLogTest : public ::testing::Test {
protected:
    std::string Line(const std::string& text) { return text + std::string(kLineEnd); }
    std::u16string Path(std::u16string_view file) {
        return JoinPath(JoinPath(JoinPath(u"/data", u"Tidewright"), u"log_system"), file);
    }

    // Noon of 2026-11-19.
    static void SetNoon(testing::FakeMachine& machine) { machine.clock.ticks = 17950896000000000; }

    SystemLogTest() { SetNoon(machine); }

    testing::FakeMachine machine;
};

TEST_F(SystemLogTest, ShowsTheMessageAndThenLogsIt) {
    CCore core(machine.Services());
    std::size_t filesAtTheBox = 99;
    machine.desktop.answer = [&](const auto&) {
        machine.clock.AdvanceMs(1000);  // the user takes a second
        filesAtTheBox = machine.files.files.size();
        return BoxAnswer::kOk;
    };
    core.WriteSystemLog(u"One");
    core.WriteSystemLog(u"");
    ASSERT_EQ(2u, machine.desktop.boxes.size());
    EXPECT_EQ(u"One", machine.desktop.boxes[0].text);
    EXPECT_EQ(u"Halyrig32", machine.desktop.boxes[0].caption);
    EXPECT_EQ(BoxButtons::kOk, machine.desktop.boxes[0].buttons);
    EXPECT_EQ(BoxIcon::kStop, machine.desktop.boxes[0].icon);
    ASSERT_EQ(1u, machine.files.files.size());
    EXPECT_EQ(Path(u"log_system_19Nov2026.log"), machine.files.files[0].path);
    EXPECT_EQ(Line("12:00:01 : One") + Line("12:00:02 : "), machine.files.files[0].bytes);
    EXPECT_EQ(1u, filesAtTheBox);
}

TEST_F(SystemLogTest, TheFileIsOfTheUsersDayAndTheLineOfUtc) {
    CCore core(machine.Services());
    testing::RecordWriter record(core);
    machine.zone.state = ZoneState{-60, 0, false};
    machine.clock.AdvanceMs((11 * 3600 + 3000) * 1000);
    core.WriteSystemLog(u"Local");
    record.SetFlag(1, false);
    core.WriteSystemLog(u"Utc");
    ASSERT_EQ(2u, machine.files.files.size());
    EXPECT_EQ(Path(u"log_system_20Nov2026.log"), machine.files.files[0].path);
    EXPECT_EQ(Line("23:50:00 : Local"), machine.files.files[0].bytes);
    EXPECT_EQ(Path(u"log_system_19Nov2026.log"), machine.files.files[1].path);
}

TEST_F(SystemLogTest, AFailedAttachmentIsReportedBeforeTheEnd) {
    for (const bool create : {true, false}) {
        testing::FakeMachine broken;
        SetNoon(broken);
        (create ? broken.memory.failCreate : broken.memory.failMap) = true;
        bool quitAtTheBox = true;
        broken.desktop.answer = [&](const auto&) {
            quitAtTheBox = broken.desktop.quit;
            return BoxAnswer::kOk;
        };
        CCore core(broken.Services());
        const std::string message = create ? "Unable to create shared memory map" : "Unable to map shared memory";
        ASSERT_EQ(1u, broken.desktop.boxes.size());
        EXPECT_EQ(message, ToUtf8(broken.desktop.boxes[0].text));
        EXPECT_FALSE(quitAtTheBox);
        EXPECT_TRUE(broken.desktop.quit);
        EXPECT_EQ(nullptr, core.View());
        ASSERT_EQ(1u, broken.files.files.size());
        EXPECT_EQ(JoinPath(u"", u"log_system_19Nov2026.log"), broken.files.files[0].path);
        EXPECT_EQ(Line("12:00:00 : " + message), broken.files.files[0].bytes);
    }
}

}  // namespace
}  // namespace twr
