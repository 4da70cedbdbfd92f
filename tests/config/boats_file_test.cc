#include "config/config_files.h"

namespace twr::testing {
namespace {

using BoatsFileTest = ConfigFilesTest;

TEST_F(BoatsFileTest, TakesWhatCounts) {
    Check("boats.xml", "Boats",
          {
              {"a whole boat", R"(<boat id="7" name="Nimbus" mmsi="244123456" r="1" g="2" b="3"/>)", "7:Nimbus,244123456,30201 "},
              {"the first and the last slot", R"(<boat id="0" name="A"/><boat id="99" name="B"/>)", "0:A,0,90ee90 99:B,0,90ee90 "},
              {"any case of letters", R"(<Boat ID="7" NAME="A" Mmsi="5" R="0" G="0" B="0"/>)", "7:A,5,0 "},
              {"any depth and prefix", R"(<club xmlns:n="u"><n:boat n:id="7" name="A"/></club>)", "7:A,0,90ee90 "},
              {"other elements, attributes and text", R"(A<boat x="y" id="7">B</boat><yacht id="8" name="B"/>)", ""},
              {"slots out of range", R"(<boat id="100" name="A"/><boat id="-1" name="B" mmsi="1" r="1"/>)", ""},
              {"no id or an empty one", R"(<boat name="A" mmsi="1" r="1"/><boat/><boat id="" name="A"/>)", ""},
              {"an id without a number is 0", R"(<boat id="abc" name="A"/>)", "0:A,0,90ee90 "},
              {"a second id", R"(<boat id="7" name="A" ID="8" mmsi="3" r="0"/>)", "7:A,0,90ee90 8:Boat 8,3,90ee00 "},
              {"a second id out of range", R"(<boat id="7" name="A" ID="800" mmsi="3" r="0"/>)", "7:A,0,90ee90 "},
              {"name and MMSI before the id", R"(<boat name="A" mmsi="1" r="1" id="7"/>)", "7:Boat 7,0,90ee01 "},
              {"empty values", R"(<boat id="7" name="" mmsi="" r="" g="" b=""/>)", ""},
              {"a long name", R"(<boat id="7" name="0123456789012345678901234567890123456789"/>)",
               "7:0123456789012345678901234567890,0,90ee90 "},
              {"low 8 bits of a colour", R"(<boat id="7" r="300" g="-1" b="256"/>)", "7:Boat 7,0,ff2c "},
              {"a colour without numbers", R"(<boat id="7" r="red" g="green" b="blue"/>)", "7:Boat 7,0,0 "},
              {"the greatest MMSI", R"(<boat id="7" mmsi="4294967295"/>)", "7:Boat 7,4294967295,90ee90 "},
              {"an MMSI without a number", R"(<boat id="7" mmsi="5"/><boat id="7" mmsi="x"/>)", "7:Boat 7,5,90ee90 "},
              {"later elements go over earlier ones", R"(<boat id="7" name="A" r="0"/><boat id="7" mmsi="3"/>)", "7:A,3,90ee90 "},
              {"a fault in the middle", R"(<boat id="7" name="A"/><boat id="8" name="B")", "7:A,0,90ee90 "},
              {"nothing", "", ""},
          });
    EXPECT_TRUE(core->LoadBoatsFile());
}

TEST_F(BoatsFileTest, NeedsARootOfItsName) {
    Attach();
    for (const char* xml :
         {R"(<boat id="7" name="A"><boat id="8" name="B"/></boat>)", R"(<fleet><boats><boat id="7" name="A"/></boats></fleet>)",
          R"(<?xml version="1.0"?><!-- boats -->)", R"(<!DOCTYPE boats []><boats><boat id="7" name="A"/></boats>)", ""}) {
        Write("boats.xml", xml);
        EXPECT_FALSE(core->LoadBoatsFile()) << xml;
        EXPECT_EQ("", Told()) << xml;
    }
}

}  // namespace
}  // namespace twr::testing
