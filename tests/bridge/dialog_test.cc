#include "bridge_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class DialogTest : public BridgeTest {
protected:
    void AnswerWith(BoxAnswer answer) {
        host.answer = [answer](const FakeDesktop::Box&) { return answer; };
    }
};

TEST_F(DialogTest, OpensWithTheStoredSettings) {
    machine.registry.keys.clear();
    Run([&] {
        EXPECT_TRUE(host.Checked(kDepthCheck)) << "on by default";
        for (const int off : {kNamesCheck, kTrueCheck, kTimerCheck}) EXPECT_FALSE(host.Checked(off)) << off;
        EXPECT_EQ(u"C:\\Program Files (x86)\\BandG\\Deckman", host.Text(kFolderField));
        EXPECT_TRUE(host.timerRuns);
        EXPECT_EQ(100u, host.timerPeriod);
    });
    EXPECT_EQ(u"Halyrig", machine.instance.claimed);
    EXPECT_FALSE(host.timerRuns);

    const struct {
        std::u16string_view name;
        int control;
    } rows[] = {{u"DfwTags", kNamesCheck}, {u"DfwTrue", kTrueCheck}, {u"DfwDepth", kDepthCheck}, {u"DfwTimer", kTimerCheck}};
    for (const auto& row : rows) {
        for (const std::uint32_t number : {0u, 1u, 2u}) {
            SaveSetting(row.name, DwordValue(number));
            Run([&] { EXPECT_EQ(number != 0, host.Checked(row.control)) << "control " << row.control; });
        }
    }
}

