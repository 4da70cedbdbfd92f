// SPDX-License-Identifier: MIT
// Broken set-ups, each brought about for real: the real bridge over the stand-in, or no bridge at all. For each, every command
// gives the same reason first, and what it says is to be done mends it.
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "bridge/bridge_fixture.h"
#include "config/saved_settings.h"
#include "halyrigctl/transcript.h"
#include "platform/files.h"
#include "support/child_process.h"

namespace twr::testing {
namespace {

const bool kOnLinux = kPathSeparator == u'/';
constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr const char *kConfig = "ProgramData/Tidewright/config/", *kInstruments = "ProgramData/Tidewright/instruments";

// What is special about a set-up.
enum Special : unsigned {
    kUsual = 0,
    kOnLinuxAlone = 1,
    kOrdinaryUser = 2,  // whose rights count
    kNoBridge = 4,      // it does not run
    kNoRecord = 8,      // nor is there a record, which some commands need
    kShown = 16,        // get and watch show a value all the same
};

struct SetUpRow {
    const char* asked = "BSP";                             // the channel
    const char* why = "";                                  // what explain, get and watch say first
    const char* check = nullptr;                           // the first that check says; nullptr: the same; empty: all is well
    std::function<void()> before = [] {}, during = [] {};  // the bridge starts, or the question
    std::function<void()> mend = nullptr;  // by hand, what the advice says; without it the advice itself is followed
    std::function<void()> again = [] {};   // what other programs do from then on
    unsigned special = kUsual;
};

struct ExplainTest : BridgeTest {
    ExplainTest() {
        machine.libraries = &test.system->GetLibraries();
        machine.console = &console;
    }

    // A set-up that is right, in folders of its own: a library at the same place would not be loaded again.
    void SetUpAll(int row) {
        std::error_code left;
        std::filesystem::permissions(test.folder.Path() / kInstruments, std::filesystem::perms::owner_all, left);
        std::filesystem::remove_all(test.folder.Path() / "ProgramData", left);
        EXPECT_FALSE(left) << left.message() << ", behind row " << row - 1;
        if (!usual.empty()) test.folder.Write("config/registry.reg", usual);
        folder = "Deckman" + std::to_string(row);
        stored = Settings{.dfwFolder = test.folder.File(folder), .depthInFeet = true};
        InstallLibrary(BytesOf(STAND_IN_LIBRARY));
        List(BytesOf(STAND_IN_VARIABLES));
        Recording("$IIVHW,,T,,M,6.5,N,,K\n$IIHDT,90,T\n$IIMWV,30,R,12,N,A\n$IIROT,2,A\n$SDDPT,3.0,0\n");
        MappingXml(kLines);
        Alternates("0,0,0,1,1,1,1,1,1,1\n");
        for (const auto& [name, to] : {std::pair(u"Sys_i6", 6u), {u"Sys_i1", 0u}, {u"Sys_b3", 1u}, {u"Sys_b27", 0u}}) Set(name, to);
        Set(u"DataFolder", StringValue(u""));
        usual = test.folder.Read("config/registry.reg");
        console.goOn = [this] { return machine.clock.AdvanceMs(100), true; };
        machine.libraries = &test.system->GetLibraries();
        machine.clock.ticks = test.system->Core().clock.Ticks() + 3600 * kTicksPerSecond;  // after all files were written
    }
    // The bridge has read the file before.
    void Later(const std::string& name) {
        std::filesystem::last_write_time(test.folder.Path() / name,
                                         std::filesystem::file_time_type::clock::now() + std::chrono::hours(2));
    }
    std::string LibraryFile() const { return folder + "/ShDfW2" + std::string(kLibrarySuffix.begin(), kLibrarySuffix.end()); }
    void InstallLibrary(const std::string& bytes) { test.folder.Write(LibraryFile(), bytes); }
    void List(const std::string& bytes) { test.folder.Write(folder + "/Data/J_vars06.d", bytes); }
    void Recording(const std::string& lines) { test.folder.Write(folder + "/recording.nmea", lines); }
    void Alternates(const std::string& lines) { test.folder.Write(std::string(kConfig) + "alternate.csv", lines); }
    void Set(std::u16string_view name, const RegistryValue& value) {
        if (Stored().Read(kSavedSettingsKey, name) != value) Stored().Write(kSavedSettingsKey, name, value);
    }
    void Set(std::u16string_view name, std::uint32_t value) { Set(name, DwordValue(value)); }
    void Rename(const std::string& from, const std::string& to) {
        std::filesystem::rename(test.folder.Path() / from, test.folder.Path() / to);
    }
    void Remove(const std::string& name) { std::filesystem::remove_all(test.folder.Path() / name); }
    void Choose() { Follow("'halyrigctl choose FOLDER'"); }
    void Forbid(const std::string& name) { std::filesystem::permissions(test.folder.Path() / name, std::filesystem::perms::none); }
    // The library has not all of its functions.
    void Lacks(const char* function) {
        deckman.Install(stored->dfwFolder);
        deckman.missing = {function};
        machine.libraries = &deckman;
    }
    void Gives(int variable, float value) {
        Lacks("");
        deckman.variables[variable] = value;
    }
    std::string Explained(const std::string& typed) { return Answered("explain " + typed); }
    std::string Answered(const std::string& typed) {
        std::istringstream words(typed);
        console.written.clear();
        console.forgets = false;
        RunCommandLine(machine, {std::istream_iterator<std::string>(words), {}});
        return console.written;
    }
    void Publish(ChannelId channel, double value, BoatSlot boat = 0, double secondsAgo = 0.0) {
        other->SetChannel(channel, boat, value, machine.clock.Days() - secondsAgo / 86400);
    }
    void Mark(ChannelId channel, std::size_t byte) { record.Set<std::uint8_t>(RecordBytes::Channel(channel) + byte, 1); }

