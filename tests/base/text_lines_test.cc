#include "base/text_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace twr {
namespace {

// Gives its bytes a few at a time, so that every line end falls across a border once.
class Bytes final : public ByteSource {
public:
    Bytes(std::string_view bytes, std::size_t step) : rest_(bytes), step_(step) {}
    std::size_t Read(char* to, std::size_t room) override {
        const std::size_t count = rest_.copy(to, std::min(room, step_));
        rest_.remove_prefix(count);
        return count;
    }

private:
    std::string_view rest_;
    std::size_t step_;
};

TEST(TextLines, ReadsAsInTextMode) {
    using namespace std::string_literals;
    const std::string longLine(10000, 'x');  // than the buffer
    const std::string longest(kLongestLine, 'x');
    const struct {
        std::string bytes;
        std::vector<std::string> lines;
    } rows[] = {
        {"", {}},
        {"one\ntwo", {"one", "two"}},
        {"one\r\ntwo\r\n", {"one", "two"}},
        {"one\r\r\n", {"one\r"}},
        {"a\rb\n", {"a\rb"}},
        {"\n\nx\n", {"", "", "x"}},
        {"one\ntw\x1Ao\nthree\n", {"one", "tw"}},
        {"one\n\x1Atwo", {"one"}},
        {"a\0b\n"s, {"a\0b"s}},
        {"\xEF\xBB\xBF[x]\n", {"\xEF\xBB\xBF[x]"}},
        {longLine + "\r\nshort", {longLine, "short"}},
        {"one\n" + longest + "\n" + longest + "x\nthree\n", {"one", longest}},
    };
    for (const auto& row : rows) {
        for (const std::size_t step : {1u, 2u, 3u, 4096u}) {
            SCOPED_TRACE(::testing::Message() << ::testing::PrintToString(row.bytes) << " by " << step);
            Bytes source(row.bytes, step);
            TextLines text(source);
            std::vector<std::string> lines;
            for (std::string line; text.Next(line);) lines.push_back(line);
            EXPECT_EQ(row.lines, lines);
        }
    }
}

TEST(TextLines, ReadsNoFurtherThanAnyHonestFile) {
    // Endless.
    class Line final : public ByteSource {
    public:
        std::size_t Read(char* to, std::size_t room) override {
            std::fill_n(to, room, 'x');
            to[room - 1] = '\n';
            read += room;
            return room;
        }
        std::size_t read = 0;
    } source;
    TextLines text(source);
    for (std::string line; text.Next(line);) continue;
    EXPECT_EQ(kLargestFile, source.read);
}

}  // namespace
}  // namespace twr
