// SPDX-License-Identifier: MIT
// What every host of the dialog can rely on. The tests of a host show that it passes on what its user does.
#include <cmath>
#include <filesystem>

#include "bridge/controls.h"
#include "bridge_fixture.h"
#include "core/days.h"
#include "status/bridge_status.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
using Reads = std::vector<int>;

struct DialogTest : BridgeTest {
    std::optional<BridgeStatus> Status() { return ReadBridgeStatus(machine); }
};

TEST_F(DialogTest, OpensWithTheStoredSettingsAndSavesWhatItShows) {
    const std::tuple<std::u16string_view, int, bool Settings::*> boxes[] = {{u"DfwTags", kNamesCheck, &Settings::sendNames},
                                                                            {u"DfwTrue", kTrueCheck, &Settings::degreesTrue},
                                                                            {u"DfwDepth", kDepthCheck, &Settings::depthInFeet},
                                                                            {u"DfwTimer", kTimerCheck, &Settings::useTimer}};
    stored.reset();
    Run([&] {
        for (const auto& [name, control, setting] : boxes) EXPECT_EQ(control == kDepthCheck, host.Checked(control)) << "default";
        EXPECT_EQ(u"C:\\Program Files (x86)\\BandG\\Deckman", host.Text(kFolderField));
        EXPECT_EQ(100u, host.timerPeriod);
    });
    EXPECT_EQ(u"Halyrig", machine.claimed);
    EXPECT_FALSE(host.timerRuns);

    const std::u16string folder(600, u'd');
    host.answer = [](const auto&) { return BoxAnswer::kYes; };
    for (const auto& [name, onlyOne, itsSetting] : boxes) {
        WriteSettings(Stored(), {.dfwFolder = u"  " + folder + u"\t", .depthInFeet = false});
        Stored().Write(kBridgeSettingsKey, name, DwordValue(2));
        Run([&, &only = onlyOne] {
            EXPECT_EQ(folder, host.Text(kFolderField)) << "trimmed";
            for (const auto& [itsName, control, setting] : boxes) {
                EXPECT_EQ(control == only, host.Checked(control)) << control << " with " << only;
                host.SetChecked(control, control != only);
            }
            host.PressClose();
        });
        const Settings saved = ReadSettings(Stored());
        EXPECT_EQ(folder, saved.dfwFolder);
        for (const auto& [itsName, control, setting] : boxes) EXPECT_EQ(control != onlyOne, saved.*setting) << control;
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
    const std::tuple<const char*, std::function<void()>, Quit, BoxAnswer, std::optional<DialogResult>, bool, std::size_t> rows[] = {
        {"close, yes", close, Quit::kNo, kYes, DialogResult::kOk, true, 1},
        {"close, no", close, Quit::kNo, kNo, {}, false, 1},
        {"close, no answer", close, Quit::kNo, kNone, {}, false, 1},
        {"esc or the window closed, yes", esc, Quit::kNo, kYes, DialogResult::kCancel, false, 1},
        {"esc, no", esc, Quit::kNo, kNo, {}, false, 1},
        {"asked to quit, close", close, Quit::kAsked, kNo, DialogResult::kOk, true, 0},
        {"asked to quit, esc", esc, Quit::kAsked, kNo, DialogResult::kOk, true, 0},
        {"asked to quit, a tick", tick, Quit::kAsked, kNo, DialogResult::kOk, true, 0},
        {"asked to quit before it came", tick, Quit::kBeforeItCame, kNo, DialogResult::kOk, true, 0},
        {"asked to quit before it came, but no more", calm, Quit::kBeforeItCame, kNo, {}, false, 0},
        {"asked to quit while it asks", esc, Quit::kWhileItAsks, kNone, DialogResult::kOk, true, 1},
        {"asked to quit while the import asks", startImport, Quit::kWhileItAsks, kNone, DialogResult::kOk, true, 1}};
    Variables("12 X\n");
    MappingXml("<var twr='1' dfw='12'/>");
    for (const auto& [name, leave, quit, answer, ends, saves, boxes] : rows) {
        SCOPED_TRACE(name);
        beforeStart = [&, asked = quit] { record.SetFlag(35, asked == Quit::kBeforeItCame); };
        host.answer = [&, asked = quit, given = answer](const FakeDesktop::Box&) {
            if (asked == Quit::kWhileItAsks) record.SetFlag(35, true);
            EXPECT_EQ(asked == Quit::kNo, TickReads() == Reads{12}) << "ticks go on";
            return given;
        };
        Run([&, asked = quit, &leaves = leave, &result = ends] {
            host.SetChecked(kNamesCheck, true);
            if (asked == Quit::kAsked) record.SetFlag(35, true);
            leaves();
            EXPECT_EQ(result, host.result);
        });
        EXPECT_EQ(saves, ReadSettings(Stored()).sendNames);
        EXPECT_EQ(quit != Quit::kNo && ends, record.U8(R::SysFlag(35)) != 0) << "the flag is another program's";
        EXPECT_EQ(quit == Quit::kBeforeItCame && ends, host.remarks.size() == 1);
        EXPECT_EQ(boxes, host.boxes.size());
        for (const FakeDesktop::Box& box : host.boxes) {
            const bool imports = std::string_view(name).ends_with("import asks");
            EXPECT_EQ(imports ? u"Import legacy Halyrig mappings?" : u"Exit Halyrig?", box.text);
            EXPECT_TRUE(box.caption == u"Halyrig32" && box.buttons == BoxButtons::kYesNo && box.icon == BoxIcon::kQuestion);
        }
    }
}

TEST_F(DialogTest, AFileThatCanNotBeReadIsRemarkedOnWithoutABox) {
    Variables("12 X\n");
    std::filesystem::create_directories(test.folder.Path() / kMappingFile);  // no file, which not even an administrator can read
    Run([&] { host.Tick(); });
    ASSERT_EQ(1u, host.remarks.size());
    EXPECT_NE(std::u16string::npos, host.remarks[0].find(u"halyrig.xml: reading it fails (it is not a plain file"));
    EXPECT_TRUE(host.boxes.empty());
}

TEST_F(DialogTest, AnImportReplacesTheMappingOrLeavesIt) {
    constexpr const char* kFormer = "<var twr='1' dfw='12'/><remote remote='9' twr='1'/>";
    constexpr const char* kOther = R"(<var twr="5" dfw="13" />)";
    // saved: lines of the new file; none: the former one stays
    const std::tuple<const char*, const char*, BoxAnswer, std::vector<std::string>, std::size_t, Reads> rows[] = {
        {"13,5\n12,1,2\n14,6\n",
         "0,5,2,1\n1,6,0,0\n",
         BoxAnswer::kYes,
         {kOther, R"(<var twr="1" dfw="12" boat="2" />)", R"(<remote remote="1" twr="5" damp="true" boat="2" />)",
          R"(<remote remote="2" twr="6" damp="false" />)"},
         1,
         {13, 12, 14}},
        {"13,5\n", "", BoxAnswer::kYes, {kOther}, 1, {13}},
        {"13,5\n", "0,5,0,1\n", BoxAnswer::kNo, {}, 1, {12}},
        {"13,5\n", "0,5,0,1\n", BoxAnswer::kNone, {}, 1, {12}},
        {"99,5\n", "0,5,0,1\n", BoxAnswer::kYes, {}, 2, {12}}};
    for (const auto& [vars, remotes, answer, saved, boxes, reads] : rows) {
        SCOPED_TRACE(vars);
        Variables("12 BSP\n");
        MappingXml(kFormer);
        const std::string former = test.folder.Read(kMappingFile);
        test.folder.Write("ProgramData/Tidewright/halyrig/halyrig.csv", vars);
        test.folder.Write("ProgramData/Tidewright/halyrig/halyrigremotes.csv", remotes);
        test.folder.Write(std::string(kMappingFile) + ".bak", "");
        host.answer = [&, given = answer](const FakeDesktop::Box& box) {
            if (box.buttons == BoxButtons::kYesNo) return given;
            other->SetChannel(kBsp, 0, 7.0, 0.0);
            EXPECT_EQ(Reads{}, TickReads()) << "no variables while the box is open";
            EXPECT_EQ(std::vector<std::string>{"9=7.00"}, deckman.sent) << "but the former remotes";
            return BoxAnswer::kNone;
        };
        deckman.sent.clear();
        Run([&, &read = reads] {
            Variables("12 BSP\n13 TWS\n14 TWD\n");  // the import goes by Deckman's files of its moment
            host.Press(kImportButton);
            EXPECT_EQ(static_cast<int>(read.size()), Status()->mapping.varRows);
            EXPECT_EQ(read, TickReads());
        });
        const std::string file = test.folder.Read(kMappingFile);
        for (const std::string& line : saved) EXPECT_NE(file.npos, file.find(line)) << line << "\nis not in\n" << file;
        EXPECT_EQ(saved.empty(), file == former);
        EXPECT_EQ(saved.empty(), file.find("'9'") != file.npos) << file;
        EXPECT_EQ(saved.empty() ? "" : former, test.folder.Read(std::string(kMappingFile) + ".bak"));
        ASSERT_EQ(boxes, host.boxes.size());
        if (boxes == 1) continue;
        EXPECT_EQ(u"Unable to import legacy mappings.\n\nAttempting to load halyrig.xml.", host.boxes[1].text);
        EXPECT_TRUE(host.boxes[1].buttons == BoxButtons::kOk && host.boxes[1].icon == BoxIcon::kNone);
    }
}

TEST_F(DialogTest, AboutTellsTheVersionAndAFourthNumberOnlyWhenThereIsOne) {
    const std::pair<std::optional<std::array<std::uint16_t, 4>>, std::u16string> rows[] = {
        {{{2, 5, 1, 0}}, u"2.5.1"}, {{{2, 5, 1, 7}}, u"2.5.1.7"}, {{{65535, 0, 0, 65535}}, u"65535.0.0.65535"}, {{}, u""}};
    for (const auto& [version, text] : rows) {
        machine.version = version;
        host.about.clear();
        Run([&, &shown = text] {
            host.Choose(kAboutCommand + 1);
            EXPECT_EQ(u"", host.about);
            host.Choose(kAboutCommand);
            EXPECT_TRUE(host.about.starts_with(u"Halyrig32 v" + shown + u"\n\n"));
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
    deckman.onLoad = [&](std::u16string_view path) {
        EXPECT_TRUE(machine.calling && machine.crashCalls.find(path) != path.npos) << "a crash of its start is its own";
    };
    Run([&] {
        EXPECT_EQ((Reads{12, 50}), TickReads());
        deckman.variables[50] = 100.0f;
        record.SetValue(36, 1.0);
        host.PickFolder(u"  " + second + u"\r\n");
        EXPECT_EQ(1, deckman.loaded);
        EXPECT_EQ((Reads{20, 50}), TickReads()) << "the name has found its new number";
        EXPECT_EQ((std::vector<std::string>{"3=6.00", "3=6.00"}), deckman.sent) << "all is sent once more";
        EXPECT_EQ(1.0, record.F64(R::SysValue(36))) << "the first reading of the timer sets no gun";
        const auto status = Status();
        EXPECT_EQ(second, status->settings.dfwFolder);
        const auto& rows = status->mapping;
        EXPECT_TRUE(status->settings.useTimer && status->library.reads && rows.variables == 1 && rows.varRows == 1);
        EXPECT_EQ(6.0f, status->LineOf(kBsp, 0)->reading);
        EXPECT_FALSE(status->LineOf(kBsp, 1) || status->LineOf(kHdg, 0));
        EXPECT_EQ(1, std::round((UtcNowDays(machine.clock) - status->mapping.readAt) * 864000)) << "tick ago";
        host.PickFolder(test.folder.File("nowhere"));
        EXPECT_EQ(0, deckman.loaded);
        EXPECT_EQ(Reads{}, TickReads()) << "idle without a library";
        EXPECT_EQ(status->ticks + 1, Status()->ticks) << "though it ticks";
        EXPECT_TRUE(host.boxes.empty()) << "and silent";
        EXPECT_FALSE(Status()->library.loaded) << "but for other processes";
        host.PickFolder(test.folder.File("Deckman"));
        EXPECT_EQ((Reads{12, 50}), TickReads());
    });
    EXPECT_EQ(0, deckman.loaded) << "freed at the end";
    EXPECT_FALSE(Status()) << "it doesn't run";
}

TEST_F(DialogTest, WhatComesWhileTheLibraryRunsWaitsForTheEndOfThePass) {
    const std::u16string second = test.folder.File("Second"), nowhere = test.folder.File("nowhere");
    deckman.Install(second);
    Variables("12 BSP\n13 HDG\n");
    Variables("20 BSP\n21 HDG\n", "Second");
    test.folder.Write("ProgramData/Tidewright/halyrig/halyrig.csv", "13,1\n");
    const auto quit = [&] { record.SetFlag(35, true), host.Tick(); };
    const std::tuple<const char*, std::function<void()>, Reads, std::size_t, std::optional<DialogResult>> rows[] = {
        {"a tick", [&] { host.Tick(3); }, {12, 13}, 0, {}},
        {"another folder", [&] { host.PickFolder(second); }, {20, 21}, 0, {}},
        {"two of them", [&] { host.PickFolder(nowhere), host.PickFolder(second); }, {20, 21}, 0, {}},
        {"an import", [&] { host.Press(kImportButton); }, {13}, 1, {}},
        {"close", [&] { host.PressClose(); }, {}, 1, DialogResult::kOk},
        {"esc, and again, and the import", [&] { host.PressEsc(), host.Press(kImportButton); }, {}, 1, DialogResult::kCancel},
        {"the request to quit", quit, {}, 0, DialogResult::kOk},
        {"the end of the session", [&] { host.EndSession(); }, {}, 0, {}}};
    for (const auto& [name, event, reads, boxes, result] : rows) {
        SCOPED_TRACE(name);
        MappingXml("<var twr='1' dfw='BSP'/><var twr='13' dfw='HDG'/>");
        deckman.onRead = [] {};
        host.answer = [&](const auto&) {
            deckman.onRead = [] {};
            EXPECT_EQ((Reads{12, 13}), TickReads()) << "ticks go on";
            return BoxAnswer::kYes;
        };
        Run([&, raise = event, nextReads = reads, ends = result] {
            deckman.onRead = [&] {
                raise();
                EXPECT_TRUE(deckman.loaded == 1 && machine.calling && !host.result && host.boxes.empty());
            };
            deckman.reads.clear();
            host.Tick();
            EXPECT_EQ((Reads{12, 13}), Reads(deckman.reads.begin(), deckman.reads.begin() + 2));
            EXPECT_EQ(ends, host.result);
            deckman.onRead = [] {};
            EXPECT_EQ(nextReads, TickReads());
        });
        EXPECT_EQ(boxes, host.boxes.size());
        EXPECT_EQ(0, deckman.loaded);
    }
}

TEST_F(DialogTest, ItFollowsTheDataFolderOnlyOfARecordThatItJoinedHalfFilled) {
    constexpr std::size_t kFolder = 1068, kStamp = R::Time(0, kTime);
    Variables("12 X\n13 Y\n50 TIMER\n");
    MappingXml("<var twr='1' dfw='12'/><remote remote='3' twr='1'/>");
    MappingXml("<var twr='1' dfw='13'/><remote remote='3' twr='1'/>", "Ashore/instruments/halyrig.xml");
    const std::u16string usual = test.folder.File("ProgramData/Tidewright"), ashore = test.folder.File("Ashore"), none;
    const auto name = [&](const std::u16string& folder) { return [&] { record.SetText(kFolder, folder); }; };
    const auto fill = [&] { record.Set(kStamp, 1.0); };
    const auto ticks = [&](int count) { return [this, count] { host.Tick(count); }; };
    struct Row {
        const char* why;
        bool filled;
        std::u16string named, namedAtOnce;
        std::vector<std::function<void()>> then;  // from the third tick on
        int variable;
        std::u16string namedThen;
    };
    const Row rows[] = {{"whole, without a folder", true, none, usual, {}, 12, usual},
                        {"whole, and another folder later", true, usual, usual, {name(ashore)}, 12, ashore},
                        {"half filled, named later", false, none, none, {name(ashore), ticks(1), fill}, 13, ashore},
                        {"half filled, the default replaced", false, usual, usual, {name(ashore)}, 13, ashore},
                        {"named at the moment of the end", false, none, none, {name(ashore), fill}, 13, ashore},
                        {"the end seen, without a folder", false, none, none, {fill}, 12, usual},
                        {"the end seen, and another folder later", false, usual, usual, {fill, ticks(1), name(ashore)}, 12, ashore},
                        {"no end for a second", false, none, none, {ticks(9)}, 12, usual},
                        {"no end for a second, and then a folder", false, usual, usual, {ticks(9), name(ashore)}, 12, ashore}};
    stored->useTimer = true;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        beforeStart = [&] {
            record.SetText(kFolder, row.named);
            if (!row.filled) record.Set(kStamp, 0.0);
        };
        deckman.sent.clear();
        deckman.variables = {{12, 6.0f}, {13, 6.0f}, {50, 300.0f}};
        Run([&] {
            EXPECT_EQ(row.namedAtOnce, record.Text(kFolder));
            host.Tick();
            deckman.variables[50] = 299.0f;
            host.Tick();
            EXPECT_NE(kNoValue, record.F64(R::SysValue(36))) << "the gun by the second reading";
            EXPECT_EQ(row.filled, record.F64(kStamp) != 0.0) << "the creator's sign is left to it";
            for (const auto& step : row.then) step();
            host.Tick();
            EXPECT_EQ(Reads({row.variable, 50}), TickReads());
            EXPECT_EQ(row.namedThen, record.Text(kFolder));
            EXPECT_TRUE(machine.crashFile.starts_with(row.variable == 12 ? usual : ashore));
            host.Tick(12);
            EXPECT_NE(0.0, record.F64(kStamp));
            EXPECT_EQ(row.variable == 12 ? 1u : 2u, deckman.sent.size()) << "nothing is sent twice, but by another mapping";
        });
    }
}

}  // namespace
}  // namespace twr::testing
