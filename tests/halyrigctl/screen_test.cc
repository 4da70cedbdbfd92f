#include "halyrigctl/screen.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace twr::testing {
namespace {

// The lines that a terminal shows.
std::vector<std::string> Lines(const std::string& screen) {
    std::vector<std::string> lines(1);
    for (std::size_t i = 0; i < screen.size(); ++i) {
        if (screen[i] == '\n') {
            lines.emplace_back();
        } else if (screen[i] == '\x1b') {
            i = screen.find_first_of("HJKm", i);
        } else {
            lines.back() += screen[i];
        }
    }
    lines.pop_back();
    return lines;
}

TEST(DrawScreen, FitsItsTerminalAndTellsWhatDoesNot) {
    const std::vector<ChannelLine> channels(27, {172, "Jib lead positi", "7.25", "kt", 0.1, true});
    std::vector<RemoteLine> remotes;
    for (int number = 1; number <= 12; ++number) remotes.push_back({number, "6.37", "BSP"});
    const std::tuple<int, int, std::vector<const char*>, const char*> sizes[] = {
        {130, 24, {"\u256D 12 ", "6 more; enlarge", "172  Jib lead positi             7.25 kt         0.1 s  "}, "more displays"},
        {80, 24, {"kt         0.1 s    1 BSP      6.37", " 12 BSP ", "6 more; enlarge"}, "more displays"},
        {80, 10, {" 7 BSP ", "5 more displays", "20 more; enlarge"}, " 8 BSP"},
        {60, 24, {" 1 BSP      6.37       2 BSP      6.37", "12 BSP", "13 more; enlarge"}, "more displays"},
        {60, 44, {"\u256D 12 ", "       0.1 s"}, "more"},
        {40, 10, {" 2 BSP", "10 more displays", "24 more; enl"}, " 3 BSP"},
        {30, 4, {"12 more displays"}, "172"},
        {5, 3, {"12 m"}, "172"},
        {65535, 65535, {"\u256D 12 "}, "more"}};
    for (const auto& [columns, rows, shown, absent] : sizes) {
        SCOPED_TRACE(::testing::Message() << columns << "x" << rows);
        std::string joined;
        for (const auto& line : Lines(DrawScreen(channels, remotes, ConsoleSize{columns, rows}))) {
            EXPECT_LT(WidthOf(line), static_cast<std::size_t>(columns)) << line;
            joined += line + '\n';
        }
        EXPECT_EQ(std::clamp(rows - 1, 3, 1000), std::ranges::count(joined, '\n'));
        for (const char* part : shown) EXPECT_NE(joined.npos, joined.find(part)) << part << "\nis not in\n" << joined;
        EXPECT_EQ(std::string::npos, joined.find(absent)) << joined;
    }
}

}  // namespace
}  // namespace twr::testing
