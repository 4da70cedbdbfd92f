// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

#include "base/wide_text.h"
#include "platform/files.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/registry/registry_text.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::u16string_view kKey = u"Software\\Tidewright\\core";
constexpr const char* kFile = "config/registry.reg";

struct RegistryFileTest : ::testing::Test {
    std::string Path(const char* name = kFile) const { return ToUtf8(test_.folder.File(name)); }
    unsigned ModeOf(const char* name) const { return static_cast<unsigned>(std::filesystem::status(Path(name)).permissions()); }

    testing::TestSystem test_;
    Registry& registry_ = test_.system->Core().registry;
};

TEST_F(RegistryFileTest, BeginsAsTheRegistryEditorsExportDoesAndSeesWhatOthersWrite) {
    const auto system = testing::SystemOf(test_.Arguments());
    Registry& other = system->Core().registry;
    ASSERT_TRUE(registry_.Write(kKey, u"Sys_v0", StringValue(u"15.85")) && registry_.Write(kKey, u"Sys_b3", DwordValue(1)));
    EXPECT_EQ(
        "Windows Registry Editor Version 5.00\r\n\r\n"
        "[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\r\n"
        "\"Sys_v0\"=\"15.85\"\r\n"
        "\"Sys_b3\"=dword:00000001\r\n",
        test_.folder.Read(kFile));
    EXPECT_EQ(0600u, ModeOf(kFile));
    EXPECT_EQ(0700u, ModeOf("config"));
    ASSERT_TRUE(other.Write(kKey, u"Sys_b3", DwordValue(2)) && other.Write(kKey, u"b", DwordValue(3)));
    EXPECT_EQ(DwordValue(2), registry_.Read(kKey, u"Sys_b3"));
    ASSERT_TRUE(registry_.Write(kKey, u"c", DwordValue(4)));
    EXPECT_EQ(DwordValue(3), other.Read(kKey, u"b"));
    // An editor writes into the file itself: of the same size, in the same second.
    const std::string text = test_.folder.Read(kFile);
    for (const char digit : {'6', '7'}) {
        std::string edited = text;
        edited[edited.find("00000004") + 7] = digit;
        test_.folder.Write(kFile, edited);
        const timespec times[] = {{1, 0}, {1'800'000'000, digit * 1000}};
        ASSERT_EQ(0, utimensat(AT_FDCWD, Path().c_str(), times, 0));
        EXPECT_EQ(DwordValue(static_cast<std::uint32_t>(digit - '0')), registry_.Read(kKey, u"c"));
    }
}

TEST_F(RegistryFileTest, WritesThroughALinkAndKeepsTheMode) {
    test_.folder.Write("elsewhere/real.reg", "");
    chmod(Path("elsewhere/real.reg").c_str(), 0640);
    test_.folder.Write("config/other", "");
    ASSERT_EQ(0, symlink("../elsewhere/real.reg", Path().c_str()));
    ASSERT_TRUE(registry_.Write(kKey, u"a", DwordValue(1)));
    EXPECT_EQ(DwordValue(1), registry_.Read(kKey, u"a"));
    EXPECT_NE("", test_.folder.Read("elsewhere/real.reg"));
    EXPECT_EQ(0640u, ModeOf("elsewhere/real.reg"));
}

TEST_F(RegistryFileTest, WhereItCantBeReadOrWrittenThatIsToldOnce) {
    const std::string none = "there is no folder for the settings: set HOME or XDG_CONFIG_HOME\n";
    const std::string noFile = ": the settings can't be read: it is not a plain file\n";
    const auto longLine = test_.folder.Write("long", '"' + std::string(kLongestLine, 'x')), large = test_.folder.Write("large", "");
    ASSERT_EQ(0, truncate(ToUtf8(large).c_str(), kLargestFile + 1));
    const std::pair<std::u16string, std::string> rows[] = {
        {test_.folder.Text(), noFile},
        {u"/dev/null", noFile},
        {u"/dev/null/x", ": the settings can't be read: Not a directory\n"},
        {u"/proc/x", ": a new key can't be saved: No such file or directory\n"},
        {longLine, ": the settings can't be read: it has a line longer than 1 MiB\n"},
        {large, ": the settings can't be read: it is larger than 64 MiB\n"},
        {u"", none},
        {u"nowhere.reg", none},
        {u"nowhere/x", none}};
    for (const auto& [path, told] : rows) {
        SCOPED_TRACE(ToUtf8(path));
        Roots roots = testing::TestRoots(test_.name, test_.folder.Text());
        roots.registry = path;
        const auto system = MakeSystem(roots);
        Registry& registry = system->Core().registry;
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(registry.OpenOrCreate(kKey) || registry.OpenOrCreate(kKey));
        EXPECT_EQ(std::nullopt, registry.Read(kKey, u"a"));
        const std::string said = ::testing::internal::GetCapturedStderr();
        EXPECT_EQ("platform_test: " + (told == none ? "" : ToUtf8(path)) + told, said);
        EXPECT_FALSE(registry.Write(kKey, u"a", DwordValue(1)));
    }
    for (const char* name : {"nowhere.reg", "nowhere"}) EXPECT_FALSE(std::filesystem::exists(name)) << name;
}

TEST_F(RegistryFileTest, TellsOnceEachTimeThatSettingsAreLost) {
    test_.folder.Write(kFile, ';' + std::string(5000, 'x') + '\n');
    rlimit all{};
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &all));
    const rlimit full{4096, all.rlim_max};
    for (const std::uint32_t time : {1u, 2u}) {
        ::testing::internal::CaptureStderr();
        setrlimit(RLIMIT_FSIZE, &full);
        EXPECT_FALSE(registry_.Write(kKey, u"a", DwordValue(time)) || registry_.Write(kKey, u"b", DwordValue(time)));
        setrlimit(RLIMIT_FSIZE, &all);
        EXPECT_EQ("platform_test: " + Path() + ": the settings can't be saved: File too large\n",
                  ::testing::internal::GetCapturedStderr());
        EXPECT_TRUE(registry_.Write(kKey, u"a", DwordValue(time)));
    }
}

