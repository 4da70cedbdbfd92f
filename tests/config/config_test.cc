// SPDX-License-Identifier: MIT
// The suite's configuration files, its folders and the paths it shares. Files and XML are the system's own, all else is fake.

#include "base/wide_text.h"
#include "platform/files.h"
#include "support/core_fixture.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

using namespace std::string_literals;

// Numbers of 1, 2 or 4 bytes, or a text, at an offset in each row of a table of the record.
using Field = std::pair<std::size_t, std::size_t>;
constexpr std::size_t kText = 0;

// Each by its first row, the step from row to row, and their number. Behind the rows of the alternates and boats stands one more,
// which no file may touch.
const std::tuple<std::size_t, std::size_t, std::size_t, std::vector<Field>> kTables[] = {
    {5080, 36, 11, {{0, 4}, {4, 4}, {8, 4}, {12, 4}, {16, 4}, {20, 4}, {24, 4}, {28, 4}, {32, 4}}},  // alternates
    {51012, 80, 101, {{6, kText}, {72, 4}, {76, 1}, {77, 1}, {78, 1}, {79, 1}}},                     // boats: name, MMSI, colour
    {6300, 108, 414, {{3, 1}, {6, 2}, {8, 2}, {10, 2}, {12, kText}, {76, kText}}},  // channels: log, prec, damp, type, names
};

std::string Cell(const RecordBytes& record, std::size_t at, std::size_t size) {
    if (size == kText) return "'" + ToBytes(record.Text(at)) + "'";
    return std::to_string(size == 1 ? record.U8(at) : size == 2 ? record.Get<std::uint16_t>(at) : record.Get<std::uint32_t>(at));
}

struct ConfigTest : CoreTest {
    ConfigTest() { Write("keep", ""); }
    void TearDown() override { EXPECT_TRUE(machine.desktop.boxes.empty()) << "configuration is read in silence"; }

    void Write(const std::string& name, std::string_view bytes) {
        real_.folder.Write("ProgramData/Tidewright/config/" + name, bytes);
    }

    // Attaches as the first program of the suite, which reads the files.
    void Attach() {
        core.reset();
        const CoreServices real = real_.system->Core();
        core = std::make_unique<CCore>(CoreServices{machine.clock, machine.zone, machine.memory, machine.registry, real.files,
                                                    real.xml, machine.desktop, &heard});
        record = RecordBytes(core->View());
    }

    // "row:field,field,..." of each row of the tables that isn't as it is without a file; only what differs stands in its field.
    std::string Told() {
        std::string told;
        for (const auto& [begin, step, count, fields] : kTables) {
            for (std::size_t row = 0; row < count; ++row) {
                std::string cells, kept;
                for (const auto& [offset, size] : fields) {
                    const std::size_t at = begin + step * row + offset;
                    const std::string cell = Cell(record, at, size);
                    if (cell != Cell(RecordBytes(usual_.data()), at, size)) kept = cells += cell;
                    cells += ",";
                }
                if (!kept.empty()) told += std::to_string(row) + ":" + kept + " ";
            }
        }
        return told;
    }

    using Row = std::pair<std::string, const char*>;  // the content of a file, and what is told then

    // Attaches again with each content of a file, for XML within its root.
    void Check(const std::string& file, const std::string& root, std::span<const Row> rows) {
        for (const auto& [content, told] : rows) {
            Write(file, root.empty() ? content : "<" + root + ">" + content + "</" + root + ">");
            Attach();
            EXPECT_EQ(told, Told()) << content;
        }
    }

    CollectedFindings heard;

private:
    std::string usual_{reinterpret_cast<const char*>(core->View()), RecordBytes::kSize};
    TestSystem real_;
};

