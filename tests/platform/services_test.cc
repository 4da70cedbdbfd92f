// SPDX-License-Identifier: MIT
// The small services of a system: its clock, arguments, console, instance, libraries and registry.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <utility>

#include "platform/files.h"
#include "platform/held_output.h"
#include "platform/registry.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

using Arguments = std::vector<std::string>;

const int inThisProgram = 0;

// The main of the test programs gives a role what the system's arguments are.
const Role echo("echo arguments", [](const Arguments& arguments) {
    for (const std::string& argument : arguments) std::printf("%s\n", argument.c_str());
    return 0;
});

// More than any pipe takes, to a reader who does not read.
const Role unread("unread", [](const Arguments&) {
    int asked = 0;
    const Output output = MakeSystem({})->GetConsole().Write(std::string(1 << 20, 'x'), [&] { return ++asked < 2; });
    return output == Output::kGivenUp && asked == 2 ? 0 : 1;
});

const Role claim("claim", [](const Arguments& arguments) {
    const auto system = SystemOf(arguments);
    std::cout << (system->GetInstance().Claim(u"Halyrig") ? "claimed" : "refused") << std::endl;
    std::cin.get();
    return 0;
});

TEST(Clock, CountsTicksOf100NanosecondsSince1970) {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    constexpr std::chrono::milliseconds kGrain(16);  // of the coarsest clock of either system
    const TestSystem test;
    const auto before = std::chrono::system_clock::now();
    const Ticks ticks(test.system->Core().clock.Ticks());
    EXPECT_GE(ticks, before.time_since_epoch() - kGrain);
    EXPECT_LE(ticks, std::chrono::system_clock::now().time_since_epoch() + kGrain);
}

TEST(ProgramArguments, ComeInUtf8AndUndivided) {
    const Arguments given{"Gr\u00F6\u00DFe", "\u98A8", "Tm on S", "", R"(a\"b\)", "*"};
    const auto child = StartRole("echo arguments", given);
    for (const std::string& argument : given) EXPECT_EQ(argument, child->ReadLine());
}

TEST(Console, GivesUpOnOutputThatNobodyTakesAndTheProcessEnds) { EXPECT_EQ(0, StartRole("unread", {})->Wait()); }

TEST(Instance, IsOneUntilItsProcessHasGone) {
    const TestSystem test;
    const auto look = [&] { return test.system->GetInstance().Look(u"Halyrig").state; };
    EXPECT_EQ(NameLook::kFree, look());
    const auto first = StartRole("claim", test.Arguments());
    ASSERT_EQ("claimed", first->ReadLine());
    EXPECT_EQ(NameLook::kTaken, look());
    EXPECT_EQ("refused", StartRole("claim", test.Arguments())->ReadLine());
    EXPECT_FALSE(test.system->GetInstance().Claim(u"Halyrig"));
    EXPECT_TRUE(test.system->GetInstance().Claim(u"Other"));
    first->Kill();
    first->Wait();
    EXPECT_EQ(NameLook::kFree, look());
    EXPECT_EQ("claimed", StartRole("claim", test.Arguments())->ReadLine());
}

TEST(StatusBoard, ShowsWhatARunningProgramPosts) {
    const TestSystem test;
    StatusBoard& board = test.system->GetStatusBoard();
    EXPECT_EQ(nullptr, board.See(u"Halyrig", 8192));
    for (const char byte : {'a', 'b'}) {
        auto posted = board.Post(u"Halyrig", 8192);
        ASSERT_NE(nullptr, posted);
        char* const bytes = static_cast<char*>(posted->Data());
        EXPECT_EQ(8192, std::count(bytes, bytes + 8192, '\0')) << "nothing of an earlier run";
        bytes[8191] = byte;
        const auto seen = board.See(u"Halyrig", 8192);
        ASSERT_NE(nullptr, seen);
        EXPECT_EQ(byte, static_cast<const char*>(seen->Data())[8191]);
        EXPECT_EQ(nullptr, board.See(u"Halyrig", 1)) << "of another version";
        EXPECT_EQ(nullptr, board.See(u"Other", 8192));
    }
    EXPECT_EQ(nullptr, board.See(u"Halyrig", 8192));
}

