// What every host of the dialog can rely on. The tests of a host show that it passes on what its user does.
#include "bridge/about.h"
#include "bridge_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
using Reads = std::vector<int>;

class DialogTest : public BridgeTest {};

TEST_F(DialogTest, OpensWithTheStoredSettingsAndSavesWhatItShows) {
    const struct {
        std::u16string_view name;
        int control;
        bool Settings::*setting;
    } boxes[] = {{u"DfwTags", kNamesCheck, &Settings::sendNames},
                 {u"DfwTrue", kTrueCheck, &Settings::degreesTrue},
                 {u"DfwDepth", kDepthCheck, &Settings::depthInFeet},
                 {u"DfwTimer", kTimerCheck, &Settings::useTimer}};
    stored.reset();
    Run([&] {
        for (const auto& box : boxes) EXPECT_EQ(box.control == kDepthCheck, host.Checked(box.control)) << "the default";
        EXPECT_EQ(u"C:\\Program Files (x86)\\BandG\\Deckman", host.Text(kFolderField));
        EXPECT_EQ(100u, host.timerPeriod);
    });
    EXPECT_EQ(u"Halyrig", machine.claimed);
    EXPECT_FALSE(host.timerRuns);

    const std::u16string folder(600, u'd');
    host.answer = [](const auto&) { return BoxAnswer::kYes; };
    for (const auto& on : boxes) {
        WriteSettings(Stored(), {.dfwFolder = u"  " + folder + u"\t", .depthInFeet = false});
        Stored().Write(kBridgeSettingsKey, on.name, DwordValue(2));
        Run([&] {
            EXPECT_EQ(folder, host.Text(kFolderField)) << "trimmed";
            for (const auto& box : boxes) {
                EXPECT_EQ(box.control == on.control, host.Checked(box.control)) << box.control << " with " << on.control;
                host.SetChecked(box.control, box.control != on.control);
            }
            host.PressClose();
        });
        const Settings saved = ReadSettings(Stored());
        EXPECT_EQ(folder, saved.dfwFolder);
        for (const auto& box : boxes) EXPECT_EQ(box.control != on.control, saved.*box.setting) << box.control;
    }
}

TEST_F(DialogTest, EachWayOutAsksAndSavesAsItShould) {
    enum class Quit { kNo, kBeforeItCame, kAsked, kWhileItAsks };
    using enum BoxAnswer;
    const auto close = [&] { host.PressClose(); };
    const auto esc = [&] { host.PressEsc(); };
    const auto startImport = [&] { host.Press(kImportButton); };
    const auto calm = [&] { record.SetFlag(35, false), host.Tick(); };
    const auto tick = [&] { EXPECT_EQ(Reads{}, TickReads()) << "no pass runs"; };
    const struct {
        const char* name;
        std::function<void()> leave;
        Quit quit;
        BoxAnswer answer;
        std::optional<DialogResult> ends;
        bool saves;
        std::size_t boxes, remarks = 0;
    } rows[] = {
        {"close, yes", close, Quit::kNo, kYes, DialogResult::kOk, true, 1},
        {"close, no", close, Quit::kNo, kNo, {}, false, 1},
        {"close, no answer", close, Quit::kNo, kNone, {}, false, 1},
        {"esc or the window closed, yes", esc, Quit::kNo, kYes, DialogResult::kCancel, false, 1},
        {"esc, no", esc, Quit::kNo, kNo, {}, false, 1},
        {"asked to quit, close", close, Quit::kAsked, kNo, DialogResult::kOk, true, 0},
        {"asked to quit, esc", esc, Quit::kAsked, kNo, DialogResult::kOk, true, 0},
        {"asked to quit, a tick", tick, Quit::kAsked, kNo, DialogResult::kOk, true, 0},
        {"asked to quit before it came", tick, Quit::kBeforeItCame, kNo, DialogResult::kOk, true, 0, 1},
        {"asked to quit before it came, but no more", calm, Quit::kBeforeItCame, kNo, {}, false, 0},
        {"asked to quit while it asks", esc, Quit::kWhileItAsks, kNone, DialogResult::kOk, true, 1},
        {"asked to quit while the import asks", startImport, Quit::kWhileItAsks, kNone, DialogResult::kOk, true, 1},
    };
    Variables("12 X\n");
    MappingXml("<var twr='1' dfw='12'/>");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        beforeStart = [&] { record.SetFlag(35, row.quit == Quit::kBeforeItCame); };
        host.answer = [&](const FakeDesktop::Box&) {
            if (row.quit == Quit::kWhileItAsks) record.SetFlag(35, true);
            EXPECT_EQ(row.quit == Quit::kNo, TickReads() == Reads{12}) << "ticks go on";
            return row.answer;
        };
        Run([&] {
            host.SetChecked(kNamesCheck, true);
            if (row.quit == Quit::kAsked) record.SetFlag(35, true);
            row.leave();
            EXPECT_EQ(row.ends, host.result);
        });
        EXPECT_EQ(row.saves, ReadSettings(Stored()).sendNames);
        EXPECT_EQ(row.quit != Quit::kNo && row.ends, record.U8(R::SysFlag(35)) != 0) << "the flag is another program's";
        EXPECT_EQ(row.remarks, host.remarks.size());
        EXPECT_EQ(row.boxes, host.boxes.size());
        for (const FakeDesktop::Box& box : host.boxes) {
            EXPECT_EQ(&row == std::end(rows) - 1 ? u"Import legacy Halyrig mappings?" : u"Exit Halyrig?", box.text);
            EXPECT_EQ(u"Halyrig32", box.caption);
            EXPECT_EQ(BoxButtons::kYesNo, box.buttons);
            EXPECT_EQ(BoxIcon::kQuestion, box.icon);
        }
    }
}

