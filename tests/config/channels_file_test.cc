#include "config/config_files.h"

namespace twr::testing {
namespace {

using ChannelsFileTest = ConfigFilesTest;

// Channel 1 is BSP, dampable and logged; 48 a latitude, not dampable; 172 to 203 are the user's. How elements are found in the file
// is tested with the boats.
TEST_F(ChannelsFileTest, TakesWhatCounts) {
    Check(
        "channels.xml", "channels",
        {
            {"any case of letters", R"(<Channel ID="1" LOG="FALSE" Damp="12" PREC="3"/>)", "1:log=0,prec=3,damp=12, "},
            {"a user channel", R"(<channel id="172" type="6" user="A" prec="2"/>)", "172:prec=2,type=6,user=A,short=A, "},
            {"the Time channel", R"(<channel id="0" log="false" damp="1"/>)", ""},
            {"the last channel", R"(<channel id="413" prec="3"/>)", "413:prec=3, "},
            {"no id, and one that stands last", R"(<channel prec="3"/><channel log="false" prec="3" damp="1" id="1"/>)", ""},
            {"a second id", R"(<channel id="1" prec="3" ID="2" damp="4"/>)", "1:prec=3, 2:damp=4, "},
            {"a second id out of range", R"(<channel id="1" prec="3" ID="999" damp="4"/>)", "1:prec=3, "},
            {"only false is false", R"(<channel id="2" log="False"/><channel id="384" log="no"/>)", "2:log=0, 384:log=1, "},
            {"damping where the channel takes none", R"(<channel id="48" damp="5"/>)", ""},
            {"damping in 16 bits", R"(<channel id="1" damp="65537"/><channel id="2" damp="-1"/>)", "1:damp=1, 2:damp=65535, "},
            {"damping without a number", R"(<channel id="1" damp="5"/><channel id="1" damp="x"/>)", ""},
            {"the most decimals", R"(<channel id="1" prec="254"/><channel id="2" prec="255"/>)", "1:prec=254, "},
            {"decimals out of range", R"(<channel id="1" prec="-1"/><channel id="1" prec="65539"/>)", ""},
            {"a type before the decimals", R"(<channel id="172" type="2" prec="9"/>)", "172:type=2, "},
            {"a type behind the decimals", R"(<channel id="172" prec="9" type="2"/>)", "172:prec=9,type=2, "},
            {"the last user channel's type", R"(<channel id="203" type="2" prec="9"/>)", "203:prec=9,type=2, "},
            {"types in 16 bits", R"(<channel id="172" type="65535"/><channel id="173" type="99"/>)", "172:type=-1, 173:type=99, "},
            {"other channels", R"(<channel id="171" type="6" user="A"/><channel id="204" type="6" user="B"/>)", ""},
            {"a long name", R"(<channel id="203" user="0123456789012345678901234567890123456789"/>)",
             "203:user=0123456789012345678901234567890,short=012345678901234, "},
            {"empty values", R"(<channel id="172" user="A" type="6"/><channel id="172" user="" type="" log="" damp="" prec=""/>)",
             "172:type=6,user=A,short=A, "},
            {"a fault in the middle", R"(<channel id="1" prec="3"/><channel id="2" prec=3/>)", "1:prec=3, "},
        });
    EXPECT_TRUE(core->LoadChannelsFile());
    Write("channels.xml", R"(<settings><channels><channel id="1" prec="3"/></channels></settings>)");
    EXPECT_FALSE(core->LoadChannelsFile());
    EXPECT_EQ("", Told());
}

// What is no channel, the alternating ones, and times, positions and sails, whose texts have a form of their own.
TEST_F(ChannelsFileTest, TakesNoDecimalsFor) {
    for (const char* id : {"0", "414", "-1", "x", "117", "126", "48", "49", "146", "204", "269"}) {
        Check("channels.xml", "channels", {{id, "<channel id='" + std::string(id) + "' prec='9'/>", ""}});
    }
}

TEST_F(ChannelsFileTest, ResetsAllButTheUsersChannelsAndTheTimeChannel) {
    Attach();
    for (const std::size_t channel : {0, 1, 172}) {
        const std::size_t row = RecordBytes::Channel(channel);
        record.Set(row + 3, std::uint8_t{7});
        for (const std::size_t field : {6, 8, 10}) record.Set(row + field, static_cast<std::uint16_t>(field));
        for (const std::size_t name : {12, 76}) record.Set(row + name, u'n');
    }
    core->LoadChannelsFile();
    EXPECT_EQ("0:log=7,prec=6,damp=8,type=10,user=n,short=n, 1:type=10,user=n,short=n, 172:type=10,user=n,short=n, ", Told());
}

}  // namespace
}  // namespace twr::testing