TEST_F(RegistryFileTest, TellsOnceWhichLineCantBeReadUnlessEachIsToBeReported) {
    test_.folder.Write(kFile,
                       "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n\r\n; remark\r\n[HKCU\\Software\\Tidewright\\core]\r\n"
                       "\"a\"=dword:1\r\n[Software]\n[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\n\"a\"=dword:x\njunk\n\n"
                       "\"c\"=dword:2 ; remark\n\"b\"=hex:1,\\\n 2\n\"c\"=-\n\"d\"=\"\"\n[HKEY_CURRENT_USER\\x\n");
    const auto other = testing::SystemOf(test_.Arguments());
    CollectedFindings heard;
    ::testing::internal::CaptureStderr();
    registry_.Check(heard);
    EXPECT_EQ(std::nullopt, registry_.Read(kKey, u"a"));
    for (int time = 0; time < 2; ++time) EXPECT_EQ(std::nullopt, other->Core().registry.Read(kKey, u"a"));
    EXPECT_EQ("platform_test: " + Path() + ":8: the value of a can't be read and is ignored\n",
              ::testing::internal::GetCapturedStderr());
    const std::tuple<std::size_t, Flaw, std::u16string> rows[] = {
        {4, Flaw::kOtherKey, u"HKEY_CURRENT_USER\\Software\\Tidewright\\core"},
        {6, Flaw::kOtherKey, u"HKEY_CURRENT_USER"},
        {8, Flaw::kValueNotRead, u""},
        {9, Flaw::kLineNotRead, u"\"name\"=value"},
        {16, Flaw::kKeyNotRead, u""}};
    ASSERT_EQ(std::size(rows), heard.found.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(rows[i], std::tuple(heard.found[i].line, heard.found[i].flaw, heard.found[i].text)) << i;
    }
    EXPECT_EQ((std::vector<std::u16string>{u"b", u"d"}), registry_.Names(kKey));
    EXPECT_EQ(12u, registry_.PlaceOf(kKey, u"b").line);
    EXPECT_EQ(0u, registry_.PlaceOf(kKey, u"x").line);
    test_.folder.Write(kFile, std::string(kLongestLine + 2, 'x'));
    registry_.Check(heard);
    EXPECT_EQ(Flaw::kStoreNotRead, heard.found.back().flaw);
    EXPECT_EQ(u"it has a line longer than 1 MiB", heard.found.back().text);
}

TEST_F(RegistryFileTest, WaitsForAnotherProgramThatIsWritingButNotForEver) {
    ASSERT_TRUE(registry_.Write(kKey, u"a", DwordValue(1)));
    const Descriptor folder(open(Path("config").c_str(), O_RDONLY | O_DIRECTORY));
    ASSERT_EQ(0, flock(folder.Get(), LOCK_EX));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(registry_.Write(kKey, u"a", DwordValue(2)));
    EXPECT_LE(std::chrono::milliseconds(500), std::chrono::steady_clock::now() - begin);
}

TEST_F(RegistryFileTest, AFileNotToBeWrittenStaysAsItIs) {
    test_.folder.Write(kFile, "[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\n\"a\"=dword:1\n");
    chmod(Path().c_str(), 0444);
    const testing::OrdinaryUser user(test_.folder);
    EXPECT_TRUE(registry_.OpenOrCreate(kKey));
    EXPECT_EQ(DwordValue(1), registry_.Read(kKey, u"a"));
    EXPECT_FALSE(registry_.Write(kKey, u"a", DwordValue(2)));
    EXPECT_EQ(DwordValue(1), registry_.Read(kKey, u"a"));
}