TEST_F(DialogTest, AnImportReplacesTheMappingOrLeavesIt) {
    constexpr const char* kFormer = "<var twr='1' dfw='12'/><remote remote='9' twr='1'/>";
    constexpr const char* kOther = R"(<var twr="5" dfw="13" />)";
    const struct {
        const char *vars, *remotes;
        BoxAnswer answer;
        std::vector<std::string> saved;  // lines of the new file; none: the former one stays
        std::size_t boxes;
        Reads reads;
    } rows[] = {
        {"13,5\n12,1,2\n14,6\n",
         "0,5,0,1\n",
         BoxAnswer::kYes,
         {kOther, R"(<var twr="1" dfw="12" boat="2" />)", R"(<var twr="6" dfw="14" />)",
          R"(<remote remote="1" twr="5" damp="true" />)"},
         1,
         {13, 12, 14}},
        {"13,5\n", "", BoxAnswer::kYes, {kOther}, 1, {13}},
        {"13,5\n", "0,5,0,1\n", BoxAnswer::kNo, {}, 1, {12}},
        {"13,5\n", "0,5,0,1\n", BoxAnswer::kNone, {}, 1, {12}},
        {"99,5\n", "0,5,0,1\n", BoxAnswer::kYes, {}, 2, {12}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.vars);
        Variables("12 BSP\n");
        MappingXml(kFormer);
        const std::string former = test.folder.Read(kMappingFile);
        test.folder.Write("ProgramData/Tidewright/halyrig/halyrig.csv", row.vars);
        test.folder.Write("ProgramData/Tidewright/halyrig/halyrigremotes.csv", row.remotes);
        test.folder.Write(std::string(kMappingFile) + ".bak", "");
        host.answer = [&](const FakeDesktop::Box& box) {
            if (box.buttons == BoxButtons::kYesNo) return row.answer;
            other->SetChannel(kBsp, 0, 7.0, 0.0);
            EXPECT_EQ(Reads{}, TickReads()) << "no variables while the box is open";
            EXPECT_EQ(std::vector<std::string>{"9=7.00"}, deckman.sent) << "but the former remotes";
            return BoxAnswer::kNone;
        };
        deckman.sent.clear();
        Run([&] {
            Variables("12 BSP\n13 TWS\n14 TWD\n");  // the import goes by Deckman's files of its moment
            host.Press(kImportButton);
            EXPECT_EQ(row.reads, TickReads());
        });
        const std::string saved = test.folder.Read(kMappingFile);
        for (const std::string& line : row.saved) EXPECT_NE(saved.npos, saved.find(line)) << line << "\nis not in\n" << saved;
        EXPECT_EQ(row.saved.empty(), saved == former);
        EXPECT_EQ(row.saved.empty(), saved.find("'9'") != saved.npos) << saved;
        EXPECT_EQ(row.saved.empty() ? "" : former, test.folder.Read(std::string(kMappingFile) + ".bak"));
        ASSERT_EQ(row.boxes, host.boxes.size());
        if (row.boxes == 1) continue;
        EXPECT_EQ(u"Unable to import legacy mappings.\n\nAttempting to load halyrig.xml.", host.boxes[1].text);
        EXPECT_EQ(BoxButtons::kOk, host.boxes[1].buttons);
        EXPECT_EQ(BoxIcon::kNone, host.boxes[1].icon);
    }
}