TEST_F(ConfigTest, AlternatesTakeWhatCounts) {
    const Row rows[] = {
        {"3,13,14,0,0,0,0,0,0,0\n4, 13,\t14, 0, 0, 0, 0, 0, 0, 0\r\n 5 \t13 14\t\t0 0 0 0 0 0 0", "3:13,14 4:13,14 5:13,14 "},
        {"3 ,13 ,14 ,0 ,0 ,0 ,0 ,0 ,0 ,0\n4,13,14,0,0 0 0 0 0 0\n5,1,2,x,4,5,6,7,8,9\n6,13.5,14,0,0,0,0,0,0,0", ""},
        {"0,1,2,3,4,5,6,7,8,9\n9,9,8,7,6,5,4,3,2,1\n", "0:1,2,3,4,5,6,7,8,9 9:9,8,7,6,5,4,3,2,1 "},
        {"3,13,14,0,0,0,0,12\n4,13,0,0,0,0,0,0,12\n5 13 0 0 0 0 0 0 12", "4:13,,,,,,,12 5:13,,,,,,,12 "},
        {"3,1,2,3,4,5,6,7,8,9,10 upwind\n4,1,2,3,4,5,6,7,8,x\n", "3:1,2,3,4,5,6,7,8,9 4:1,2,3,4,5,6,7,8 "},
        {"10,1 1 1 1 1 1 1 1 1\n10,1,1,1,1,1,1,1,1,1\n-1,1,1,1,1,1,1,1,1,1\n99999999999999999999,1,1,1,1,1,1,1,1,1\n", ""},
        {"4294967299,1,0,0,0,0,0,0,0,0\n4,65549,-65523,32768,65536,99999999999999999999,4294967309,0,0,0", "3:1 4:13,13,,,,13 "},
        {"3,414,413,1,0,-1,-2,32767,-32768,126\n+4,+13,-14,0,0,0,0,0,0,0\n", "3:,413,1,,,,,,126 4:13 "},
        {"3,1,2,3,4,5,6,7,8,9\n3,13,0,-1,414,0,0,0,0,20\n", "3:13,2,3,4,5,6,7,8,20 "},
        {"!3,1,2,3,4,5,6,7,8,9\n\n !4,1,2,3,4,5,6,7,8,9\n\uFEFF5,1,2,3,4,5,6,7,8,9\n6,13,14,0,0,0,0,0,0,0\r\n", "6:13,14 "},
        {"3,13,14,0,0,0,0,0,0\0,5,6\n4,13,14,0,0,0,0,0\0,5,6"s, "3:13,14 "}};
    Check("alternate.csv", "", rows);
}

TEST_F(ConfigTest, BoatsTakeWhatCounts) {
    const Row rows[] = {
        {"<boat id='7' name='Nimbus' mmsi='244123456' r='1' g='2' b='3'/>", "7:'Nimbus',244123456,1,2,3 "},
        {"A<Boat ID='0' NAME='A' Mmsi='4294967295'/>B<boat id='99' r='300' g='-1' b='256'/>", "0:'A',4294967295 99:,,44,255,0 "},
        {"<club xmlns:n='u'><n:boat n:id='7' x='y' name='A'/><yacht id='8' name='B'/></club>", "7:'A' "},
        {"<boat id='100' name='A'/><boat id='-1' mmsi='1' r='1'/><boat name='A' r='1'/><boat id='' name='A'/>", ""},
        {"<boat id='abc' name='A' r='red' mmsi='x'/>", "0:'A',,0 "},
        {"<boat id='7' name='A' ID='8' mmsi='3'/><boat id='9' name='A' ID='800' mmsi='3' r='0'/>", "7:'A' 8:,3 9:'A' "},
        {"<boat name='A' mmsi='1' r='1' id='7'/>", "7:,,1 "},
        {"<boat id='7' name='' mmsi='' r='' g='' b=''/>", ""},
        {"<boat id='7' name='0123456789012345678901234567890123456789'/>", "7:'0123456789012345678901234567890' "},
        {"<boat id='7' name='A' mmsi='5' r='1'/><boat id='7' mmsi='x'/>", "7:'A',5 "},
        {"<boat id='7' name='A'/><boat id='8' name='B'", "7:'A' "}};
    Check("boats.xml", "Boats", rows);
    EXPECT_TRUE(core->LoadBoatsFile());
    Write("boats.xml", "<boat id='7' name='A'><boat id='8' name='B'/></boat>");
    EXPECT_FALSE(core->LoadBoatsFile());
    EXPECT_EQ("", Told());
}

