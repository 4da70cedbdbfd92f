#include "platform/linux/registry/registry_text.h"

#include <gtest/gtest.h>

#include <random>

#include "base/wide_text.h"
#include "support/xml_outline.h"

namespace twr {
namespace {

const std::u16string kKey = u"HKEY_CURRENT_USER\\Software\\Tidewright\\core";
const std::string kSection = "[HKEY_CURRENT_USER\\Software\\Tidewright\\core]\n";

std::optional<RegistryValue> ValueOfA(const std::string& lines) { return RegistryText(kSection + lines).Find(kKey, u"a"); }

TEST(RegistryText, ReadsEveryFormOfAValue) {
    const struct {
        std::string lines;
        RegistryValue value;
    } rows[] = {
        {"\"a\"=\"15.85\"", StringValue(u"15.85")},
        {"\"A\"=\"x\"\r\n", StringValue(u"x")},
        {"  \"a\" = \t\"x\" \n", StringValue(u"x")},
        {"\"a\"=\"C:\\\\x \\\"y\\\"\"\n", StringValue(u"C:\\x \"y\"")},
        {"\"a\"=\"C:\\x\"\n", StringValue(u"C:\\x")},
        {"\"a\"=\"one\r\ntwo\n[three]\"\n", StringValue(u"one\r\ntwo\n[three]")},
        {"\"a\"=\"\xC3\xA4\xF0\x9F\x98\x80\"\n", StringValue(u"\u00E4\xD83D\xDE00")},
        {"\"a\"=dword:FEdc\n", DwordValue(0xFEDC)},
        {"\"a\"=hex:\n", {kRegistryBinary, {}}},
        {"\"a\"=hex:0a,B,ff\n", {kRegistryBinary, {0x0A, 0x0B, 0xFF}}},
        {"\"a\"=hex(2):25,00,\\\r\n  00,00\r\n", {kRegistryExpandString, {0x25, 0, 0, 0}}},
        {"\"a\"=hex(1):61,00,\\ \n\t\\\n62\n", {kRegistryString, {0x61, 0, 0x62}}},
        {"\"a\"=hex(ffff0012):01\n", {0xFFFF0012, {1}}},
        {"\"a\"=dword:1 ; a remark\r\n", DwordValue(1)},
        {"\"a\"=\"x;y\";z", StringValue(u"x;y")},
        {"\"a\"=hex:01,02\t; [x]\n", {kRegistryBinary, {1, 2}}},
        {"[x] ; another key\n" + kSection.substr(0, kSection.size() - 1) + " ; see [x]\n\"a\"=dword:2", DwordValue(2)},
        {"\"a\"=dword:1\n\"a\"=dword:2\n", DwordValue(2)},
        {"\"a\"=dword:1\n\"b\"=\"open\n\"c\"=dword:3\n", DwordValue(1)},
    };
    for (const auto& row : rows) EXPECT_EQ(row.value, ValueOfA(row.lines)) << row.lines;
}

TEST(RegistryText, HasNoValueWhereNoneCanBeRead) {
    for (const std::string value : {"", "x", "\"open", "\"x\"y", "dword:", "dword:100000000", "dword:-1", "dword:1x", "hex:0g",
                                    "hex:100", "hex:01 02", "hex:01,\\x", "hex():01", "hex(100000000):01"}) {
        EXPECT_EQ(std::nullopt, ValueOfA("\"a\"=" + value + "\n")) << value;
    }
    for (const char* lines : {"", "\"a\"", "\"a\"=dword:1\n\"a\"=- ; gone\n", "a=\"x\"\n", ";\"a\"=\"x\"\n",
                              "\"a\"=dword:1\n\"a\"=-\n", "\"a\"=dword:1\n[-HKEY_CURRENT_USER\\software]\n"}) {
        EXPECT_EQ(std::nullopt, ValueOfA(lines)) << lines;
    }
    for (const std::string key :
         {"HKEY_CURRENT_USER\\Software]", "HKEY_LOCAL_MACHINE\\Software\\Tidewright\\core]", "damaged", "]"}) {
        EXPECT_EQ(std::nullopt, ValueOfA("[" + key + "\n\"a\"=dword:1\n")) << key;
    }
}

TEST(RegistryText, ReadsUtf16WithItsMarkAndUtf8WithAndWithoutIts) {
    const std::u16string text = u"Windows Registry Editor Version 5.00\r\n\r\n[" + kKey + u"]\r\n@=\"\u00E4\"\r\n";
    for (const std::string& form : {ToUtf8(text), ToUtf8(u"\uFEFF" + text), testing::Utf16Bytes(u"\uFEFF" + text, false),
                                    testing::Utf16Bytes(u"\uFEFF" + text, true)}) {
        RegistryText registry(form);
        EXPECT_EQ(StringValue(u"\u00E4"), registry.Find(kKey, u""));
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
    const struct {
        std::u16string key, name;
        std::string expected;
    } rows[] = {
        {kKey, u"A", before.substr(0, before.find("\"a\"=")) + "\"A\"=dword:00000002\n\n" + behind},
        {kKey, u"b", before.substr(0, before.size() - 1) + "\"b\"=dword:00000002\n\n" + behind},
        {u"U\\other", u"a", before + behind.substr(0, behind.find("dword:00000007")) + "dword:00000002 ; it\n\"gone\"=-"},
        {u"U\\other", u"gone", before + behind + "\n\"gone\"=dword:00000002\n"},
        {u"U\\New", u"", before + behind + "\n\n[U\\New]\n@=dword:00000002\n"},
        {u"U\\Gone", u"", before + behind + "\n\n[U\\Gone]\n@=dword:00000002\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(ToUtf8(row.key + u" " + row.name));
        RegistryText text(before + behind);
        text.Set(row.key, row.name, DwordValue(2));
        EXPECT_EQ(row.expected, text.Bytes());
        EXPECT_EQ(DwordValue(2), text.Find(row.key, row.name));
    }
}

TEST(RegistryText, TellsTheLineOfAValueThatCantBeRead) {
    const struct {
        std::string lines;  // the section is line 1
        std::size_t line;   // 0: none
    } rows[] = {
        {"\"a\"=dword:x\n", 2},
        {"\n\"b\"=\"x\ny\"\n\n \"A\"=dword:1x\n", 6},
        {"\"a\"=\"open\n", 2},
        {"\"a\" dword:1\n", 2},
        {" a = dword:1\n", 2},
        {"\"a\"=dword:1\n\"a\"=x", 3},
        {"\"a\"=x\n\"a\"=dword:1\n", 0},
        {"\"b\"=x\n;a=x\n[x]\n\"a\"=x\n", 0},
        {"\"a\"=x\n[-HKEY_CURRENT_USER\\Software]\n", 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.line, RegistryText(kSection + row.lines).DamagedLine(kKey, u"a").value_or(0)) << row.lines;
}

TEST(RegistryText, WrapsLongBytesAsTheRegistryEditorDoes) {
    RegistryText text(kSection);
    text.Set(kKey, u"a", {kRegistryBinary, std::vector<std::uint8_t>(49, 0x11)});
    const std::string five = "11,11,11,11,11,", twenty = five + five + five + five;
    EXPECT_EQ(kSection + "\"a\"=hex:" + twenty + "11,11,11,\\\n  " + twenty + five + "\\\n  11\n", text.Bytes());
}

TEST(RegistryText, SurvivesDamageAndLosesNothingByIt) {
    std::mt19937 random(1);
    const std::string whole = "Windows Registry Editor Version 5.00\r\n\r\n" + kSection +
                              "\"a\"=\"x\\\\y\\\"z\"\r\n@=hex(2):25,00,\\\r\n  00,00\r\n\"n\"=dword:0000000a\r\n[-" +
                              kSection.substr(1) + "\"g\"=-\r\n";
    for (int round = 0; round < 3000; ++round) {
        std::string bytes = whole.substr(0, random() % (whole.size() + 1));
        for (unsigned hits = random() % 5; hits > 0 && !bytes.empty(); --hits) {
            const std::size_t at = random() % bytes.size();
            static constexpr std::string_view kSigns = "\"\\[]=-@,:\r\n";
            bytes[at] = random() % 2 == 0 ? kSigns[random() % kSigns.size()] : static_cast<char>(random() % 0xFE);
        }
        if (bytes.empty()) continue;
        RegistryText text(bytes);
        ASSERT_EQ(bytes, text.Bytes());
        text.Set(kKey, u"a", DwordValue(round));
        ASSERT_EQ(DwordValue(round), RegistryText(text.Bytes()).Find(kKey, u"a")) << bytes;
    }
}

}  // namespace
}  // namespace twr