// The text of the file.

const std::u16string kFullKey = u"HKEY_CURRENT_USER\\Software\\Tidewright\\core";
const std::string kSection = "[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\n";

TEST(RegistryText, GivesAValueOrTheLineThatIsMeantForItAndCantBeRead) {
    constexpr auto kNone = std::nullopt;
    struct Row {
        std::string lines;  // the section is line 1
        std::optional<RegistryValue> value;
        std::size_t damaged = 0;  // 0: none
    };
    std::vector<Row> rows = {
        {"\"a\"=\"15.85\"", StringValue(u"15.85")},
        {"\"A\"=\"x\"\r\n", StringValue(u"x")},
        {"  \"a\" = \t\"x\" \n", StringValue(u"x")},
        {"\"a\"=\"C:\\\\x \\\"y\\\"\"\n", StringValue(u"C:\\x \"y\"")},
        {"\"a\"=\"C:\\x\"\n", StringValue(u"C:\\x")},
        {"\"a\"=\"one\r\ntwo\n[three]\"\n", StringValue(u"one\r\ntwo\n[three]")},
        {"\"a\"=\"\xC3\xA4\xF0\x9F\x98\x80\"\n", StringValue(u"\u00E4\xD83D\xDE00")},
        {"\"a\"=dword:FEdc\n", DwordValue(0xFEDC)},
        {"\"a\"=hex:\n", RegistryValue{kRegistryBinary, {}}},
        {"\"a\"=hex:0a,B,ff\n", RegistryValue{kRegistryBinary, {0x0A, 0x0B, 0xFF}}},
        {"\"a\"=hex(2):25,00,\\\r\n  00,00\r\n", RegistryValue{kRegistryExpandString, {0x25, 0, 0, 0}}},
        {"\"a\"=hex(1):61,00,\\ \n\t\\\n62\n", RegistryValue{kRegistryString, {0x61, 0, 0x62}}},
        {"\"a\"=hex(ffff0012):01\n", RegistryValue{0xFFFF0012, {1}}},
        {"\"a\"=dword:1 ; a remark\r\n", DwordValue(1)},
        {"\"a\"=\"x;y\";z", StringValue(u"x;y")},
        {"\"a\"=hex:01,02\t; [x]\n", RegistryValue{kRegistryBinary, {1, 2}}},
        {"[x] ; another key\n" + kSection.substr(0, kSection.size() - 1) + " ; see [x]\n\"a\"=dword:2", DwordValue(2)},
        {"\"a\"=dword:1\n\"a\"=dword:2\n", DwordValue(2)},
        {"\"a\"=dword:1\n\"b\"=\"open\n\"c\"=dword:3\n", DwordValue(1)},
        {"", kNone},
        {"\"a\"=dword:1\n\"a\"=- ; gone\n", kNone},
        {";\"a\"=\"x\"\n", kNone},
        {"\"a\"=dword:1\n[-HKEY_CURRENT_USER\\software]\n", kNone},
        {"\"a\"", kNone, 2},
        {"\n\"b\"=\"x\ny\"\n\n \"A\"=dword:1x\n", kNone, 6},
        {"\"a\" dword:1\n", kNone, 2},
        {" a = dword:1\n", kNone, 2},
        {"\"a\"=dword:1\n\"a\"=x", DwordValue(1), 3},
        {"\"a\"=x\n\"a\"=dword:1\n", DwordValue(1)},
        {"\"b\"=x\n;a=x\n[x]\n\"a\"=x\n", kNone},
        {"\"a\"=x\n[-HKEY_CURRENT_USER\\Software]\n", kNone}};
    for (const char* value : {"", "x", "\"open", "\"dword:1", "\"x\"y", "dword:", "dword:100000000", "dword:-1", "dword:1x",
                              "hex:0g", "hex:100", "hex:01 02", "hex:01,\\x", "hex():01", "hex(100000000):01"}) {
        rows.push_back({"\"a\"=" + std::string(value) + "\n", kNone, 2});
    }
    for (const char* key : {"HKEY_CURRENT_USER\\Software]", "HKEY_LOCAL_MACHINE\\Software\\Tidewright\\core]", "damaged", "]"})
        rows.push_back({"[" + std::string(key) + "\n\"a\"=dword:1\n", kNone});
    for (const auto& row : rows) {
        const RegistryText text(kSection + row.lines);
        EXPECT_EQ(row.value, text.Find(kFullKey, u"a")) << row.lines;
        EXPECT_EQ(row.damaged, text.DamagedLine(kFullKey, u"a").value_or(0)) << row.lines;
    }
}