// Channel 1 is BSP, dampable and logged; 48 a latitude, not dampable; 172 to 203 are the user's.
TEST_F(ConfigTest, ChannelsTakeWhatCounts) {
    // What is no channel, the alternating ones, and times, positions and sails, whose texts have a form of their own.
    std::string noDecimals;
    for (const char* id : {"0", "414", "-1", "x", "117", "126", "48", "49", "146", "204", "269"})
        noDecimals += "<channel id='" + std::string(id) + "' prec='9'/>";
    const Row rows[] = {
        {"<Channel ID='1' LOG='FALSE' Damp='12' PREC='3'/><channel id='413' prec='3'/>", "1:0,3,12 413:,3 "},
        {"<channel id='172' type='6' user='A'/><channel id='203' type='-1' prec='9'/>", "172:,,,6,'A','A' 203:,9,,65535 "},
        {"<channel id='171' type='6' user='A'/><channel id='204' type='6' user='B'/><channel id='0' log='false'/>", ""},
        {"<channel prec='3'/><channel log='false' prec='3' damp='1' id='1'/>", ""},
        {"<channel id='1' prec='3' ID='2' damp='4' Id='999' log='false'/>", "1:,3 2:,,4 "},
        {"<channel id='2' log='False'/><channel id='384' log='no'/>", "2:0 384:1 "},
        {"<channel id='48' damp='5'/><channel id='1' damp='65537'/><channel id='2' damp='5' DAMP='x'/>", "1:,,1 "},
        {"<channel id='1' prec='254' PREC='255'/><channel id='2' prec='-1' PREC='65539'/>", "1:,254 "},
        {"<channel id='172' type='2' prec='9'/><channel id='173' prec='9' type='2'/>", "172:,,,2 173:,9,,2 "},
        {"<channel id='203' user='01234567890123456789012345678901'/>",
         "203:,,,,'0123456789012345678901234567890','012345678901234' "},
        {"<channel id='172' user='A' type='6' log='' USER='' TYPE='' damp='' prec=''/>", "172:,,,6,'A','A' "},
        {noDecimals, ""}};
    Check("channels.xml", "channels", rows);
    heard.found.clear();
    const std::string fits(31, 'x');
    Write("channels.xml", "<channels><channel id='172' user='" + fits + "'/><channel id='173' user='" + fits + "x'/></channels>");
    EXPECT_TRUE(core->LoadChannelsFile());
    ASSERT_EQ(1u, heard.found.size());
    EXPECT_EQ(std::pair(Flaw::kCut, FromUtf8(fits)), std::pair(heard.found[0].flaw, heard.found[0].text));
    Write("channels.xml", "<settings><channels><channel id='1' prec='3'/></channels></settings>");
    EXPECT_FALSE(core->LoadChannelsFile());
}

TEST_F(ConfigTest, FilesAreReadByTheCreatorAloneAndWithoutARegistry) {
    Write("alternate.csv", "3,13,14,0,0,0,0,0,0,0\n");
    Write("boats.xml", "<boats><boat id='7' mmsi='5'/></boats>");
    Write("channels.xml", "<channels><channel id='1' prec='3'/></channels>");
    machine.registry.unavailable = true;
    Attach();
    EXPECT_EQ("3:13,14 7:,5 1:,3 ", Told());
    record.SetSlot(0, 0, 5);
    const CCore second(machine.Services());
    EXPECT_EQ("0:5 3:13,14 7:,5 1:,3 ", Told());
}

