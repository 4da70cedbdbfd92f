#include "mapping/variable_file.h"

#include "mapping/row_text.h"
#include "platform/paths.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

constexpr std::u16string_view kCopy = u"/data/jvars.twr";

// A Deckman folder of fakes; Put in the order in which the file system gives its files.
class VariableFileTest : public ::testing::Test {
protected:
    void Put(std::u16string_view name, std::string bytes, bool locked = false) {
        files.files.push_back({JoinPath(JoinPath(u"/dfw", u"Data"), name), std::move(bytes), locked});
    }

    // The rows found, each as the file gives it but for column 5, and then TIMER's number.
    std::string Found() {
        const DeckmanCatalogue catalogue = FindVariableFile(files, u"/dfw", kCopy);
        std::ostringstream told;
        for (const MappingVar& row : catalogue.rows) {
            EXPECT_EQ(kNoInt, row.channel);
            told << row.dfwId << " " << ToBytes(row.dfwName) << " " << ToBytes(row.dfwColumn3) << " " << row.dfwColumn4 << " "
                 << row.dfwColumn6 << ", ";
        }
        told << "timer " << catalogue.timerVariableId;
        return told.str();
    }

    std::string Parsed(std::string bytes) {
        files.files.clear();
        Put(u"J_vars06.d", std::move(bytes));
        return Found();
    }

    FakeFiles files;
};

TEST_F(VariableFileTest, ReadsTheSectionUpToItsEnd) {
    const std::string row1 = "1 BSP kt 1 2 3\n", row2 = "2 AWA d 4 5 6\n", one = "1 BSP kt 1 3, ", both = one + "2 AWA d 4 6, ";
    const struct {
        std::string bytes, told;
        int timer = -1;
    } rows[] = {
        {row1 + row2, both},
        {"\r\n1 BSP kt 1 2 3\r\n\r\n  2 AWA d 4 5 6\t\r\n", both},
        {row1 + "[other]\n" + row2, one},
        {row1 + "# a comment\n" + row2, one},
        {row1 + "2 AWA deg 4 5\n" + row2, one},
        {row1 + "\x1A\n" + row2, one},
        {row1 + std::string(5000, '7') + "\n" + row2, one},
        {row2 + row2 + row1, "2 AWA d 4 6, 2 AWA d 4 6, "},
        {"-1 BSP kt 1 2 3\n" + row1, ""},
        {"0 BSP kt 1 2 3 7 8 junk\n90 AWA deg 1 2 3", "0 BSP kt 1 3, 90 AWA deg 1 3, "},
        {"5 TIMER s 1 2 3\n6 AWA d 1 2 3\n7 TIMER s 1 2 3\n", "6 AWA d 1 3, ", 7},
        {"5 timer s 1 2 3\n", "5 timer s 1 3, "},
        {"7 D\xE9pth m 40000 5 -3 9\n", "7 D\xE9pth m -25536 -3, "},  // 16 bits with their sign
        {"5 ABCDEFGHIJKLMNO 1234567 1 2 3\n6 ABCDEFGHIJKLMNOP x 1 2 3\n", "5 ABCDEFGHIJKLMNO 1234567 1 3, "},
        {"5 ABCDEFGHIJKLMNOPQ 1 2 3 4\n", "5 ABCDEFGHIJKLMNO PQ 1 3, "},  // the rest of a name is column 3
        {"5 A 12345678 2 3 4\n", "5 A 1234567 8 3, "},
        {"5 A B C D E\n", ""},
        {std::string("1 B\0SP kt 1 2 3\n", 16) + row2, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.told + "timer " + std::to_string(row.timer), Parsed("[variables]\n" + row.bytes)) << row.bytes;
    }
}

TEST_F(VariableFileTest, FindsTheSection) {
    for (const std::string before : {"; notes\n[units]\n9 X y 1 1 1\n\n[variables]\n", " \t[variables]\v\f\r\n"}) {
        EXPECT_EQ("1 BSP kt 1 3, timer -1", Parsed(before + "1 BSP kt 1 2 3\n")) << before;
    }
    for (const std::string before : {"", "[Variables]\n", "[variables] \x01\n", "\uFEFF[variables]\n"}) {
        EXPECT_EQ("timer -1", Parsed(before + "1 BSP kt 1 2 3\n")) << before;
    }
}

TEST_F(VariableFileTest, AFileThatCantBeOpenedIsReadFromACopy) {
    Put(u"J_vars06.d", "[variables]\n1 BSP kt 1 2 3\n", true);
    files.files.push_back({std::u16string(kCopy), "an older copy"});
    EXPECT_EQ("1 BSP kt 1 3, timer -1", Found());
    EXPECT_FALSE(files.Exists(kCopy));
    files.copiesFail = true;
    files.removed.clear();
    EXPECT_EQ("timer -1", Found());
    EXPECT_FALSE(files.removed.empty()) << "removed even when the copying failed";
}

TEST_F(VariableFileTest, TheFirstFileWithRowsCounts) {
    const std::string good = "[variables]\n1 BSP kt 1 2 3\n", other = "[variables]\n2 AWA kt 1 2 3\n", empty = "[variables]\n";
    const std::string timerOnly = "[variables]\n3 TIMER s 1 2 3\n", goodFound = "1 BSP kt 1 3, timer -1";
    const struct {
        std::vector<std::pair<std::u16string, std::string>> put;
        std::string found;
    } rows[] = {
        {{{u"J_vars05.d", other}, {u"J_vars06.d", good}}, goodFound},
        {{{u"J_vars07.d", good}, {u"J_vars05.d", other}}, goodFound},
        {{{u"J_vars07.d", empty}, {u"J_vars06.d", empty}, {u"J_vars01.d", good}, {u"J_vars02.d", other}}, goodFound},
        {{{u"J_vars.d", good}}, goodFound},
        {{{u"J_var06.d", good}, {u"J_vars06.dat", good}}, "timer -1"},
        {{{u"J_vars06.d", timerOnly}, {u"J_vars08.d", good}}, goodFound},
        {{{u"J_vars06.d", timerOnly}}, "timer 3"},
        {{}, "timer -1"},
    };
    for (const auto& row : rows) {
        files.files.clear();
        for (const auto& [name, bytes] : row.put) Put(name, bytes);
        EXPECT_EQ(row.found, Found());
    }
}

}  // namespace
}  // namespace twr::testing