TEST_F(DialogTest, AboutTellsTheVersionAndAFourthNumberOnlyWhenThereIsOne) {
    const std::pair<std::optional<std::array<std::uint16_t, 4>>, std::u16string> rows[] = {
        {{{2, 5, 1, 0}}, u"2.5.1"}, {{{2, 5, 1, 7}}, u"2.5.1.7"}, {{{65535, 0, 0, 65535}}, u"65535.0.0.65535"}, {{}, u""}};
    for (const auto& [version, text] : rows) {
        machine.version = version;
        host.about.clear();
        Run([&] {
            host.Choose(kAboutCommand + 1);
            EXPECT_EQ(u"", host.about);
            host.Choose(kAboutCommand);
            EXPECT_TRUE(host.about.starts_with(u"Halyrig32 v" + text + u"\n\n"));
        });
    }
    EXPECT_EQ(u"&About Halyrig32...", host.menuItems.at(0));
}

TEST_F(DialogTest, ASecondInstanceRaisesTheFirstAndTouchesNothing) {
    machine.otherRuns = true;
    host.script = [] { FAIL() << "no dialog may open"; };
    EXPECT_FALSE(CHalyrig32App(machine).InitInstance());
    EXPECT_EQ(u"Halyrig32", machine.raised);
    EXPECT_FALSE(std::filesystem::exists(test.folder.Path() / "ProgramData")) << "it never attaches to the record";
}

TEST_F(DialogTest, AFailedAttachmentOpensAndEndsWithoutAQuestion) {
    machine.full.memory.failCreate = true;
    host.script = [] { FAIL() << "the loop ends at once"; };
    EXPECT_FALSE(CHalyrig32App(machine).InitInstance());
    EXPECT_TRUE(host.quit);
    EXPECT_FALSE(host.timerRuns);
}

TEST_F(DialogTest, ATickFirstReadsThenSendsWithTheBoxesAsTheyAre) {
    Variables("12 X\n");
    MappingXml("<var twr='17' dfw='12'/><remote remote='3' twr='17'/>");
    deckman.variables[12] = 32.808f;
    Run([&] {
        host.Tick();
        host.SetChecked(kDepthCheck, true);
        host.SetChecked(kNamesCheck, true);
        host.Tick();
        EXPECT_EQ((std::vector<std::string>{"3=32.8", "3=10.0", "3#DEPTH"}), deckman.sent);
    });
}

TEST_F(DialogTest, AFolderChangeSwapsLibraryAndMapping) {
    const std::u16string second = test.folder.File("Second");
    deckman.Install(second);
    Variables("12 BSP\n50 TIMER\n");
    Variables("20 BSP\n50 TIMER\n", "Second");
    MappingXml("<var twr='1' dfw='BSP'/><remote remote='3' twr='1'/>");
    stored->useTimer = true;
    deckman.variables = {{12, 6.0f}, {20, 6.0f}, {50, 300.0f}};
    Run([&] {
        EXPECT_EQ((Reads{12, 50}), TickReads());
        deckman.variables[50] = 100.0f;
        record.SetValue(36, 1.0);
        host.PickFolder(u"  " + second + u"\r\n");
        EXPECT_EQ(1, deckman.loaded);
        EXPECT_EQ((Reads{20, 50}), TickReads()) << "the name has found its new number";
        EXPECT_EQ((std::vector<std::string>{"3=6.00", "3=6.00"}), deckman.sent) << "all is sent once more";
        EXPECT_EQ(1.0, record.F64(R::SysValue(36))) << "the first reading of the timer sets no gun";
        host.PickFolder(test.folder.File("nowhere"));
        EXPECT_EQ(0, deckman.loaded);
        EXPECT_EQ(Reads{}, TickReads()) << "idle without a library";
        EXPECT_TRUE(host.boxes.empty()) << "and silent";
        host.PickFolder(test.folder.File("Deckman"));
        EXPECT_EQ((Reads{12, 50}), TickReads());
    });
    EXPECT_EQ(0, deckman.loaded) << "freed at the end";
}

TEST_F(DialogTest, ItFollowsTheDataFolderOfTheRecord) {
    Variables("12 X\n13 Y\n");
    MappingXml("<var twr='1' dfw='12'/>");
    MappingXml("<var twr='1' dfw='13'/>", "Ashore/instruments/halyrig.xml");
    const std::u16string usual = test.folder.File("ProgramData/Tidewright"), ashore = test.folder.File("Ashore");
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
            record.SetText(1068, row.named);
            host.Tick(row.ticks);
            EXPECT_EQ(Reads{row.variable}, TickReads());
            EXPECT_EQ(row.namedThen, record.Text(1068));
        }
    });
}

}  // namespace
}  // namespace twr::testing
