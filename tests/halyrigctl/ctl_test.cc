// SPDX-License-Identifier: MIT
#include <algorithm>

#include "config/bridge_settings.h"
#include "displays/displays.h"
#include "halyrigctl/ctl_fixture.h"
#include "halyrigctl/setup/names.h"
#include "status/bridge_status.h"

namespace twr::testing {
namespace {

TEST_F(CtlTest, WithoutARecordEveryCommandSaysWhatToStart) {
    for (const char* command : {"get 1", "watch", "quit", "boats", "channels --live"})
        ExpectIn(Said(command, 1), {"Start " HALYRIG_PROGRAM " first"});
    EXPECT_FALSE(Held()) << "and none creates one";
}

// The form with tabs is compared with the documents, row by row.
TEST_F(CtlTest, ListsTheCatalogueForPeopleAndPrograms) {
    ExpectSaid(0, {{"channels",
                    {"\n   0  Time         Time ",
                     "  13  HDG          Heading                           6      0    360     10     0     11  dl\n",
                     "  34  Tm on S      Layline time on starb             2      -      -     10     -      -  \n",
                     " 161  Mk Lat       Mark latitude                     8    -90     90      -     -      -  l\n"}},
                   {"channels --json",
                    {R"({"id":13,"name":"HDG","longName":"Heading","type":6,"min":0,"max":360,"staleSeconds":10,)"
                     R"("prec":0,"shortIndex":11,"flags":"dl"},)",
                     R"({"id":0,"name":null,"longName":"Time")",
                     R"("type":2,"min":null,"max":null,"staleSeconds":10,"prec":null,"shortIndex":null,"flags":null},)"}}});
    EXPECT_TRUE(console.written.starts_with("[\n") && console.written.ends_with("\"flags\":\"dl\"}\n]\n"));
}

TEST_F(CtlTest, ListsWhatIsInForceForChannels) {
    test.folder.Write("ProgramData/Tidewright/config/channels.xml",
                      R"(<channels><channel id="1" prec="1" damp="4" log="false"/><channel id="172" type="12" user="Jib lead"/>)"
                      R"(<channel id="173" type="99"/></channels>)");
    StartSuite({{kTws, 10.0}});
    Record().Set<std::uint8_t>(RecordBytes::Channel(kHeel) + 1, 1);
    Record().Set<std::uint8_t>(RecordBytes::Channel(kAws) + 4, 1);
    Record().SetText(RecordBytes::Channel(173) + 76, u"A\tB");
    ExpectIn(Said("channels --live --tsv"), {"\n3\tAWS\t\t\t21\twind speed\t1\t0\t1\t0\t0\t0\n"});
    Record().SetFlag(52, true);
    ExpectSaid(0,
               {{"channels --live",
                 {"\n   1  BSP          12 boat speed         1     4  -    -         -       -     -\n",
                  "\n   3  AWS          21 wind speed         1     -  yes  -         -       yes   -\n",
                  "\n   5  TWS          21 wind speed         1     -  yes  yes       -       -     -\n",
                  "\n  18  Heel          7 angle              1     -  yes  -         yes     -     -\n",
                  "\n 172  User 0       12 boat speed ", "  Jib lead\n", "99 plain number"}},
                {"channels --live --tsv", {"\n3\tAWS\t\t\t21\twind speed\t1\t0\t1\t0\t0\t1\n", "\n173\tUser 1\t\tA\u00B7B\t99\t"}},
                {"channels --json --live",
                 {R"({"id":0,"name":null,"userName":null,"userShortName":null,"type":1,"typeWord":"date and time","prec":null,)",
                  R"({"id":172,"name":"User 0","userName":"Jib lead","userShortName":"Jib lead","type":12,)"
                  R"("typeWord":"boat speed","prec":)"}}});
}

TEST_F(CtlTest, ListsTheBoatsThatHaveSomethingToTell) {
    test.folder.Write(
        "ProgramData/Tidewright/config/boats.xml",
        R"(<boats><boat id="3" name="Aurora" mmsi="11234560" r="255" g="80" b="1"/><boat id="5" name="Zephyr"/></boats>)");
    StartSuite();
    const auto listed = [&](const char* typed) { return std::ranges::count(Said(typed), '\n') - 1; };
    ExpectIn(Said("boats --json"), {R"([
  {"boat":3,"name":"Aurora","mmsi":11234560,"colour":"#FF5001","ageLimit":32767,"inUse":false,"age":null},
  {"boat":5,"name":"Zephyr","mmsi":null,)"});
    suite->SetChannel(kHdg, 1, 90.0, UtcNowDays(Core().clock) - 20.0 / 86400);
    suite->SetChannel(kBsp, 1, kNoValue, 0.0);
    suite->StampTime();
    ExpectIn(Said("boats"), {"\n   0          -  #", "\n   1          -  #", "        -  yes        20.", " s  Boat 1\n",
                             "\n   3  011234560  #FF5001   32767 s  -               -  Aurora\n", "  Zephyr\n"});
    EXPECT_EQ(4, listed("boats"));
    EXPECT_EQ(100, listed("boats --all"));
}

TEST_F(CtlTest, FindsAChannelByNumberOrNameOrTheUsersOwnName) {
    StartSuite();
    Record().SetText(RecordBytes::Channel(172) + 12, u"Jib lead position");
    Record().SetText(RecordBytes::Channel(172) + 76, u"Jib lead positi");
    const std::string last = std::to_string(kChannelCount - 1), beyond = std::to_string(kChannelCount);
    const std::pair<std::optional<ChannelId>, std::vector<std::string>> rows[] = {
        {0, {"0", "Time"}},          {13, {"13", "hdg"}},
        {34, {"Tm on S"}},           {172, {"jib lead position", "Jib lead positi"}},
        {kChannelCount - 1, {last}}, {{}, {beyond, "", "User0", "-1", "xyz", "13x", "99999999999"}}};
    for (const auto& [channel, names] : rows) {
        for (const std::string& name : names) EXPECT_EQ(channel, FindChannel(*suite, name)) << name;
    }
}

TEST_F(CtlTest, GetsAValueInTheUsersUnits) {
    StartSuite();
    Record().SetInt(2, 2);
    const std::pair<std::size_t, ChannelId> chain[] = {{0, kAlt1}, {1, kAlt2}, {2, kBsp}};
    for (const auto& [row, next] : chain) Record().SetSlot(row, 1, next);
    const std::pair<ChannelId, double> published[] = {{kBsp, 10.0},  {kMkLat, 45.2057}, {kMagVar, -3.0},
                                                      {kTmOnS, 0.5}, {kSail, 1.0},      {kHdg, 90.0}};
    for (const auto& [channel, value] : published) Publish(channel, value);
    Record().SetFlag(3, false);
    ExpectSaid(0, {{"get 1", {"channel  1 BSP\nboat     0\nvalue    10 kn\ntext     18.52 km/hr\nage      0."}},
                   {"get 117", {"value    10 kn\ntext     18.52 km/hr\n"}},
                   {"get 161", {"value    45.2057 deg\ntext     45 12.3420n\n", "limit    none\n"}},
                   {"get magvar", {"value    -3 deg\ntext     3.00\u00B0w\n"}},
                   {"get 34", {"value    0.5 days\ntext     12h 00m\n"}},
                   {"get hdg", {"value    90 deg\ntext     087 \u00B0T\n"}},
                   {"get time", {"channel  0 Time\n"}},
                   {"get bsp --json",
                    {R"({"id":1,"name":"BSP","boat":0,"value":10.0,"valueUnit":"kn","text":"18.52","textUnit":"km/hr","age":)",
                     R"(,"limit":10,"state":"fresh","reason":null,"missing":null})"}},
                   {"get 161 --json", {R"("valueUnit":"deg","text":"45 12.3420n","textUnit":null)", R"("limit":null)"}},
                   {"get sail --json", {R"("valueUnit":null,"text":null,)"}}});
    EXPECT_TRUE(Said("get 1").starts_with("channel"));
    ExpectIn(Said("get 1 161"), {"limit    10 s\n\nchannel  161 Mk Lat\n"});
    EXPECT_EQ(2, std::ranges::count(Said("get 1 161 --json"), '\n'));
    ExpectIn(Said("get tws 1 awa", 1),
             {"channel  1 BSP", "limit    10 s\nhalyrigctl: TWS has no value", "\nhalyrigctl: AWA has no"});
    ExpectIn(Said("get tws 1 --json", 1), {R"("missing":"the bridge)", "\n{\"id\":1,"});
    EXPECT_EQ(0u, Said("get 1 xyz", 2).find("halyrigctl: there is no channel xyz;"));
}

TEST_F(CtlTest, NoTextOfTheRecordCommandsTheTerminal) {
    StartSuite({{kSail, 1.0}, {172, 1.0}});
    Record().SetText(1780, u"A\x1b[31m\u0085\u007F\u202E2");
    Record().SetText(RecordBytes::Channel(172) + 76, u"Lead\a\u009B");
    ExpectSaid(0, {{"get sail", {"text     A\u00B7[31m\u00B7\u00B7\u00B72\n"}},
                   {"get 172", {"channel  172 Lead\u00B7\u00B7\n"}},
                   {"watch --snapshots 1", {"A\u00B7[31m\u00B7\u00B7\u00B72", " 172  Lead\u00B7\u00B7 "}},
                   {"get sail --json", {R"("text":"A\u001b[31m\u0085\u007f\u202e2")"}}});
    ExpectSaid(2, {{"get speed\x1b", {"there is no channel speed\u00B7;"}},
                   {"bogus\x1b", {"halyrigctl: there is no command or option bogus\u00B7; see 'halyrigctl --help'\n"}}});
}

TEST_F(CtlTest, TakesListsInBothFormsAndOffersNearNames) {
    StartSuite();
    for (const ChannelId channel : {kBsp, kHdg}) Publish(channel, 6.0);
    for (const char* list : {"get BSP,HDG", "get BSP HDG", "get --json 1,13"}) ExpectIn(Said(list), {"BSP", "HDG"});
    console.goOn = [] { return true; };
    for (const char* list : {"stream --seconds 1 --channels BSP,HDG", "stream --channels BSP HDG --seconds 1"})
        ExpectIn(Said(list), {"BSP", "HDG"});
    ExpectSaid(2, {{"get STW", {"there is no channel STW; did you mean BSP (1)?"}},
                   {"get BSP,Latitude", {"no channel Latitude; did you mean Lat (48)?"}},
                   {"explain COG-true", {"did you mean COG (50)?"}},
                   {"watch hgd", {"did you mean HDG (13)?"}},
                   {"stream --channels BPS", {"did you mean BSP (1)?"}},
                   {"get xyzzy", {"'halyrigctl channels' lists them"}},
                   {"wacth", {"there is no command or option wacth; did you mean watch?"}},
                   {"replay", {"FILE is required"}},
                   {"export --channels", {"--channels"}}});
}

TEST_F(CtlTest, ALostDepthIsNone) {
    StartSuite({{kDepth, 32767.0f / 3.2808f}, {kBsp, 6.0}});
    console.goOn = [] { return true; };
    ExpectIn(Said("get depth", 1), {"Depth has no value: its source gives no value"});
    ExpectIn(Said("watch --snapshots 1 depth"), {"- -", "missing: "});
    for (const char* format : {"json", "nmea", "signalk"})
        EXPECT_EQ(std::string::npos, Said(std::string("stream --seconds 1 --format ") + format).find("9987")) << console.written;
    Publish(kDepth, 9987.5);
    ExpectIn(Said("get depth"), {"9987.5 m"});
}

TEST_F(CtlTest, SaysWhatItDoesNotUnderstandAndThatItsOutputIsLost) {
    StartSuite({{kBsp, 6.0}});
    console.goOn = [] { return true; };
    ExpectSaid(2, {{"--bogus", {"halyrigctl: there is no command or option --bogus;"}},
                   {"", {"halyrigctl: a command is missing; see 'halyrigctl --help'\n"}},
                   {"get", {"halyrigctl: ID is required; see 'halyrigctl get --help'\n"}},
                   {"get speed", {"halyrigctl: there is no channel speed;"}},
                   {"quit now", {"not expected: now; see"}},
                   {"watch --snapshots 0", {"not in range 1 to 1000000; see"}},
                   {"get 0 --boat 100", {"not in range 0 to 99; see"}},
                   {"channels --tsv --json", {"halyrigctl: --"}}});
    ExpectSaid(0, {{"--version", {"halyrigctl 1"}}, {"watch --snapshots 2", {"channel"}}, {"quit --no-wait", {"Asked"}}});
    EXPECT_EQ(500, console.waited) << "between two looks alone";
    Record().SetFlag(35, false);
    console.closed = true;
    for (const char* command : {"--help", "channels", "get BSP", "get BSP --json", "watch", "quit --no-wait"})
        ExpectIn(Said(command, 1), {"halyrigctl: standard output can't be written"});
}

TEST_F(CtlTest, EveryHelpEndsWithAnExampleThatIsUnderstood) {
    std::vector<std::string> commands = {"map suggest", "map add", "map add-remote", "map remove", "map remove-remote"};
    const std::string all = Said("--help"), example = "\nExample: halyrigctl ";
    for (const std::string& line : LinesOf(all)) {
        if (line.starts_with("  halyrigctl ")) commands.push_back(line.substr(13, line.find(' ', 13) - 13));
    }
    EXPECT_LE(20u, commands.size());
    for (const std::string& command : commands) {
        const std::string said = Said(command + " --help"),
                          typed = said.substr(std::min(said.size(), said.rfind(example) + example.size()));
        EXPECT_TRUE(typed.starts_with(command)) << said;
        EXPECT_TRUE(command.starts_with("map ") || all.find("  halyrigctl " + typed) != all.npos) << typed;
        std::istringstream words(typed);
        EXPECT_NE(kMisunderstood, RunCommandLine(*this, {std::istream_iterator<std::string>(words), {}})) << typed;
    }
}

TEST_F(CtlTest, QuitWaitsUntilAllHaveLeft) {
    // leaves: ms after which the suite lets go of the record
    // patience: ms after which the user has enough
    const std::tuple<const char*, const char*, int, int, int, int> rows[] = {
        {"all leave", "quit", 300, 20000, 400, 0},
        {"one stays", "quit", 20000, 20000, 10000, 1},
        {"the user does not wait", "quit", 20000, 500, 500, 1},
        {"not to be waited for", "quit --no-wait", 0, 20000, 0, 0}};
    for (const auto& [what, typed, leaves, patience, waited, status] : rows) {
        SCOPED_TRACE(what);
        StartSuite();
        console.waited = 0;
        console.goOn = [&, leave = leaves, enough = patience] {
            if (console.waited >= leave) suite.reset();
            return console.waited < enough;
        };
        const std::string said = Said(typed, status);
        ExpectIn(said, {"Asked the programs of the suite to close.\n"});
        EXPECT_EQ(status == 1, said.find("still hold the record") != std::string::npos) << said;
        EXPECT_EQ(waited, console.waited);
        EXPECT_TRUE(!suite || suite->QuitRequested());
        suite.reset();
        EXPECT_FALSE(Held());
    }
}

TEST(NearestNameTest, GuessesOneSlipInAShortNameAndTwoInALongOne) {
    const std::u16string names[] = {u"HDG", u"AWA", u"AWS", u"VARIATION", u"Mk Rng"};
    const std::pair<std::optional<std::u16string>, std::vector<std::u16string>> rows[] = {
        {u"HDG", {u"hdg", u"HGD", u"HDGX"}},
        {u"AWS", {u"aws"}},
        {u"AWA", {u"AWX"}},
        {u"Mk Rng", {u"MkRng"}},
        {u"VARIATION", {u"variaton", u"VARIATNIO"}},
        {{}, {u"BSP", u"H", u"", u"VARI"}}};
    for (const auto& [meant, all] : rows) {
        for (const std::u16string& typed : all) EXPECT_EQ(meant, Nearest(typed, names)) << ToUtf8(typed);
    }
}

}  // namespace
}  // namespace twr::testing
