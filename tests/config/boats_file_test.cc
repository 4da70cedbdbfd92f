#include <gtest/gtest.h>

#include <cstdio>

#include "config/config_files.h"

namespace twr::testing {
namespace {

class BoatsFileTest : public ConfigFilesTest {
protected:
    static constexpr std::size_t kBoats = 51012, kBoatSize = 80, kBoatsEnd = 59012;

    // "slot:name,mmsi,colour" of each boat that isn't as without a file.
    std::string Changes() const {
        std::string changes;
        for (int slot = 0; slot < 100; ++slot) {
            const std::size_t at = kBoats + kBoatSize * static_cast<std::size_t>(slot);
            EXPECT_EQ(32767, record.Get<std::int32_t>(at));
            EXPECT_EQ(0, record.Get<std::uint8_t>(at + 4));
            const std::string name = Text(at + 6, 32);
            const auto mmsi = record.Get<std::uint32_t>(at + 72), colour = record.Get<std::uint32_t>(at + 76);
            if (name == (slot == 0 ? "" : "Boat " + std::to_string(slot)) && mmsi == 0 && colour == 0x90EE90) continue;
            char numbers[40];
            std::snprintf(numbers, sizeof numbers, ",%u,%06X ", static_cast<unsigned>(mmsi), static_cast<unsigned>(colour));
            changes += std::to_string(slot) + ":" + name + numbers;
        }
        return changes;
    }