TEST_F(DialogTest, EachWayOutAsksAndSavesAsItShould) {
    const struct {
        const char* name;
        bool close, quitRequest;
        BoxAnswer answer;
        bool ends, saves;
    } rows[] = {
        {"close, yes", true, false, BoxAnswer::kYes, true, true},
        {"close, no", true, false, BoxAnswer::kNo, false, false},
        {"close, no answer", true, false, BoxAnswer::kNone, false, false},
        {"esc, yes", false, false, BoxAnswer::kYes, true, false},
        {"esc, no", false, false, BoxAnswer::kNo, false, false},
        {"close, asked to quit", true, true, BoxAnswer::kNo, true, true},
        {"esc, asked to quit", false, true, BoxAnswer::kNo, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SaveSetting(u"DfwTags", DwordValue(0));
        AnswerWith(row.answer);
        host.boxes.clear();
        Run([&] {
            host.SetChecked(kNamesCheck, true);
            if (row.quitRequest) record->Set<std::uint8_t>(R::SysFlag(35), 1);
            row.close ? host.PressClose() : host.PressEsc();
            EXPECT_EQ(row.ends, host.result.has_value());
        });
        EXPECT_EQ(row.saves ? 1u : 0u, DwordOf(Setting(u"DfwTags")));
        EXPECT_EQ(row.quitRequest, host.boxes.empty());
        other.reset();
    }
    AnswerWith(BoxAnswer::kNo);
    Run([&] { host.PressEsc(); });
    ASSERT_FALSE(host.boxes.empty());
    EXPECT_EQ(u"Exit Halyrig?", host.boxes.back().text);
    EXPECT_EQ(u"Halyrig32", host.boxes.back().caption);
    EXPECT_EQ(BoxButtons::kYesNo, host.boxes.back().buttons);
    EXPECT_EQ(BoxIcon::kQuestion, host.boxes.back().icon);
}

TEST_F(DialogTest, AQuitRequestEndsItWithinATickAndNoPassRuns) {
    MapOne(kBsp);
    Run([&] {
        host.Tick();
        deckman.reads.clear();
        record->Set<std::uint8_t>(R::SysFlag(35), 1);
        host.SetChecked(kTimerCheck, true);
        host.Tick();
        EXPECT_EQ(DialogResult::kOk, host.result);
        EXPECT_TRUE(deckman.reads.empty());
    });
    EXPECT_TRUE(host.boxes.empty());
    EXPECT_EQ(1u, DwordOf(Setting(u"DfwTimer")));
    EXPECT_EQ(1, record->U8(R::SysFlag(35))) << "the flag is another program's";
}

TEST_F(DialogTest, ItRemarksOnARecordThatAskedToQuitBeforeItCame) {
    const struct {
        const char* when;
        bool before, after;
        std::size_t remarks;
    } rows[] = {{"from the start", true, true, 1}, {"later", false, true, 0}, {"no more", true, false, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        host.remarks.clear();
        other = std::make_unique<CCore>(machine.Core());
        std::uint8_t& quitRequest = other->View()->sysFlag[kFlagQuitRequest];
        quitRequest = row.before;
        host.script = [&] {
            quitRequest = row.after;
            host.Tick();
            EXPECT_EQ(row.after, host.result.has_value());
        };
        CHalyrig32App(machine).InitInstance();
        EXPECT_EQ(row.remarks, host.remarks.size());
        EXPECT_TRUE(host.boxes.empty());
        other.reset();
    }
}

TEST_F(DialogTest, SavesWhatItShows) {
    AnswerWith(BoxAnswer::kYes);
    const std::u16string somewhere(600, u'd');
    SaveSetting(u"DfwFolder", StringValue(u"  " + somewhere + u"\t"));
    Run([&] {
        host.SetChecked(kDepthCheck, true);
        host.SetChecked(kTrueCheck, true);
        host.PressClose();
    });
    EXPECT_EQ(somewhere, TextOf(Setting(u"DfwFolder"))) << "trimmed";
    EXPECT_EQ(1u, DwordOf(Setting(u"DfwDepth")));
    EXPECT_EQ(1u, DwordOf(Setting(u"DfwTrue")));
    EXPECT_EQ(0u, DwordOf(Setting(u"DfwTimer")));
}

TEST_F(DialogTest, ASecondInstanceRaisesTheFirstAndTouchesNothing) {
    machine.instance.otherRuns = true;
    machine.registry.keys.clear();
    host.script = [] { FAIL() << "no dialog may open"; };
    EXPECT_FALSE(CHalyrig32App(machine).InitInstance());
    EXPECT_EQ(u"Halyrig32", machine.instance.raised);
    EXPECT_TRUE(machine.registry.keys.empty()) << "it never attaches to the record";
}

TEST_F(DialogTest, AFailedAttachmentOpensAndEndsWithoutAQuestion) {
    machine.memory.failCreate = true;
    SaveSetting(u"DfwTags", DwordValue(0));
    host.script = [] { FAIL() << "the loop ends at once"; };
    EXPECT_FALSE(CHalyrig32App(machine).InitInstance());
    EXPECT_TRUE(host.quit);
    EXPECT_EQ(1u, machine.rootFiles.files.size()) << "the log";
    EXPECT_FALSE(host.timerRuns);
    EXPECT_EQ(0, deckman.loaded);
}

TEST_F(DialogTest, AFolderChangeSwapsLibraryAndMapping) {
    Install("Second");
    Variables("12 BSP\n");
    Variables("20 BSP\n", "Second");
    MappingXml("<var twr='1' dfw='BSP'/>");
    deckman.variables = {{12, 6.0f}, {20, 7.0f}};
    Run([&] {
        host.Tick();
        EXPECT_EQ(6.0, Own(kBsp));
        host.PickFolder(u"  " + machine.folder.File("Second") + u"\r\n");
        EXPECT_EQ(1, deckman.loaded);
        host.Tick();
        EXPECT_EQ(7.0, Own(kBsp)) << "the name has found its new number";
        host.PickFolder(machine.folder.File("nowhere"));
        EXPECT_EQ(0, deckman.loaded);
        deckman.reads.clear();
        host.Tick(3);
        EXPECT_TRUE(deckman.reads.empty()) << "idle without a library";
        EXPECT_TRUE(host.boxes.empty()) << "and silent";
        host.PickFolder(machine.folder.File("Deckman"));
        deckman.variables[12] = 8.0f;
        host.Tick();
        EXPECT_EQ(8.0, Own(kBsp));
    });
    EXPECT_EQ(0, deckman.loaded) << "freed at the end";
}

TEST_F(DialogTest, ItFollowsTheDataFolderOfTheRecord) {
    Variables("12 X\n13 Y\n");
    MappingXml("<var twr='1' dfw='12'/>");
    machine.folder.Write("Ashore/instruments/halyrig.xml", "<halyrig><var twr='1' dfw='13'/></halyrig>");
    const std::u16string usual = JoinPath(machine.folder.Text(), u"Tidewright"), ashore = machine.folder.File("Ashore");
    const struct {
        const char* why;
        std::u16string named;  // by the record
        int ticks, variable;
        std::u16string namedThen;
    } rows[] = {
        {"the default", usual, 1, 12, usual},
        {"not named yet", u"", 1, 12, u""},
        {"named after the mapping was loaded", ashore, 1, 13, ashore},
        {"not named for a second", u"", 10, 12, usual},
    };
    Run([&] {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.why);
            record->SetText(1068, row.named);
            host.Tick(row.ticks);
            deckman.reads.clear();
            host.Tick();
            EXPECT_EQ(std::vector<int>{row.variable}, deckman.reads);
            EXPECT_EQ(row.namedThen, record->Text(1068));
        }
    });
}

TEST_F(DialogTest, TicksGoOnWhileItAsks) {
    MapOne(kBsp);
    host.answer = [&](const FakeDesktop::Box&) {
        deckman.variables[12] = 9.0f;
        host.Tick();
        EXPECT_EQ(9.0, Own(kBsp));
        return BoxAnswer::kNo;
    };
    Run([&] { host.PressClose(); });
    EXPECT_EQ(1u, host.boxes.size());
}

}  // namespace
}  // namespace twr::testing
