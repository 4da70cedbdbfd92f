#include "simulator/displays.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/fakes.h"

namespace twr::testing {
namespace {

constexpr std::u16string_view kFolder = u"/opt/deckman";

struct Displays : ::testing::Test {
    FakeMemory memory;
    std::optional<DisplayWriter> writer{std::in_place, memory, kFolder};
    DisplayReader reader{memory, kFolder};
};

TEST_F(Displays, ShowWhatWasSentLast) {
    writer->ShowValue(1, "7.25");
    writer->ShowName(1, "BSP");
    writer->ShowValue(32, "12.3");
    writer->ShowValue(32, "9");
    EXPECT_EQ("7.25", reader.Value(1).text);
    EXPECT_EQ("BSP", reader.Name(1).text);
    EXPECT_EQ("9", reader.Value(32).text);
    EXPECT_EQ(2U, reader.Value(32).updates);
    EXPECT_EQ("", reader.Value(2).text);
    EXPECT_EQ(0U, reader.Value(2).updates);
}

TEST_F(Displays, CutTextsAndIgnoreOtherRemotes) {
    writer->ShowValue(5, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    EXPECT_EQ("ABCDEFGHIJKLMNO", reader.Value(5).text);
    for (const std::int32_t remote : {0, -1, 33, INT32_MAX, INT32_MIN}) {
        writer->ShowValue(remote, "X");
        writer->ShowName(remote, "X");
        EXPECT_EQ("", reader.Value(remote).text) << remote;
    }
}

// A writer that ended in the middle of a text leaves an odd sequence and words without an end.
TEST_F(Displays, NeverShowMoreThanATextHolds) {
    const auto block = memory.OpenExisting(DisplayBlockName(kFolder), sizeof(DisplayBlock));
    auto* bytes = static_cast<char*>(block->Data());
    std::memset(bytes, 'Z', 40);
    bytes[0] = 7;
    EXPECT_EQ(std::string(15, 'Z'), reader.Value(1).text);
    EXPECT_EQ(std::string(15, 'Z'), reader.Name(1).text);
    writer->ShowValue(1, "1");
    EXPECT_EQ("1", reader.Value(1).text);
    EXPECT_EQ(0, bytes[0] % 2) << "whole again";
}

TEST_F(Displays, BeginEmptyWhenAViewerHasKeptTheBlock) {
    writer->ShowValue(3, "7.25");
    writer.reset();
    EXPECT_EQ("7.25", reader.Value(3).text);
    writer.emplace(memory, kFolder);
    EXPECT_EQ("", reader.Value(3).text);
}

TEST_F(Displays, DoWithoutMemory) {
    memory.failMap = true;
    DisplayWriter(memory, u"/unmapped").ShowValue(1, "X");
    memory.failCreate = true;
    DisplayWriter(memory, u"/missing").ShowValue(1, "X");
}

TEST(DisplayBlockName, FollowsTheFolder) {
    EXPECT_EQ(u"ShDfW2_cbf29ce484222325", DisplayBlockName(u""));
    EXPECT_EQ(u"ShDfW2_089be207b544f1e4", DisplayBlockName(u"a"));
    EXPECT_EQ(DisplayBlockName(kFolder), DisplayBlockName(u"/opt/deckman/"));
    EXPECT_NE(DisplayBlockName(u"\u0141"), DisplayBlockName(u"A"));
}

}  // namespace
}  // namespace twr::testing