// For all but the user's channels and the Time channel.
TEST_F(ConfigTest, WithoutFilesTheDefaultsComeBack) {
    EXPECT_EQ(u"Boat 99", record.Text(RecordBytes::Boat(99) + 6));
    record.SetSlot(0, 0, 5);
    record.SetText(RecordBytes::Boat(0) + 6, u"x");
    record.Set(RecordBytes::Boat(7) + 72, std::uint64_t{5});  // MMSI 5 in black
    for (const std::size_t channel : {0, 1, 172}) {
        const std::size_t row = RecordBytes::Channel(channel);
        record.Set(row + 3, std::uint8_t{7});
        for (const std::size_t field : {6, 8, 10}) record.Set(row + field, static_cast<std::uint16_t>(field));
        for (const std::size_t name : {12, 76}) record.Set(row + name, u'n');
    }
    core->LoadAlternatesFile();
    EXPECT_FALSE(core->LoadBoatsFile() || core->LoadChannelsFile());
    EXPECT_EQ("0:7,6,8,10,'n','n' 1:,,,10,'n','n' 172:,,,10,'n','n' ", Told());
}

TEST_F(ConfigTest, ADefaultDoesNotReplaceWhatTheCreatorNamesMeanwhile) {
    record.SetText(1068, u"");
    record.Set(RecordBytes::Time(0, kTime), 0.0);
    CCore joined(machine.Services());
    machine.files.onLook = [&] {
        record.SetText(1068, u"/ashore");
        record.Set(RecordBytes::Time(0, kTime), 1.0);
    };
    joined.GetDataFolder(u"");
    EXPECT_EQ(u"/ashore", record.Text(1068));
    EXPECT_EQ(u"/ashore", joined.GetDataFolder(u""));
}

TEST_F(ConfigTest, FoldersAreMadeWhenMissingAndTriedAgainWhenTheyCantBe) {
    const std::u16string suite = JoinPath(u"/data", u"Tidewright"), subfolder = JoinPath(suite, u"instruments");
    for (int time = 0; time < 2; ++time) EXPECT_EQ(subfolder, core->GetDataFolder(u"instruments"));
    EXPECT_EQ(1, std::ranges::count(machine.files.folders, subfolder));
    record.SetText(1068, u"");
    machine.files.folders.clear();
    machine.files.foldersFail = true;
    EXPECT_EQ(u"", core->GetDataFolder(u""));
    EXPECT_EQ(subfolder, core->GetDataFolder(u"instruments")) << "a place where every file operation fails";
    machine.files.programData.clear();
    EXPECT_EQ(u"", core->GetDataFile(u"config", u"boats.xml")) << "not in the root of the drive";
    machine.files.programData = u"/data";
    machine.files.foldersFail = false;
    EXPECT_EQ(suite, core->GetDataFolder(u""));
    EXPECT_EQ(suite, record.Text(1068));
}

TEST_F(ConfigTest, OnlyADatabaseWithItsExtensionStaysAndNoEmptyPathOfMarks) {
    const std::u16string usual = JoinPath(core->GetDataFolder(u"database"), u"Tidewright.db");
    for (const std::u16string stored : {u"/x/race.db", u"/x/a.b.db", u"/x/a.db:stream", u"C:a.db"}) {
        record.SetText(548, stored);
        EXPECT_EQ(stored, core->GetDatabasePath());
    }
    for (const std::u16string stored : {u"/x/race.DB", u"/x/race.db3", u"/x.db/race", u"/x/.db", u"/x/r:1.db", u""}) {
        record.SetText(548, stored);
        EXPECT_EQ(usual, core->GetDatabasePath()) << ToUtf8(stored);
    }
    core->SetMarksPath(std::u16string(300, u'm'));
    core->SetMarksPath(u"");
    EXPECT_EQ(std::u16string(259, u'm'), record.Text(28));
}

}  // namespace
}  // namespace twr::testing