TEST(Library, GivesItsExportsAndHarmsNothingWhereItIsNone) {
    const TestSystem test;
    const std::u16string path = JoinPath(ModuleFolder(&inThisProgram), u"loadable" + std::u16string(kLibrarySuffix));
    const auto library = test.system->GetLibraries().Load(path);
    ASSERT_NE(nullptr, library);
    void* const found = library->Find("Answer");
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(42, reinterpret_cast<int (*)()>(found)());
    EXPECT_EQ(nullptr, library->Find("answer"));
    EXPECT_EQ(ModuleFolder(&inThisProgram), ModuleFolder(found));
    EXPECT_EQ(u"", ModuleFolder(nullptr)) << "an address in no module";

    for (const auto& none : {std::u16string(), std::u16string(u"libc.so.6"),  // where the system would search for it
                             test.folder.Text(), test.folder.File("missing.so"), test.folder.Write("text.so", "no library\n")}) {
        EXPECT_EQ(nullptr, test.system->GetLibraries().Load(none)) << ::testing::PrintToString(none);
    }
    const std::string whole = BytesOf(path);
    for (std::size_t part = 0; part < 160; ++part) {
        // What is cut may be no more than what only a debugger reads, so some of these do load.
        const auto cut = test.folder.Write("cut" + std::to_string(part), whole.substr(0, whole.size() * part / 160));
        const auto loaded = test.system->GetLibraries().Load(cut);
        EXPECT_TRUE(!loaded || loaded->Find("Answer")) << part;
    }
}

struct RegistryTest : ::testing::Test {
    const std::u16string key_ = u"Software\\Tidewright\\core";
    testing::TestSystem test_;
    Registry& registry_ = test_.system->Core().registry;
};

TEST_F(RegistryTest, GivesBackValuesOfEveryType) {
    const std::pair<std::u16string_view, RegistryValue> rows[] = {
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
        {u"\"\\name\"", DwordValue(7)}};
    for (const auto& [name, value] : rows) EXPECT_TRUE(registry_.Write(key_, name, value)) << ::testing::PrintToString(name);
    for (const auto& [name, value] : rows) EXPECT_EQ(value, registry_.Read(key_, name)) << ::testing::PrintToString(name);
    auto names = registry_.Names(key_);
    ASSERT_EQ(std::size(rows), names.size());
    for (const auto& [name, value] : rows) EXPECT_NE(names.end(), std::ranges::find(names, name));
    EXPECT_TRUE(registry_.Names(u"Software\\Nobody").empty());
}

TEST_F(RegistryTest, HasNothingBeforeItIsWrittenAndThenUnderNamesInAnyCase) {
    EXPECT_TRUE(registry_.OpenOrCreate(key_));
    EXPECT_TRUE(registry_.OpenOrCreate(key_));
    EXPECT_EQ(std::nullopt, registry_.Read(key_, u"Sys_v0"));
    ASSERT_TRUE(registry_.Write(key_, u"Sys_v0", StringValue(u"1")));
    EXPECT_EQ(std::nullopt, registry_.Read(u"Software\\Tidewright", u"Sys_v0"));
    ASSERT_TRUE(registry_.Write(u"SOFTWARE\\tidewright\\CORE", u"SYS_v0", StringValue(u"2")));
    EXPECT_EQ(StringValue(u"2"), registry_.Read(u"SOFTWARE\\tidewright\\CORE", u"sYS_V0"));
}

TEST(HeldOutput, EachWriteIsRun) {
    int written = 0;
    for (int i = 0; i < 1000; ++i) {
        const Output result = RunWrite([&] { return ++written > 0 ? Output::kWritten : Output::kRefused; },
                                       [questions = 0]() mutable { return ++questions < 300; });
        ASSERT_EQ(Output::kWritten, result) << "of write " << i;
    }
    EXPECT_EQ(1000, written);
}

}  // namespace
}  // namespace twr::testing
