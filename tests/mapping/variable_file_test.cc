#include "mapping/variable_file.h"

#include <gtest/gtest.h>

#include "platform/paths.h"
#include "platform/wide_text.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

constexpr std::u16string_view kCopy = u"/data/jvars.twr";

// A Deckman folder of fakes; Put in the order in which the file system gives its files.
class VariableFileTest : public ::testing::Test {
protected:
    static std::u16string PathOf(std::u16string_view name) { return JoinPath(JoinPath(u"/dfw", u"Data"), name); }

    void PutFile(std::u16string_view name, std::string bytes, bool locked = false) {
        files.files.push_back({PathOf(name), std::move(bytes), locked});
    }

    // The rows of a catalogue as "number name", with TIMER's number at the end.
    static std::string Shown(const DeckmanCatalogue& catalogue) {
        std::string shown;
        for (const MappingVar& row : catalogue.rows) shown += std::to_string(row.dfwId) + " " + ToBytes(row.dfwName) + ", ";
        return shown + "timer " + std::to_string(catalogue.timerVariableId);
    }

    std::string Parsed(std::string bytes) {
        files.files.clear();
        PutFile(u"J_vars06.d", std::move(bytes));
        return Shown(ParseVariableFile(files, PathOf(u"J_vars06.d"), kCopy));
    }

    std::string Found() { return Shown(FindVariableFile(files, u"/dfw", kCopy)); }

    FakeFiles files;
};

