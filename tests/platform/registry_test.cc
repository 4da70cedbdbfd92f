#include "platform/registry.h"

#include <gtest/gtest.h>

#include "support/test_system.h"

namespace twr {
namespace {

class RegistryTest : public ::testing::Test {
protected:
    const std::u16string key_ = u"Software\\Tidewright\\core";
    testing::TestSystem test_;
    Registry& registry_ = test_.system->Core().registry;
};

TEST_F(RegistryTest, GivesBackValuesOfEveryType) {
    const struct {
        std::u16string_view name;
        RegistryValue value;
    } rows[] = {
        {u"text", StringValue(u"C:\\Deckman \"quoted\" \u00E4\u20AC\xD83D\xDE00")},
        {u"ends in a backslash", StringValue(u"C:\\Deckman\\")},
        {u"of another machine", StringValue(u"\\\\chart\\Deckman")},
        {u"empty text", StringValue(u"")},
        {u"two lines", StringValue(u"one\r\n\"two\"=\\\n")},
        {u"no end", {kRegistryString, {'a', 0}}},
        {u"odd", {kRegistryString, {'a', 0, 'b'}}},
        {u"half a pair", {kRegistryString, {0, 0xD8, 0, 0}}},
        {u"no bytes", {kRegistryString, {}}},
        {u"expand", {kRegistryExpandString, {'%', 0, 0, 0}}},
        {u"number", DwordValue(0xFEDCBA98)},
        {u"short number", {kRegistryDword, {1, 2}}},
        {u"bytes", {kRegistryBinary, std::vector<std::uint8_t>(300, 0xA5)}},
        {u"other type", {11, {1, 2, 3, 4, 5, 6, 7, 8}}},
        {u"", StringValue(u"the default value")},
        {u"\"\\name\"", DwordValue(7)},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(registry_.Write(key_, row.name, row.value)) << ::testing::PrintToString(row.name);
    }
    for (const auto& row : rows) {
        EXPECT_EQ(row.value, registry_.Read(key_, row.name)) << ::testing::PrintToString(row.name);
    }
}

TEST_F(RegistryTest, HasNothingBeforeItIsWrittenAndThenUnderNamesInAnyCase) {
    EXPECT_EQ(std::nullopt, registry_.Read(key_, u"Sys_v0"));
    EXPECT_TRUE(registry_.OpenOrCreate(key_));
    EXPECT_TRUE(registry_.OpenOrCreate(key_));
    EXPECT_EQ(std::nullopt, registry_.Read(key_, u"Sys_v0"));
    ASSERT_TRUE(registry_.Write(key_, u"Sys_v0", StringValue(u"1")));
    EXPECT_EQ(std::nullopt, registry_.Read(u"Software\\Tidewright", u"Sys_v0"));
    ASSERT_TRUE(registry_.Write(u"SOFTWARE\\tidewright\\CORE", u"SYS_v0", StringValue(u"2")));
    EXPECT_EQ(StringValue(u"2"), registry_.Read(key_, u"Sys_v0"));
    EXPECT_EQ(StringValue(u"2"), registry_.Read(u"SOFTWARE\\tidewright\\CORE", u"sYS_V0"));
}

TEST(RegistryValues, CountByTypeAndForm) {
    constexpr auto kNone = std::nullopt;
    const std::u16string longest(511, u'x');
    const struct {
        std::optional<RegistryValue> value;
        std::optional<std::u16string> text;
        std::optional<std::uint32_t> number;
    } rows[] = {
        {kNone, kNone, kNone},
        {StringValue(u"15.85"), u"15.85", kNone},
        {RegistryValue{kRegistryExpandString, {'%', 0, 0, 0}}, u"%", kNone},
        {RegistryValue{kRegistryString, {}}, u"", kNone},
        {RegistryValue{kRegistryString, {'a', 0, 0, 0, 'b', 0, 0, 0}}, u"a", kNone},
        {RegistryValue{kRegistryString, {'a', 0}}, kNone, kNone},
        {RegistryValue{kRegistryString, {'a', 0, 0}}, kNone, kNone},
        {StringValue(longest), longest, kNone},
        {StringValue(longest + u'x'), kNone, kNone},
        {DwordValue(0x80000001), kNone, 0x80000001},
        {RegistryValue{kRegistryDword, {1, 0, 0}}, kNone, kNone},
        {RegistryValue{kRegistryBinary, {1, 0, 0, 0}}, kNone, kNone},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value ? ::testing::PrintToString(row.value->data) : "no value");
        EXPECT_EQ(row.text, TextOf(row.value, 1024));
        EXPECT_EQ(row.number, DwordOf(row.value));
    }
}

}  // namespace
}  // namespace twr
