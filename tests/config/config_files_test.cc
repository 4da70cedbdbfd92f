// What holds for the three files together.
#include "config/config_files.h"

#include <random>

namespace twr::testing {
namespace {

TEST_F(ConfigFilesTest, FilesAreReadByTheCreatorAloneWithOrWithoutARegistry) {
    Write("alternate.csv", "3,13,14,0,0,0,0,0,0,0\n");
    Write("boats.xml", "<boats><boat id='7' mmsi='5'/></boats>");
    Write("channels.xml", "<channels><channel id='1' prec='3'/></channels>");
    for (const bool unavailable : {false, true}) {
        machine.registry.unavailable = unavailable;
        Attach();
        EXPECT_EQ("3:1314------- 7:Boat 7,5,90ee90 1:prec=3, ", Told()) << unavailable;
    }
    record.Set(kAlternates, 5);
    const CCore second(machine.Services());
    EXPECT_EQ(5, record.I32(kAlternates));
}

TEST_F(ConfigFilesTest, WithoutFilesTheDefaultsComeBack) {
    Attach();
    record.Set(kAlternates, 5);
    record.Set(RecordBytes::Boat(0) + 6, u'x');
    record.Set(RecordBytes::Boat(7) + 72, std::uint64_t{5});  // MMSI 5 in black
    core->LoadAlternatesFile();
    EXPECT_FALSE(core->LoadBoatsFile());
    EXPECT_FALSE(core->LoadChannelsFile());
    EXPECT_EQ("", Told());
}

// The text with a few places changed, left out or doubled, or broken off.
std::string Damaged(std::string text, std::mt19937& random) {
    const std::string pool = "<>/=\"'&;!,\t\r\n 0179-xX\x80\xFF" + std::string(1, '\0') + text;
    for (std::size_t count = 1 + random() % 4; count > 0; --count) {
        const std::size_t at = random() % (text.size() + 1), from = random() % pool.size(),
                          gone = random() % 8 == 0 ? text.size() : random() % 5;
        text.replace(at, gone, pool.substr(from, random() % 2 == 0 ? 1 : random() % 20));
    }
    return text;
}

TEST_F(ConfigFilesTest, DamageStaysWithinItsTable) {
    const struct {
        const char* name;
        std::size_t begin, end;  // of the table in the record
        std::string text;
    } files[] = {
        {"alternate.csv", 5080, 5440,
         "10,1,2,3,4,5,6,7,8,9\n3,13,14,120,0,-1,6,7,8,9\r\n4\t1\t2 3 4 5 6 7 8\n0,413,412,0,0,0,0,0,0\n"},
        {"boats.xml", 51012, 59012,
         R"(<boats><boat id="1" name="A" mmsi="1" r="9"/><club><boat id="99" name="B" b="1"/></club><boat id="100" mmsi="2"/></boats>)"},
        {"channels.xml", 6300, 51012,
         R"(<channels><channel id="1" log="false" damp="1" prec="3"/><g><channel id="203" type="6" user="Keel"/></g></channels>)"},
    };
    std::mt19937 random(1);
    Attach();
    for (const auto& file : files) {
        const auto rest = [&] {
            const char* bytes = reinterpret_cast<const char*>(core->View());
            return std::string(bytes, file.begin) + std::string(bytes + file.end, RecordBytes::kSize - file.end);
        };
        const std::string before = rest();
        for (int round = 0; round < 400; ++round) {
            const std::string damaged = Damaged(file.text, random);
            SCOPED_TRACE(damaged);
            Write(file.name, damaged);
            core->LoadAlternatesFile();
            core->LoadBoatsFile();
            core->LoadChannelsFile();
            ASSERT_TRUE(before == rest());
            Told();  // which looks at each slot and at the end of each name
        }
    }
}

}  // namespace
}  // namespace twr::testing