    // What each command says of it; returns what is to be done.
    std::string AskAll(const SetUpRow& row);
    // Does it as it is written. False if that is a matter of hands.
    bool Follow(const std::string& todo);
    void TryOut(const SetUpRow& row, int number);

    static constexpr const char* kLines =
        "<var twr='1' dfw='BSP'/>\n<var twr='13' dfw='HDG'/><var twr='3' dfw='AWS'/><var twr='17' dfw='DEPTH'/>\n"
        "<remote remote='1' twr='1'/>";
    FakeConsole console;
    std::string folder, usual;         // Deckman's; what the registry holds at first, where it is a file
    std::unique_ptr<SharedBlock> odd;  // in the record's place
    Transcript* keeps = nullptr;       // what each set-up makes the commands say besides
};

std::string LineOf(const std::string& text, std::size_t number) {
    const auto lines = LinesOf(text);
    return number < lines.size() ? lines[number] : "";
}

// Of a line of JSON, as it stands there; empty if there is none.
std::string WordOf(const std::string& json, const std::string& key) {
    const std::size_t at = json.find("\"" + key + "\":"), from = at + key.size() + 3;
    return at == json.npos ? "" : json.substr(from, json.find_first_of(",}", from) - from);
}

std::string ExplainTest::AskAll(const SetUpRow& row) {
    const std::string asked = row.asked, check = Answered("check");
    if (row.check && !*row.check) {
        EXPECT_TRUE(check.starts_with("All is well")) << check;
    } else {
        ExpectIn(LineOf(check, 1), {row.check ? row.check : row.why});
    }
    const bool isShown = (row.special & kShown) != 0;
    for (const char* command : {"get ", "watch --snapshots 1 "}) ExpectIn(Answered(command + asked), {isShown ? "" : row.why});
    const std::string explained = Explained(asked);
    if (row.special & kNoRecord) return LineOf(check, 1);
    // The same words for programs, and streams give what the record has.
    const std::string got = Answered("get --json " + asked), reason = WordOf(got, "reason");
    if (!isShown) {
        EXPECT_EQ(reason, WordOf(Answered("explain --json " + asked), "reason"));
    }
    const bool held = WordOf(got, "value") != "null" || reason == "\"no-variation-shown\"" || reason == "\"no-such-unit\"" ||
                      reason == "\"no-zone\"";
    const std::string streamed =
        Answered("stream --seconds 1 --channels " + asked + (asked.find("--boat") == asked.npos ? " --boat 0" : ""));
    EXPECT_EQ(held ? WordOf(got, "valueUnit") : "", WordOf(streamed, "unit")) << got << streamed;
    ExpectIn(LineOf(explained, 0), {row.why});
    EXPECT_EQ(explained.find("\nx "), explained.rfind("\nx ")) << explained;
    if (keeps) {
        for (const char* command : {"check", "check --json", "explain", "map", "map suggest"}) keeps->Type(command);
        for (const char* command : {"explain ", "get --json "}) keeps->Type(command + asked);
    }
    const std::size_t todo = explained.find("\n  to do");
    return todo == explained.npos ? "" : explained.substr(todo + 1, explained.find('\n', todo + 1) - todo);
}

bool ExplainTest::Follow(const std::string& todo) {
    bool done = false;
    for (std::size_t begin = 0; (begin = todo.find("'halyrigctl ", begin)) != todo.npos; ++begin) {
        std::string command = todo.substr(begin + 12, todo.find('\'', begin + 1) - begin - 12);
        if (command == "choose FOLDER") command = "choose " + ToUtf8(test.folder.File(folder));
        if (command.ends_with("--apply")) command += " --yes";
        const std::string said = Answered(command);
        EXPECT_EQ(said.npos, said.find("halyrigctl: ")) << said;
        done = true;
    }
    for (const char* tool : {"chmod ", "rm "}) {
        const std::size_t begin = todo.find(tool);
        if (begin != todo.npos) done = std::system(todo.substr(begin, todo.find('\n') - begin).c_str()) == 0;
    }
    for (const char* again : {"end all programs", "once more in the dialog", "start " HALYRIG_PROGRAM, "end it and start it"})
        done = done || todo.find(again) != todo.npos;
    return done;
}

void ExplainTest::TryOut(const SetUpRow& row, int number) {
    SetUpAll(number);
    row.before();
    std::optional<OrdinaryUser> user;
    if ((row.special & kOrdinaryUser) && !user.emplace(test.folder)) return keeps ? keeps->IsPart() : void();
    std::string todo;
    const auto question = [&] {
        row.during();
        todo = AskAll(row);
    };
    if (row.special & kNoRecord) {
        other.reset();
        WriteSettings(Stored(), *stored);
        question();
    } else {
        Run([&] { host.Tick(2), (row.special & kNoBridge) != 0 ? void() : question(); });
        if (row.special & kNoBridge) question();
    }
    other.reset();
    machine.libraries = &test.system->GetLibraries();
    stored.reset();  // what is saved counts
    if (row.mend) {
        row.mend();
    } else {
        EXPECT_TRUE(Follow(todo)) << todo;
    }
    Run([&] {
        host.Tick(2);
        row.again();
        const std::string mended = Explained(row.asked);
        EXPECT_NE(mended.npos, LineOf(mended, 0).find(": all is well")) << "once this is done: " << todo << mended;
    });
    other.reset();
}

TEST_F(ExplainTest, EveryCommandNamesTheReasonFirstAndItsAdviceMendsIt) {
    const auto choose = [&](const std::u16string& path) { return [this, path] { stored->dfwFolder = path; }; };
    const auto map = [&](const char* lines) { return [this, lines] { MappingXml(lines); }; };
    const auto mapRight = map(kLines);
    const auto lists = [&](const std::string& bytes) { return [this, bytes] { List(bytes); }; };
    const auto installs = [&](const std::string& bytes) { return [this, bytes] { InstallLibrary(bytes); }; };
    const auto records = [&](const char* log) { return [this, log] { Recording(log); }; };
    const auto listRight = lists(BytesOf(STAND_IN_VARIABLES));
    const auto libraryRight = installs(BytesOf(STAND_IN_LIBRARY));
    const auto maps = [&](const char* lines) { return [this, lines] { MappingXml(lines), Later(kMappingFile); }; };
    const auto none = [] {}, released = none;  // released by the other program, in whose new record it is no more
    const auto box = [&](bool Settings::*setting, bool ticked) {
        return [this, setting, ticked] {
            Settings set = ReadSettings(Stored());
            set.*setting = ticked;
            WriteSettings(Stored(), set);
        };
    };
    // Kinds of rows: what another program has done, until it publishes the channel in a new record; what is well, though something
    // is to be said of it; files whose rights or capitals are wrong. % is Deckman's folder.
    const auto later = [&](const char* asked, const char* why, ChannelId channel, const std::function<void()>& during) {
        return SetUpRow{asked, why, "", [] {}, during, released, [this, channel] { Publish(channel, 1.0); }};
    };
    const auto well = [&](
                          const char* asked, const char* check, const std::function<void()>& before,
                          const std::function<void()>& mend = [] {}) {
        return SetUpRow{asked, "all is well", check, before, [] {}, mend, [] {}, kShown};
    };
    const auto at = [this](std::string path) { return path[0] == '%' ? path.replace(0, 1, folder) : path; };
    const auto forbidden = [&](const std::string& path) {
        return SetUpRow{
            .why = "can't be read by this user: ", .before = [this, at, path] { Forbid(at(path)); }, .special = kOrdinaryUser};
    };
    const auto renamed = [&](const std::string& path, const std::string& to, const char* asked = "BSP") {
        return SetUpRow{.asked = asked,
                        .why = "and capitals count",
                        .before = [this, at, path, to] { Rename(at(path), at(to)); },
                        .mend = [this, at, path, to] { Rename(at(to), at(path)); },
                        .special = kOnLinuxAlone};
    };
    const std::string row1 = "[variables]\n1 BSP kn 2 0 1\n", rest = "7 HDG degM 0 0 1\n3 AWS kn 1 0 1\n25 DEPTH ft 1 0 3\n",
                      inMetres = row1 + "3 AWS kn 1 0 1\n7 HDG degM 0 0 1\n25 DEPTH m 1 0 3\n";
    // A library's header says for which machine it is, and that it is no program.
    const std::string zeros(58, '\0'), elf = std::string("\x7f") + "ELF",
                                       pe = "MZ" + zeros + std::string("\x40\0\0\0PE\0\0\x4c\x01\x05\0", 12) + zeros;
    std::string otherMachine = BytesOf(STAND_IN_LIBRARY), program = otherMachine;
    const auto byte = [&](std::size_t place) { return static_cast<unsigned char>(program[place]); };
    const std::size_t header = kOnLinux ? 0 : byte(0x3C) | byte(0x3D) << 8;
    const auto flip = [](char& in, int bits) { in = static_cast<char>(in ^ bits); };
    flip(otherMachine[header + 4], kOnLinux ? 3 : 0x28), flip(otherMachine[header + 5], kOnLinux ? 0 : 0x87);
    flip(program[header + (kOnLinux ? 16 : 23)], kOnLinux ? 1 : 0x20);
    const std::vector<SetUpRow> rows = {
        well(
            "BSP", "", [] {}, [] {}),
        well("BSP", "", map("<var twr='1' dfw='BSP'/><remote remote='1' twr='117'/>"), mapRight),
        {"AWA", "all is well", "", none, [&] { Publish(kAwa, 30.0); }, released, [&] { Publish(kAwa, 30.0); }, kShown},
        // the folder
        {"BSP", "nowhere does not exist", nullptr, choose(test.folder.File("nowhere"))},
        {"BSP", "no Dfw folder is chosen", nullptr, choose(u"")},
        {.why = "no Dfw folder is chosen", .before = choose(Settings().dfwFolder), .special = kOnLinuxAlone},
        {.why = "begins with ~", .before = choose(u"~/Deckman"), .mend = [&] { Choose(); }},
        {.why = "is not a whole path", .before = choose(u"Deckman"), .mend = [&] { Choose(); }},
        {"BSP", "is a file, not a folder", nullptr, [&] { stored->dfwFolder = test.folder.Write("file", "x"); }},
        {.why = "but the folder above it does",
         .before = [&] { stored->dfwFolder += FromUtf8(kOnLinux ? "/Data" : "\\Data"); },
         .mend = [&] { Choose(); }},
        {"BSP", "and capitals count", nullptr, [&] { Rename(folder, "dECKMAN"), stored->dfwFolder = test.folder.File("Deckman"); },
         none, [&] { Rename("dECKMAN", "Deckman"); }, none, kOnLinuxAlone},
        {.why = " holds no ShDfW2", .before = [&] { Remove(LibraryFile()); }, .mend = libraryRight},
        {.why = ", only ShDfW2.x", .before = [&] { Rename(LibraryFile(), folder + "/ShDfW2.x"); }, .mend = libraryRight},
        forbidden("%"),
        // the library
        {.why = "is no library but another kind of file", .before = installs("Read me\n"), .mend = libraryRight},
        {.why = "could not load Deckman's library when it looked", .before = installs(""), .during = libraryRight},
        {.why = "is no library but another kind of file", .before = installs(kOnLinux ? "MZ" : elf), .mend = libraryRight},
        {.why = "is for another kind of program", .before = installs(otherMachine), .mend = libraryRight},
        {.why = "is for another kind of program", .before = installs(kOnLinux ? pe : elf + "\1" + zeros), .mend = libraryRight},
        {.why = "is a program, not a library", .before = installs(program), .mend = libraryRight},
        {.why = "can't be loaded: it is damaged",
         .before = installs(BytesOf(STAND_IN_LIBRARY).substr(0, 9000)),
         .mend = libraryRight},
        {.why = "has no function Usr_Read", .before = installs(BytesOf(LOADABLE)), .mend = libraryRight},
        renamed("%/ShDfW2.so", "%/shdfw2.SO"),
        forbidden("%/ShDfW2.so"),
        {"Lat", "has no function Usr_GetPosition", nullptr, [&] { Lacks("Usr_GetPosition"), Set(u"Sys_i6", 3); }, none, released,
         [&] { Publish(kLat, 1.0); }},
        {"BSP", "no functions Usr_SetISData", "has no function Usr_SetISData", [&] { Lacks("Usr_SetISData"); }, none, released,
         none, kShown},
        // Deckman's list
        {"BSP", "no file of variables", nullptr, [&] { Remove(folder + "/Data"); }, none, listRight},
        renamed("%/Data", "%/data"),
        {.why = "it has no line [variables]", .before = lists(""), .mend = listRight},
        {.why = "it has no line [variables]", .before = lists(rest), .mend = listRight},
        {.why = "it has no line [variables]", .before = lists("\xFF\xFE" + Utf16Bytes(u"[variables]\n", false)), .mend = listRight},
        {.why = "it has no line [variables]", .before = lists(BytesOf(STAND_IN_LIBRARY)), .mend = listRight},
        {.why = "or names no variable", .before = lists("[variables]\n"), .mend = listRight},
        {.why = "J_vars06.d:2: Deckman's list is read only up to here", .before = lists("[variables]\nx\n"), .mend = listRight},
        {"HDG", "J_vars06.d:3: Deckman's list is read only up to here",
         "only up to here: the line has no six columns, or its number falls, and 3 lines of the mapping can't be used for it",
         lists(row1 + "x\n" + rest), none, listRight},
        {"AWS", "J_vars06.d:4: Deckman's list is read only up to here", nullptr, lists(row1 + rest), none, listRight},
        forbidden("%/Data/J_vars06.d"),
        {"BSP", "found no list of variables in Deckman's folder when it looked", "changed since the bridge read it", lists(""),
         [&] { listRight(), Later(folder + "/Data/J_vars06.d"); }},
        // the mapping
        {"BSP", "there is no mapping", nullptr, [&] { Remove(kMappingFile); }},
        {"BSP", "is an empty file", nullptr, [&] { test.folder.Write(kMappingFile, ""); }},
        {"BSP", "halyrig.xml:1: from here on it is not XML", nullptr, [&] { test.folder.Write(kMappingFile, "}}\x01garbled"); },
         none, [&] { Remove(kMappingFile), Follow("'halyrigctl map suggest --apply'"); }},
        {"HDG", "halyrig.xml:2: from here on it is not XML", nullptr,
         [&] { test.folder.Write(kMappingFile, "<halyrig><var twr='1' dfw='BSP'/>\n<var twr='13"); }, none, mapRight},
        {.why = "feeds it", .check = "it maps nothing", .before = map(""), .mend = [&] { Follow("'halyrigctl map add BSP 1'"); }},
        {"AWA", "feeds it", "", mapRight},
        {"AWA --boat 2", "feeds it", "", mapRight, released, nullptr, [&] { Publish(kAwa, 1.0, 2); }},
        {.asked = "HDG", .why = "but line 1 feeds it for boat 2", .check = "", .before = map("<var twr='13' dfw='HDG' boat='2'/>")},
        {.asked = "HDG --boat 2", .why = "but line 2 feeds it for boat 0", .check = ""},
        {"HDG", "but line 1: there is no channel 1300, and 1 more fault", "there is no channel 1300",
         map("<var twr='1300' dfw='HDG'/><var/>")},
        {"HDG", "feeds it, but line 1: it names no channel", "it names no channel", map("<var dfw='HDG'/>")},
        {"BSP --boat 1", "there is no boat 100", "there is no boat 100", map("<var twr='1' dfw='BSP' boat='100'/>"), none,
         map("<var twr='1' dfw='BSP' boat='1'/>")},
        {"AWA", "which the bridge has not read yet", "since the bridge read it", none, maps("<var twr='2' dfw='AWA'/>")},
        {"BSP", "which the bridge has not read yet", "changed since the bridge read it", none, maps("<var twr='1' dfw='AWS'/>"),
         nullptr, none, kShown},
        renamed(kMappingFile, std::string(kInstruments) + "/Halyrig.xml"),
        forbidden(kMappingFile),
        forbidden(kInstruments),
        {"BSP", "reading it fails (Input/output error)", nullptr,
         [&] { Remove(kMappingFile), std::filesystem::create_symlink("/proc/self/mem", test.folder.Path() / kMappingFile); }, none,
         [&] { Remove(kMappingFile), MappingXml(kLines); }, none, kOnLinuxAlone},
        {.asked = "RoT", .why = "feeds it", .check = "", .mend = [&] { Set(u"Sys_b27", 1); }, .again = [&] { host.Tick(20); }},
        {"BSP", "all is well", "line 1 feeds BSP (1) too", map("<var twr='1' dfw='BSP'/><var twr='1' dfw='AWS'/>"), none, mapRight,
         none, kShown},  // the last counts

        // Deckman, the units of its list, and the boxes
        {"HDG", "Deckman has never given a value for its variable HDG", "",
         [&] {
             Recording("$IIVHW,,T,,M,6.5,N,,K\n"), MappingXml("<var twr='13' dfw='HDG'/><remote remote='2' twr='13' damp='1'/>");
         },
         none, [&] { Recording("$IIHDT,90,T\n"), libraryRight(), mapRight(); }, none},
        {"Depth", "Deckman gives no value now for its variable DEPTH", "", records("$IIHDT,90,T\n"), none,
         [&] { Recording("$SDDPT,3.0,0\n"), libraryRight(); }, none},
        {"Depth", "Deckman has never given a value for its variable DEPTH", "",
         [&] { Recording("$IIHDT,90,T\n"), List(inMetres), stored->depthInFeet = false; }, none,
         [&] { Recording("$SDDPT,3.0,0\n"), libraryRight(); }, none},
        {"172", "an infinite value for its variable AWS: a display shows INF,", "",
         [&] { Gives(3, -INFINITY), MappingXml("<var twr='172' dfw='AWS'/>"); }, none, released},
        {"HDG", "no variation (MagVar, channel 93) to make", nullptr, [&] { stored->degreesTrue = true; }, none,
         box(&Settings::degreesTrue, false)},
        well(
            "HDG", "has HDG in degM, and the box for degrees true is on",
            [&] {
                List(inMetres + "26 VARIATION deg 1 1 1\n"),
                    stored->degreesTrue = true, MappingXml("<var twr='93' dfw='26'/><var twr='13' dfw='HDG'/>"), Gives(26, 1.0f);
            },
            box(&Settings::degreesTrue, false)),
        // the suite

        {.why = "all is well", .check = "", .during = [&] { Mark(kBsp, 4); }, .mend = released, .special = kShown},
        later("TWA", "its source gives what is not a number", kTwa, [&] { Publish(kTwa, NAN); }),
        later("TWA", "it is stale: last published 3600.", kTwa, [&] { Publish(kTwa, 30.0, 0, -3600.0); }),
        {"Cog", "and the limit is 10 s", "COG (50) is taken from Deckman only while", map("<var twr='50' dfw='COG'/>"),
         [&] { Publish(kCog, 30.0, 0, 20.0); }, released, [&] { Publish(kCog, 1.0); }},
        {"Cog", "and the limit is 10 s", "", [&] { Set(u"Sys_i6", 3); }, [&] { Publish(kCog, 30.0, 0, 20.0); }, released,
         [&] { Publish(kCog, 1.0); }},
        {"HDG", "bearings are shown true", "", [&] { Set(u"Sys_b3", 0); }, none, [&] { Set(u"Sys_b3", 1); }},
        {"Depth", "the unit chosen for it does not exist", "(Sys_i1)", none, [&] { record.SetInt(1, 7); }, released},
        {"BSP", "and no program of the suite damps it", nullptr,
         map("<var twr='1' dfw='BSP'/><remote remote='2' twr='1' damp='true'/>"), none, mapRight, none, kShown},
        {"Lat", "position source (Sys_i6) is 3, and it is 6", "", none, none, [&] { Set(u"Sys_i6", 3); },
         [&] { Publish(kLat, 1.0); }},
        {"Lat", "made before the position source", "(Sys_i6)", none, [&] { Set(u"Sys_i6", 3); }, nullptr,
         [&] { Publish(kLat, 1.0); }},
        {"146", "time zone is not known", "note: ", [] { SetVariable("TZ", "Nowhere/Atlantis"); },
         [&] { Publish(kGpsTime, 46000.25); }, [] { SetVariable("TZ", "UTC"); }, [&] { Publish(kGpsTime, machine.clock.Days()); },
         kOnLinuxAlone},
        // the suite's files
        {.asked = "118", .why = "it stands for no channel now", .check = "", .mend = [&] { Alternates("1,1,1,1,1,1,1,1,1,1\n"); }},
        renamed(std::string(kConfig) + "alternate.csv", std::string(kConfig) + "Alternate.csv", "117"),
        {"118", "alternate.csv:1: the line has semicolons in the place of commas", "commas and is not read (and 1 line more)",
         [&] { Alternates("1;1;1;1;1;1;1;1;1;1\n2;1\n"); }, none, [&] { Alternates("1,1,1,1,1,1,1,1,1,1\n"); }},
        {"118", "can't be read by this user: it belongs to ", nullptr,
         [&] { Alternates("1,1,1,1,1,1,1,1,1,1\n"), Forbid(std::string(kConfig) + "alternate.csv"); }, none, nullptr, none,
         kOrdinaryUser},
        {"117", "it stands for no channel now", "so remote 1 shows no value",
         [&] {
             Remove(std::string(kConfig) + "alternate.csv"), MappingXml("<var twr='1' dfw='BSP'/><remote remote='1' twr='117'/>");
         },
         none, [&] { Alternates("0,1,1,1,1,1,1,1,1,1\n"); }},
        {"118", "made before alternate.csv was changed", "alternate.csv: it says other than", none,
         [&] { Alternates("1,1,1,1,1,1,1,1,1,1\n"); }},
        {"AWA", "made before the data folder became", "(DataFolder)", none,
         [&] {
             test.folder.Write("Ashore/instruments/halyrig.xml", "<halyrig><var twr='2' dfw='AWA'/></halyrig>");
             Set(u"DataFolder", StringValue(test.folder.File("Ashore")));
         }},
        {.asked = "AWA",
         .why = "made before the data folder became",
         .check = "(DataFolder)",
         .during =
             [&] {  // from the start of the former one's path
                 test.folder.Write("ProgramData/instruments/halyrig.xml", "<halyrig><var twr='2' dfw='AWA'/></halyrig>");
                 Set(u"DataFolder", StringValue(test.folder.File("ProgramData")));
             }},
        // the settings
        {"BSP", "lost: ", "registry.reg", [&] { stored.reset(), test.folder.Write("config/registry.reg", "\x01\x02garbled\n"); },
         none, [&] { Remove("config"), Follow("'halyrigctl choose FOLDER'"); }, none, kOnLinuxAlone},
        {"BSP", "lost: ", "can't be read by this user",
         [&] { WriteSettings(Stored(), *stored), stored.reset(), Forbid("config/registry.reg"); }, none, nullptr, none,
         kOrdinaryUser},
        // the instance
        {.why = "the bridge is not running", .check = "", .during = [&] { machine.clock.AdvanceMs(20000); }, .special = kNoBridge},
        {.why = "the bridge stands still", .during = [&] { machine.clock.AdvanceMs(20000); }},
        {.why = "there is no record", .check = "", .mend = released, .special = kNoRecord},
        {"BSP", "created it with another size", nullptr, none,
         [&] { odd = machine.Core().memory.CreateOrOpen(u"TwrCore_356_166784", 99); }, [&] { odd.reset(); }, none,
         kOnLinuxAlone | kNoRecord},
        {"BSP", "other users have access by its mode 0644", nullptr, none,
         [&] {
             const std::string path = "/dev/shm/HalyrigTest_" + test.name + "_TwrCore_356_166784";
             std::ofstream(path) << "x";
             std::filesystem::permissions(path, std::filesystem::perms(0644));
         },
         nullptr, none, kOnLinuxAlone | kNoRecord},
    };
    int number = 0;
    std::optional<Transcript> all;
    if (kOnLinux) keeps = &all.emplace("set_ups", machine, console, test);
    for (const SetUpRow& row : rows) {
        if (++number == 2 && keeps) keeps->LeaveOutUsual();
        if (keeps) keeps->Tell("# " + std::string(row.asked) + ": " + row.why);
        if ((row.special & (kOnLinuxAlone | kOrdinaryUser)) && !kOnLinux) continue;
        SCOPED_TRACE(std::to_string(number) + " " + row.asked + ": " + row.why + (row.check ? std::string(", ") + row.check : ""));
        TryOut(row, number);
    }
    EXPECT_LE(72, number);
}

TEST_F(ExplainTest, TellsALibraryThatDoesNotReturnFromOneThatIsSlow) {
    SetUpAll(0);
    Gives(1, 6.5f);
    Run([&] {
        deckman.onRead = [&] {
            machine.clock.AdvanceMs(500);
            EXPECT_EQ(std::string::npos, Explained("BSP").find("has not returned")) << "it is only slow";
            machine.clock.AdvanceMs(19500);
            deckman.onRead = [&] { machine.clock.AdvanceMs(150); };
            ExpectIn(Explained("BSP"), {"Deckman's library, which it has called, has not returned for 20.0 s\n  to do"});
            RunCommandLine(machine, {"get", "BSP"});
            ExpectIn(console.written, {"BSP has no value: the bridge stands still: Deckman's library"});
        };
        host.Tick(2);
        console.goOn = [this] { return host.Tick(), true; };
        ExpectIn(Explained("BSP"), {"all is well", "held up by Deckman's library, which takes 0.6 s"});
    });
}

// Who watches while things are put right sees it, and once Deckman's folder is chosen again what the library is like by then.
TEST_F(ExplainTest, AWatchFollowsWhatIsChangedMeanwhile) {
    const std::tuple<const char*, std::function<void()>, std::function<void()>, std::vector<const char*>> rows[] = {
        {"AWA", [] {}, [&] { MappingXml("<var twr='2' dfw='AWA'/>"); }, {"feeds it", "which the bridge has not read yet"}},
        {"BSP",
         [&] { Remove(LibraryFile()); },
         [&] { InstallLibrary("Read me\n"), host.PickFolder(test.folder.File(folder)); },
         {" holds no ShDfW2", "is no library but another kind of file"}}};
    int number = 1000;
    for (const auto& [asked, before, meanwhile, said] : rows) {
        SetUpAll(++number);
        before();
        Run([&, &changes = meanwhile, &channel = asked, &words = said] {
            host.Tick(2);
            int waits = 0;
            console.goOn = [&] {
                if (++waits == 20) changes();
                return host.Tick(), true;
            };
            std::vector<std::string> told;
            for (const std::string& line : LinesOf(Answered(std::string("watch --interval 8000 --snapshots 2 ") + channel))) {
                if (line.find(channel) != line.npos) told.push_back(line);
            }
            ASSERT_EQ(2u, told.size()) << console.written;
            for (std::size_t i = 0; i < 2; ++i) ExpectIn(told[i], {words[i]});
        });
    }
}

}  // namespace
}  // namespace twr::testing