TEST(RegistryText, ReadsUtf16WithItsMarkAndUtf8WithAndWithoutIts) {
    const std::u16string text = u"Windows Registry Editor Version 5.00\r\n\r\n[" + kFullKey + u"]\r\n@=\"\u00E4\"\r\n";
    for (const std::string& form : {ToUtf8(text), ToUtf8(u"\uFEFF" + text), testing::Utf16Bytes(u"\uFEFF" + text, false),
                                    testing::Utf16Bytes(u"\uFEFF" + text, true)}) {
        RegistryText registry(form);
        EXPECT_EQ(StringValue(u"\u00E4"), registry.Find(kFullKey, u""));
        EXPECT_TRUE(registry.Bytes().ends_with(ToUtf8(text)));
    }
}

TEST(RegistryText, KnowsWhichKeysAreThere) {
    const RegistryText text("[U\\A\\B]\n[U\\C\\D]\n[-U\\C]\n[U\\Cx]\n");
    for (const char16_t* key : {u"U\\A\\B", u"u\\a", u"U\\Cx"}) EXPECT_TRUE(text.HasKey(key)) << ToUtf8(key);
    for (const char16_t* key : {u"U\\A\\B\\C", u"U\\C", u"U\\C\\D", u""}) EXPECT_FALSE(text.HasKey(key)) << ToUtf8(key);
}

TEST(RegistryText, SetsAValueAndKeepsAllElse) {
    const std::string before = "Windows Registry Editor Version 5.00\n\n; a comment\n" + kSection +
                               "\"other\"=hex(7):61,00,\\\n  00,00\nnonsense \xFF\n\"a\"=\"old\"\n\n";
    const std::string behind = "[U\\Gone]\n[-U\\Gone]\n[U\\Other]\n\"a\"=dword:00000007 ; it\n\"gone\"=-";
    const std::tuple<std::u16string, std::u16string, std::string> rows[] = {
        {kFullKey, u"A", before.substr(0, before.find("\"a\"=")) + "\"A\"=dword:00000002\n\n" + behind},
        {kFullKey, u"b", before.substr(0, before.size() - 1) + "\"b\"=dword:00000002\n\n" + behind},
        {u"U\\other", u"a", before + behind.substr(0, behind.find("dword:00000007")) + "dword:00000002 ; it\n\"gone\"=-"},
        {u"U\\other", u"gone", before + behind + "\n\"gone\"=dword:00000002\n"},
        {u"U\\New", u"", before + behind + "\n\n[U\\New]\n@=dword:00000002\n"},
        {u"U\\Gone", u"", before + behind + "\n\n[U\\Gone]\n@=dword:00000002\n"}};
    for (const auto& [key, name, expected] : rows) {
        SCOPED_TRACE(ToUtf8(key + u" " + name));
        RegistryText text(before + behind);
        text.Set(key, name, DwordValue(2));
        EXPECT_EQ(expected, text.Bytes());
        EXPECT_EQ(DwordValue(2), text.Find(key, name));
    }
}

TEST(RegistryText, WhatWasSetIsFoundAgainBehindATextThatIsNotClosed) {
    const RegistryValue values[] = {DwordValue(2),
                                    {kRegistryBinary, {1}},
                                    StringValue(u"="),
                                    StringValue(u"one\n@=two\n[x]"),
                                    StringValue(std::u16string(u"a\0b", 3))};
    for (const char* open : {"", "\":\n", "\"a\"=\"abc\n", "\"a\"=hex:1,\\\n"}) {
        for (const char* behind : {"@=\"de\"\np\"=\"\"\n", "@=\"de\"\np\"\n"}) {
            for (const RegistryValue& value : values) {
                RegistryText text(kSection + open + behind);
                text.Set(kFullKey, u"", value);
                const RegistryText again(text.Bytes());
                EXPECT_EQ(value, again.Find(kFullKey, u"")) << text.Bytes();
                EXPECT_EQ(std::string::npos, text.Bytes().find('\0')) << "no editor keeps what is behind it";
                EXPECT_FALSE(again.Find(kFullKey, u"a")) << text.Bytes();
            }
        }
    }
}

TEST(RegistryText, WrapsLongBytesAsTheRegistryEditorDoes) {
    RegistryText text(kSection);
    text.Set(kFullKey, u"a", RegistryValue{kRegistryBinary, std::vector<std::uint8_t>(49, 0x11)});
    const std::string five = "11,11,11,11,11,", twenty = five + five + five + five;
    EXPECT_EQ(kSection + "\"a\"=hex:" + twenty + "11,11,11,\\\n  " + twenty + five + "\\\n  11\n", text.Bytes());
}

}  // namespace
}  // namespace twr
