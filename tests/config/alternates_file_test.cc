#include <gtest/gtest.h>

#include "config/config_files.h"

namespace twr::testing {
namespace {

using namespace std::string_literals;

class AlternatesFileTest : public ConfigFilesTest {
protected:
    static constexpr std::size_t kTable = 5080, kTableEnd = 5440;

    // "row:slot,slot,..." of each row that isn't empty; an empty slot is a dash.
    std::string Table() const {
        std::string table;
        for (std::size_t row = 0; row < 10; ++row) {
            std::string slots;
            bool empty = true;
            for (std::size_t slot = 0; slot < 9; ++slot) {
                const auto channel = record.Get<std::int32_t>(kTable + 36 * row + 4 * slot);
                EXPECT_TRUE(channel == 32767 || (channel > 0 && channel < 414)) << channel;
                slots += channel == 32767 ? "-" : std::to_string(channel);
                empty = empty && channel == 32767;
            }
            if (!empty) table += std::to_string(row) + ":" + slots + " ";
        }
        return table;
    }

    void Scribble() {
        for (std::size_t at = kTable; at < kTableEnd; at += 4) record.Set(at, 5);
    }
};

TEST_F(AlternatesFileTest, TakesWhatCounts) {
    const std::string longLine = "3,13,14,0,0,0,0,0,0," + std::string(100000, '9') + "\n4,13,14,0,0,0,0,0,0,0\n";
    const struct {
        const char* what;
        std::string text;
        const char* table;
    } rows[] = {
        {"commas", "3,13,14,0,0,0,0,0,0,0\n", "3:1314------- "},
        {"tabs", "3\t13\t14\t0\t0\t0\t0\t0\t0\t0\n", "3:1314------- "},
        {"blanks", "3 13  14 0 0 0 0 0 0 0\n", "3:1314------- "},
        {"tabs and blanks", " 3 \t13 14\t\t0 0 0 0 0 0 0\n", "3:1314------- "},
        {"commas and blanks before the numbers", " 3, 13,\t14, 0, 0, 0, 0, 0, 0, 0\n", "3:1314------- "},
        {"blanks before the commas", "3 ,13 ,14 ,0 ,0 ,0 ,0 ,0 ,0 ,0\n", ""},
        {"semicolons", "3;13;14;0;0;0;0;0;0;0\n", ""},
        {"commas that end early", "3,13,14,0,0 0 0 0 0 0\n", ""},
        {"all slots and the rows' bounds", "0,1,2,3,4,5,6,7,8,9\n9,9,8,7,6,5,4,3,2,1\n", "0:123456789 9:987654321 "},
        {"eight fields", "3,13,14,0,0,0,0,0\n", ""},
        {"nine fields", "3,13,14,0,0,0,0,12\n3,13,14,0,0,0,0,0,12\n", "3:1314-----12- "},
        {"nine fields by blanks", "3 13 14 0 0 0 0 0 12\n", "3:1314-----12- "},
        {"more than ten fields", "3,1,2,3,4,5,6,7,8,9,10,11\n", "3:123456789 "},
        {"text behind the tenth field", "3,1,2,3,4,5,6,7,8,9 upwind\n", "3:123456789 "},
        {"text in the tenth field", "3,1,2,3,4,5,6,7,8,x\n", "3:12345678- "},
        {"text in an earlier field", "3,1,2,x,4,5,6,7,8,9\n", ""},
        {"rows out of range", "10,1,2,3,4,5,6,7,8,9\n-1,1,2,3,4,5,6,7,8,9\n99999999999999999999,1,2,3,4,5,6,7,8,9\n", ""},
        {"a row number beyond 32 bits", "4294967299,1,2,3,4,5,6,7,8,9\n", "3:123456789 "},
        {"values at their bounds", "3,414,413,1,0,-1,-2,32767,-32768,126\n", "3:-4131-----126 "},
        {"values beyond 16 bits", "3,65549,-65523,32768,65536,99999999999999999999,4294967309,0,0,0\n", "3:1313---13--- "},
        {"signs", "+3,+13,-14,0,0,0,0,0,0,0\n", "3:13-------- "},
        {"a fraction ends a field", "3,13.5,14,0,0,0,0,0,0,0\n", ""},
        {"an alternating channel", "3,120,0,0,0,0,0,0,0,0\n", "3:120-------- "},
        {"a later line keeps what it carries no value for", "3,1,2,3,4,5,6,7,8,9\n3,13,0,-1,414,0,0,0,0,20\n", "3:13234567820 "},
        {"comments", "!3,1,2,3,4,5,6,7,8,9\n! row, slots\n4,13,14,0,0,0,0,0,0,0\n", "4:1314------- "},
        {"a blank before the exclamation mark", " !3,1,2,3,4,5,6,7,8,9\n", ""},
        {"empty lines", "\n\n3,13,14,0,0,0,0,0,0,0\n\n", "3:1314------- "},
        {"line ends of Windows", "3,13,14,0,0,0,0,0,0,0\r\n\r\n4,13,14,0,0,0,0,0,0\r\n", "3:1314------- 4:1314------- "},
        {"no end of the last line", "3,13,14,0,0,0,0,0,0,0", "3:1314------- "},
        {"a mark spoils the first line",
         "\xEF\xBB\xBF"
         "3,13,14,0,0,0,0,0,0,0\n4,13,14,0,0,0,0,0,0,0\n",
         "4:1314------- "},
        {"a zero byte ends its line", "3,13,14,0,0,0,0,0\0,5,6\n4,13,14,0,0,0,0,0,0,0\n"s, "4:1314------- "},
        {"a line of any length", longLine, "3:1314------- 4:1314------- "},
        {"nothing", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Write("alternate.csv", row.text);
        Attach();
        EXPECT_EQ(row.table, Table());
        Scribble();
        core->LoadAlternatesFile();
        EXPECT_EQ(row.table, Table()) << "read again";
    }
}

TEST_F(AlternatesFileTest, NoFileLeavesTheTableEmpty) {
    Attach();
    Scribble();
    core->LoadAlternatesFile();
    EXPECT_EQ("", Table());
}

TEST_F(AlternatesFileTest, DamageAndBreakOffStayWithinTheTable) {
    const std::string text = "! row, slots\n3,13,14,120,0,-1,6,7,8,9\r\n4\t1\t2 3 4 5 6 7 8\n0,413,412,0,0,0,0,0,0\n";
    std::mt19937 random(3);
    Attach();
    const std::string rest = Without(kTable, kTableEnd);
    for (std::size_t round = 0; round < 1000; ++round) {
        const std::string damaged = round <= text.size() ? text.substr(0, round) : Damaged(text, random);
        SCOPED_TRACE(damaged);
        Write("alternate.csv", damaged);
        core->LoadAlternatesFile();
        Table();  // checks that each slot is empty or a channel
        ASSERT_EQ(rest, Without(kTable, kTableEnd));
    }
}

// All three files are read when the record is created, with or without the registry, and never again.
TEST_F(AlternatesFileTest, FilesAreReadByTheCreatorAlone) {
    Write("alternate.csv", "3,13,14,0,0,0,0,0,0,0\n");
    Write("boats.xml", "<boats><boat id='7' mmsi='5'/></boats>");
    Write("channels.xml", "<channels><channel id='1' prec='3'/></channels>");
    for (const bool unavailable : {false, true}) {
        SCOPED_TRACE(unavailable);
        machine.registry.unavailable = unavailable;
        Attach();
        EXPECT_EQ("3:1314------- ", Table());
        EXPECT_EQ(5u, record.Get<std::uint32_t>(51012 + 80 * 7 + 72));
        EXPECT_EQ(3, record.Get<std::uint16_t>(6300 + 108 + 6));
    }
    Scribble();
    const CCore second(machine.Services());
    EXPECT_EQ(5, record.Get<std::int32_t>(kTable));
}

}  // namespace
}  // namespace twr::testing
