#include "platform/registry.h"

#include <gtest/gtest.h>

#include <utility>

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
    const std::u16string longest(511, u'x');
    const std::pair<RegistryValue, std::u16string> texts[] = {{StringValue(u"15.85"), u"15.85"},
                                                              {{kRegistryExpandString, {'%', 0, 0, 0}}, u"%"},
                                                              {{kRegistryString, {}}, u""},
                                                              {{kRegistryString, {'a', 0, 0, 0, 'b', 0, 0, 0}}, u"a"},
                                                              {StringValue(longest), longest}};
    for (const auto& [value, text] : texts) EXPECT_EQ(text, TextOf(value, 1024)) << ::testing::PrintToString(text);
    const std::optional<RegistryValue> noTexts[] = {std::nullopt, StringValue(longest + u'x'),
                                                    RegistryValue{kRegistryString, {'a', 0}},
                                                    RegistryValue{kRegistryString, {'a', 0, 0}}, DwordValue(0x80000001)};
    for (const auto& value : noTexts)
        EXPECT_EQ(std::nullopt, TextOf(value, 1024)) << ::testing::PrintToString(value ? value->data.size() : 0);
    EXPECT_EQ(0x80000001, DwordOf(DwordValue(0x80000001)));
    const std::optional<RegistryValue> noNumbers[] = {std::nullopt, StringValue(u"15"), RegistryValue{kRegistryDword, {1, 0, 0}},
                                                      RegistryValue{kRegistryBinary, {1, 0, 0, 0}}};
    for (const auto& value : noNumbers) EXPECT_EQ(std::nullopt, DwordOf(value)) << (value ? value->type : 0);
}

}  // namespace
}  // namespace twr