TEST_F(VariableFileTest, ReadsTheSectionUpToItsEnd) {
    const std::string v = "[variables]\n";
    const std::string row1 = "1 BSP kt 1 2 3\n", row2 = "2 AWA deg 4 5 6\n";
    const struct {
        std::string bytes, shown;
    } rows[] = {
        {v + row1 + row2, "1 BSP, 2 AWA, timer -1"},
        {"[variables]\r\n1 BSP kt 1 2 3\r\n\r\n  2 AWA deg 4 5 6\t\r\n", "1 BSP, 2 AWA, timer -1"},
        {"; notes\n[units]\n9 X y 1 1 1\n\n" + v + row1, "1 BSP, timer -1"},
        {" \t[variables]\v\f\n" + row1, "1 BSP, timer -1"},
        {"[Variables]\n" + row1, "timer -1"},
        {"[variables] \x01\n" + row1, "timer -1"},
        {"\xEF\xBB\xBF" + v + row1, "timer -1"},
        {v + row1 + "[other]\n" + row2, "1 BSP, timer -1"},
        {v + row1 + "# a comment\n" + row2, "1 BSP, timer -1"},
        {v + row1 + "2 AWA deg 4 5\n" + row2, "1 BSP, timer -1"},
        {v + row2 + row1, "2 AWA, timer -1"},
        {v + row2 + row2, "2 AWA, 2 AWA, timer -1"},
        {v + "-1 BSP kt 1 2 3\n" + row1, "timer -1"},
        {v + "0 BSP kt 1 2 3 7 8 junk\n90 AWA deg 1 2 3", "0 BSP, 90 AWA, timer -1"},
        {v + "5 TIMER s 1 2 3\n" + "6 AWA d 1 2 3\n7 TIMER s 1 2 3\n", "6 AWA, timer 7"},
        {v + "5 timer s 1 2 3\n", "5 timer, timer -1"},
        {v + "5 ABCDEFGHIJKLMNO x 1 2 3\n6 ABCDEFGHIJKLMNOP x 1 2 3\n", "5 ABCDEFGHIJKLMNO, timer -1"},
        {v + "5 ABCDEFGHIJKLMNOPQ 1 2 3 4\n", "5 ABCDEFGHIJKLMNO, timer -1"},  // the rest of the name is column 3
        {v + "5 A 12345678 2 3 4\n", "5 A, timer -1"},
        {v + "5 A B C D E\n", "timer -1"},
        {v + row1 + "\x1A\n" + row2, "1 BSP, timer -1"},
        {v + std::string("1 B\0SP kt 1 2 3\n", 16) + row2, "timer -1"},
        {"", "timer -1"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.shown, Parsed(row.bytes)) << row.bytes;
}

TEST_F(VariableFileTest, KeepsTheColumns) {
    PutFile(u"J_vars06.d", "[variables]\n7 D\xE9pth m 40000 5 -3 9\n");
    const DeckmanCatalogue catalogue = ParseVariableFile(files, PathOf(u"J_vars06.d"), kCopy);
    ASSERT_EQ(1u, catalogue.rows.size());
    const MappingVar& row = catalogue.rows[0];
    EXPECT_EQ(u"D\u00E9pth", row.dfwName);
    EXPECT_EQ(u"m", row.dfwColumn3);
    EXPECT_EQ(40000 - 65536, row.dfwColumn4) << "16 bits with their sign";
    EXPECT_EQ(-3, row.dfwColumn6);
    EXPECT_EQ(kNoInt, row.channel);
    EXPECT_EQ(0, row.boat);
}

TEST_F(VariableFileTest, AFileThatCantBeOpenedIsReadFromACopy) {
    PutFile(u"J_vars06.d", "[variables]\n1 BSP kt 1 2 3\n", true);
    files.files.push_back({std::u16string(kCopy), "an older copy"});
    EXPECT_EQ("1 BSP, timer -1", Found());
    EXPECT_FALSE(files.Exists(kCopy));
    files.copiesFail = true;
    files.removed.clear();
    EXPECT_EQ("timer -1", Found());
    EXPECT_FALSE(files.removed.empty()) << "removed even when the copying failed";
}

TEST_F(VariableFileTest, TheFirstFileWithRowsCounts) {
    const std::string good = "[variables]\n1 BSP kt 1 2 3\n", other = "[variables]\n2 AWA kt 1 2 3\n", empty = "[variables]\n";
    const std::string timerOnly = "[variables]\n3 TIMER s 1 2 3\n";
    const struct {
        std::vector<std::pair<std::u16string, std::string>> put;
        std::string found;
    } rows[] = {
        {{{u"J_vars05.d", other}, {u"J_vars06.d", good}}, "1 BSP, timer -1"},
        {{{u"J_vars07.d", other}, {u"J_vars05.d", good}}, "2 AWA, timer -1"},
        {{{u"J_vars07.d", empty}, {u"J_vars06.d", empty}, {u"J_vars01.d", good}, {u"J_vars02.d", other}}, "1 BSP, timer -1"},
        {{{u"J_vars.d", good}}, "1 BSP, timer -1"},
        {{{u"J_var06.d", good}, {u"J_vars06.dat", good}}, "timer -1"},
        {{{u"J_vars06.d", timerOnly}, {u"J_vars08.d", good}}, "1 BSP, timer -1"},
        {{{u"J_vars06.d", timerOnly}}, "timer 3"},
        {{}, "timer -1"},
    };
    for (const auto& row : rows) {
        files.files.clear();
        for (const auto& [name, bytes] : row.put) PutFile(name, bytes);
        EXPECT_EQ(row.found, Found());
    }
}

TEST_F(VariableFileTest, RandomAndCutBytesDoNoHarm) {
    std::string bytes = "[variables]\n";
    std::uint32_t seed = 7;
    for (int i = 0; i < 3000; ++i) {
        seed = seed * 1664525 + 1013904223;
        const char usual[] = "0123456789 \t\n-AB[";
        bytes += seed >> 28 == 0 ? static_cast<char>(seed >> 20) : usual[(seed >> 8) % (sizeof usual - 1)];
    }
    for (std::size_t length = 0; length < bytes.size(); length += 37) Parsed(bytes.substr(0, length));
    EXPECT_EQ("1 BSP, timer -1", Parsed("[variables]\n1 BSP kt 1 2 3\n" + std::string(1 << 20, '7')));
}

}  // namespace
}  // namespace twr::testing