    // Nothing of an earlier load must shine through.
    void Scribble() {
        for (std::size_t at = kBoats; at < kBoatsEnd; at += kBoatSize) {
            record.Set(at + 6, u'?'), record.Set(at + 72, 77u), record.Set(at + 76, 0x123456u);
        }
    }
};

TEST_F(BoatsFileTest, TakesWhatCounts) {
    const struct {
        const char* what;
        const char* xml;
        const char* changes;
        bool loaded = true;
    } rows[] = {
        {"a whole boat", R"(<boats><boat id="7" name="Nimbus" mmsi="244123456" r="1" g="2" b="3"/></boats>)",
         "7:Nimbus,244123456,030201 "},
        {"the first and the last slot", R"(<boats><boat id="0" name="Own"/><boat id="99" name="Far"/></boats>)",
         "0:Own,0,90EE90 99:Far,0,90EE90 "},
        {"any case of letters", R"(<BOATS><Boat ID="7" NAME="Nimbus" Mmsi="5" R="0" G="0" B="0"/></BOATS>)", "7:Nimbus,5,000000 "},
        {"any depth, prefixes, other elements",
         R"(<n:boats xmlns:n="u"><club><n:boat n:id="7" name="A"/><yacht id="8" name="B"/></club></n:boats>)", "7:A,0,90EE90 "},
        {"unknown attributes and text", R"(<boats>boat<boat id="7" x="y" name="A" colour="1">id</boat></boats>)", "7:A,0,90EE90 "},
        {"slots out of range", R"(<boats><boat id="100" name="A"/><boat id="-1" name="B" mmsi="1" r="1"/></boats>)", ""},
        {"no id", R"(<boats><boat name="A" mmsi="1" r="1"/><boat/></boats>)", ""},
        {"an id without a number is 0", R"(<boats><boat id="abc" name="A"/></boats>)", "0:A,0,90EE90 "},
        {"an id with more behind it", R"(<boats><boat id=" 12abc" name="A"/></boats>)", "12:A,0,90EE90 "},
        {"an id too long for 32 bits", R"(<boats><boat id="4294967299" name="A"/></boats>)", ""},
        {"an empty id is no id", R"(<boats><boat id="" name="A"/></boats>)", ""},
        {"a second id", R"(<boats><boat id="7" name="A" ID="8" mmsi="3" r="0" g="0" b="0"/></boats>)",
         "7:A,0,90EE90 8:Boat 8,3,000000 "},
        {"a second id out of range", R"(<boats><boat id="7" name="A" ID="800" mmsi="3" r="0"/></boats>)", "7:A,0,90EE90 "},
        {"name and MMSI before the id", R"(<boats><boat name="A" mmsi="1" r="1" id="7"/></boats>)", "7:Boat 7,0,90EE01 "},
        {"empty values", R"(<boats><boat id="7" name="" mmsi="" r="" g="" b=""/></boats>)", ""},
        {"a long name", R"(<boats><boat id="7" name="0123456789012345678901234567890123456789"/></boats>)",
         "7:0123456789012345678901234567890,0,90EE90 "},
        {"low 8 bits of a colour", R"(<boats><boat id="7" r="300" g="-1" b="256"/></boats>)", "7:Boat 7,0,00FF2C "},
        {"a colour without numbers", R"(<boats><boat id="7" r="red" g="green" b="blue"/></boats>)", "7:Boat 7,0,000000 "},
        {"MMSIs",
         R"(<boats><boat id="1" mmsi="4294967295"/><boat id="2" mmsi="-1"/><boat id="3" mmsi="4294967299"/>)"
         R"(<boat id="4" mmsi="x"/><boat id="5" mmsi=" 12x"/></boats>)",
         "1:Boat 1,4294967295,90EE90 2:Boat 2,4294967295,90EE90 3:Boat 3,3,90EE90 5:Boat 5,12,90EE90 "},
        {"an MMSI that doesn't scan leaves the one before", R"(<boats><boat id="7" mmsi="5"/><boat id="7" mmsi="x"/></boats>)",
         "7:Boat 7,5,90EE90 "},
        {"later elements go over earlier ones", R"(<boats><boat id="7" name="A" r="0"/><boat id="7" mmsi="3"/></boats>)",
         "7:A,3,90EE90 "},
        {"no boats", R"(<boats/>)", ""},
        {"a root that is a boat", R"(<boat id="7" name="A"><boat id="8" name="B"/></boat>)", "", false},
        {"another root", R"(<fleet><boats><boat id="7" name="A"/></boats></fleet>)", "", false},
        {"no element", R"(<?xml version="1.0"?><!-- boats -->)", "", false},
        {"nothing", "", "", false},
        {"no XML", "7,Nimbus", "", false},
        {"a document type", R"(<!DOCTYPE boats []><boats><boat id="7" name="A"/></boats>)", "", false},
        {"a fault in the middle", R"(<boats><boat id="7" name="A"/><boat id="8" name="B"</boats>)", "7:A,0,90EE90 "},
        {"an attribute twice", R"(<boats><boat id="7" name="A"/><boat id="8" name="B" name="C"/></boats>)", "7:A,0,90EE90 "},
        {"an end that is missing", R"(<boats><boat id="7" name="A"/>)", "7:A,0,90EE90 "},
        {"a mark of UTF-8", "\xEF\xBB\xBF<boats><boat id='7' name='\xC3\x85'/></boats>", "7:\xC5,0,90EE90 "},
        {"Latin-1 by its declaration", "<?xml version='1.0' encoding='ISO-8859-1'?><boats><boat id='7' name='\xC5'/></boats>",
         "7:\xC5,0,90EE90 "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Write("boats.xml", row.xml);
        Attach();
        EXPECT_EQ(row.changes, Changes());
        Scribble();
        EXPECT_EQ(row.loaded, core->LoadBoatsFile());
        EXPECT_EQ(row.changes, Changes()) << "read again";
    }
}

TEST_F(BoatsFileTest, IsReadAsUtf16) {
    std::string bytes = "\xFF\xFE";
    for (const char c : std::string_view("<boats><boat id='7' name='A'/></boats>")) bytes += {c, '\0'};
    Write("boats.xml", bytes);
    Attach();
    EXPECT_EQ("7:A,0,90EE90 ", Changes());
}

TEST_F(BoatsFileTest, NoFileLeavesTheDefaults) {
    Attach();
    EXPECT_EQ("", Changes());
    EXPECT_FALSE(core->LoadBoatsFile());
}

TEST_F(BoatsFileTest, NoRecordNoBoats) {
    machine.memory.failCreate = true;
    Attach();
    EXPECT_FALSE(core->LoadBoatsFile());
    machine.desktop.boxes.clear();  // of the failed attachment
}

// Each boat whose tag is whole counts, wherever the file breaks off.
TEST_F(BoatsFileTest, CanBreakOffAnywhere) {
    const std::string_view xml = R"(<?xml version="1.0"?><boats><boat id="1" name="A" mmsi="1"/><boat id="2" name="B"/></boats>)";
    const std::size_t root = xml.find("<boats>") + 7, first = xml.find("/>") + 2, second = xml.rfind("/>") + 2;
    Attach();
    for (std::size_t length = 0; length <= xml.size(); ++length) {
        SCOPED_TRACE(xml.substr(0, length));
        Write("boats.xml", xml.substr(0, length));
        EXPECT_EQ(length >= root, core->LoadBoatsFile());
        EXPECT_EQ(length >= second ? "1:A,1,90EE90 2:B,0,90EE90 " : length >= first ? "1:A,1,90EE90 " : "", Changes());
    }
}

TEST_F(BoatsFileTest, DamageStaysWithinTheTable) {
    const std::string xml = R"(<boats><boat id="1" name="A" mmsi="1" r="9"/><club><boat id="99" name="B" b="1"/></club></boats>)";
    std::mt19937 random(1);
    Attach();
    const std::string rest = Without(kBoats, kBoatsEnd);
    for (int round = 0; round < 500; ++round) {
        const std::string damaged = Damaged(xml, random);
        SCOPED_TRACE(damaged);
        Write("boats.xml", damaged);
        core->LoadBoatsFile();
        Changes();  // checks that each name ends within its field
        ASSERT_EQ(rest, Without(kBoats, kBoatsEnd));
    }
}

}  // namespace
}  // namespace twr::testing
