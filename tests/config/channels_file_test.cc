#include <gtest/gtest.h>

#include "config/config_files.h"

namespace twr::testing {
namespace {

class ChannelsFileTest : public ConfigFilesTest {
protected:
    static constexpr std::size_t kRows = 6300, kRowSize = 108, kRowsEnd = 51012;

    static std::size_t Row(std::size_t channel) { return kRows + kRowSize * channel; }

    // "channel:field=value,..." of each channel that isn't as without a file.
    std::string Changes() const {
        std::string changes;
        for (std::size_t channel = 0; channel < kChannelCount; ++channel) {
            const ChannelInfo& info = ChannelCatalogue()[channel];
            const std::size_t at = Row(channel);
            std::string row;
            const auto number = [&](const char* name, int usual, int value) {
                if (value != usual) row += std::string(name) + "=" + std::to_string(value) + ",";
            };
            const auto text = [&](const char* name, const std::string& value) {
                if (!value.empty()) row += std::string(name) + "=" + value + ",";
            };
            for (const std::size_t flag : {0, 1, 2, 4}) number("flag", 0, record.Get<std::uint8_t>(at + flag));
            number("log", info.logDefault, record.Get<std::uint8_t>(at + 3));
            number("prec", info.prec, record.Get<std::uint16_t>(at + 6));
            number("damp", 0, record.Get<std::uint16_t>(at + 8));
            number("type", 0, record.Get<std::int16_t>(at + 10));
            text("user", Text(at + 12, 32));
            text("short", Text(at + 76, 16));
            if (!row.empty()) changes += std::to_string(channel) + ":" + row + " ";
        }
        return changes;
    }
};

// Channels of the rows: 1 is BSP, dampable and logged; 48 a latitude, not dampable; 120 an alternating one; 172 to 203 the user's.
TEST_F(ChannelsFileTest, TakesWhatCounts) {
    const struct {
        const char* what;
        const char* xml;
        const char* changes;
        bool loaded = true;
    } rows[] = {
        {"a plain channel", R"(<channels><channel id="1" log="false" damp="12" prec="3"/></channels>)", "1:log=0,prec=3,damp=12, "},
        {"a user channel", R"(<channels><channel id="172" type="6" user="Keel" prec="2"/></channels>)",
         "172:prec=2,type=6,user=Keel,short=Keel, "},
        {"any case of letters", R"(<CHANNELS><Channel ID="1" LOG="FALSE" Damp="12" PREC="3"/></CHANNELS>)",
         "1:log=0,prec=3,damp=12, "},
        {"any depth, prefixes, other elements",
         R"(<n:channels xmlns:n="u"><g><n:channel n:id="1" prec="3"/><chan id="2" prec="3"/></g></n:channels>)", "1:prec=3, "},
        {"ids out of range",
         R"(<channels><channel id="0" log="false"/><channel id="414" prec="3"/><channel id="-1" prec="3"/></channels>)", ""},
        {"the last channel", R"(<channels><channel id="413" prec="3"/></channels>)", "413:prec=3, "},
        {"no id, an empty one, none that is a number",
         R"(<channels><channel prec="3"/><channel id="" prec="3"/><channel id="x" prec="3"/><channel/></channels>)", ""},
        {"an id that stands last", R"(<channels><channel log="false" prec="3" damp="1" id="1"/></channels>)", ""},
        {"a second id", R"(<channels><channel id="1" prec="3" ID="2" damp="4"/></channels>)", "1:prec=3, 2:damp=4, "},
        {"a second id out of range", R"(<channels><channel id="1" prec="3" ID="999" damp="4"/></channels>)", "1:prec=3, "},
        {"only false is false",
         R"(<channels><channel id="1" log="no"/><channel id="384" log="no"/><channel id="2" log="False"/></channels>)",
         "2:log=0, 384:log=1, "},
        {"damping where the channel takes none", R"(<channels><channel id="48" damp="5"/></channels>)", ""},
        {"damping in 16 bits",
         R"(<channels><channel id="1" damp="65537"/><channel id="2" damp="-1"/><channel id="3" damp="x"/></channels>)",
         "1:damp=1, 2:damp=65535, "},
        {"decimals at their bounds",
         R"(<channels><channel id="1" prec="254"/><channel id="2" prec="255"/><channel id="3" prec="-1"/><channel id="4" prec="x"/>)"
         R"(<channel id="5" prec="65539"/><channel id="6" prec="4294967299"/></channels>)",
         "1:prec=254, "},
        {"decimals of an alternating channel", R"(<channels><channel id="120" prec="3"/></channels>)", ""},
        {"decimals of times, positions and sails",
         R"(<channels><channel id="48" prec="9"/><channel id="49" prec="9"/><channel id="146" prec="9"/><channel id="204" prec="9"/>)"
         R"(<channel id="269" prec="9"/></channels>)",
         ""},
        {"a type before the decimals", R"(<channels><channel id="172" type="2" prec="9"/></channels>)", "172:type=2, "},
        {"the last user channel keeps the catalogue's type",
         R"(<channels><channel id="203" type="2" user="Z" prec="9"/></channels>)", "203:prec=9,type=2,user=Z,short=Z, "},
        {"types in 16 bits",
         R"(<channels><channel id="172" type="65535"/><channel id="173" type="99"/><channel id="174" type="32768"/></channels>)",
         "172:type=-1, 173:type=99, 174:type=-32768, "},
        {"type and name of other channels",
         R"(<channels><channel id="171" type="6" user="A"/><channel id="204" type="6" user="B"/></channels>)", ""},
        {"a long name", R"(<channels><channel id="172" user="0123456789012345678901234567890123456789"/></channels>)",
         "172:user=0123456789012345678901234567890,short=012345678901234, "},
        {"empty values are passed over",
         R"(<channels><channel id="172" user="A" type="6"/><channel id="172" user="" type="" log="" damp="" prec=""/></channels>)",
         "172:type=6,user=A,short=A, "},
        {"no channels", "<channels/>", ""},
        {"a root that is a channel", R"(<channel id="1" prec="3"><channel id="2" prec="3"/></channel>)", "", false},
        {"another root", R"(<settings><channels><channel id="1" prec="3"/></channels></settings>)", "", false},
        {"nothing", "", "", false},
        {"a document type", R"(<!DOCTYPE channels []><channels><channel id="1" prec="3"/></channels>)", "", false},
        {"a fault in the middle", R"(<channels><channel id="1" prec="3"/><channel id="2" prec=3/></channels>)", "1:prec=3, "},
        {"a wrong end", R"(<channels><channel id="1" prec="3"></channels><channel id="2" prec="3"/>)", "1:prec=3, "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Write("channels.xml", row.xml);
        Attach();
        EXPECT_EQ(row.changes, Changes());
        EXPECT_EQ(row.loaded, core->LoadChannelsFile());
        EXPECT_EQ(row.changes, Changes()) << "read again";
    }
}

TEST_F(ChannelsFileTest, DecimalsGoByTheTypeOfTheMoment) {
    Write("channels.xml", R"(<channels><channel id="172" prec="9" type="2"/></channels>)");
    Attach();
    EXPECT_EQ("172:prec=9,type=2, ", Changes()) << "still a plain number when its decimals come";
    core->LoadChannelsFile();
    EXPECT_EQ("172:type=2, ", Changes()) << "a duration from the first reading";
}

TEST_F(ChannelsFileTest, NoFileLeavesTheDefaults) {
    Attach();
    EXPECT_EQ("", Changes());
    EXPECT_FALSE(core->LoadChannelsFile());
}

TEST_F(ChannelsFileTest, ResetsAllButTheUsersChannelsAndTheTimeChannel) {
    Attach();
    for (const std::size_t channel : {0, 1, 172}) {
        record.Set(Row(channel) + 3, std::uint8_t{7});
        record.Set(Row(channel) + 6, std::uint16_t{8});
        record.Set(Row(channel) + 8, std::uint16_t{9});
        record.Set(Row(channel) + 10, std::int16_t{6});
        record.Set(Row(channel) + 12, u'u');
        record.Set(Row(channel) + 76, u's');
    }
    core->LoadChannelsFile();
    EXPECT_EQ("0:log=7,prec=8,damp=9,type=6,user=u,short=s, 1:type=6,user=u,short=s, 172:type=6,user=u,short=s, ", Changes());
}

TEST_F(ChannelsFileTest, NoRecordNoChannels) {
    machine.memory.failCreate = true;
    Attach();
    EXPECT_FALSE(core->LoadChannelsFile());
    machine.desktop.boxes.clear();  // of the failed attachment
}

// Each channel whose tag is whole counts, wherever the file breaks off.
TEST_F(ChannelsFileTest, CanBreakOffAnywhere) {
    const std::string_view xml = R"(<channels><channel id="1" prec="3"/><channel id="2" prec="4"></channel></channels>)";
    const std::size_t root = xml.find('>') + 1, first = xml.find("/>") + 2, second = xml.find("></") + 1;
    Attach();
    for (std::size_t length = 0; length <= xml.size(); ++length) {
        SCOPED_TRACE(xml.substr(0, length));
        Write("channels.xml", xml.substr(0, length));
        EXPECT_EQ(length >= root, core->LoadChannelsFile());
        EXPECT_EQ(length >= second ? "1:prec=3, 2:prec=4, " : length >= first ? "1:prec=3, " : "", Changes());
    }
}

TEST_F(ChannelsFileTest, DamageStaysWithinTheTable) {
    const std::string xml =
        R"(<channels><channel id="1" log="false" damp="1" prec="3"/><g><channel id="203" type="6" user="Keel"/></g></channels>)";
    std::mt19937 random(2);
    Attach();
    const std::string rest = Without(kRows, kRowsEnd);
    for (int round = 0; round < 500; ++round) {
        const std::string damaged = Damaged(xml, random);
        SCOPED_TRACE(damaged);
        Write("channels.xml", damaged);
        core->LoadChannelsFile();
        for (std::size_t channel = 0; channel < kChannelCount; ++channel)
            ASSERT_LE(record.Get<std::uint16_t>(Row(channel) + 6), 255);
        Changes();  // checks that each name ends within its field
        ASSERT_EQ(rest, Without(kRows, kRowsEnd));
    }
}

}  // namespace
}  // namespace twr::testing
