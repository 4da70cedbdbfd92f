#include <gtest/gtest.h>

#include "core/core.h"
#include "core/days.h"
#include "displays/displays.h"
#include "halyrigctl/channel_names.h"
#include "halyrigctl/commands.h"
#include "support/record_bytes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

// Keeps what is written; the user goes on for as long as the test says.
class FakeConsole : public Console {
public:
    std::optional<ConsoleSize> Size() const override { return size; }
    Output Write(std::string_view utf8, const std::function<bool()>& stillWanted) override {
        int asked = 0;
        while (held && asked < 1000 && stillWanted()) ++asked;
        EXPECT_LT(asked, 1000) << "waits for ever";
        if (held) return Output::kGivenUp;
        written += utf8;
        ++writes;
        return closed ? Output::kRefused : Output::kWritten;
    }
    void WriteError(std::string_view utf8) override {
        if (beforeError) beforeError();
        written += utf8;
    }
    bool Wait(int milliseconds) override {
        waited += milliseconds;
        EXPECT_LE(milliseconds, 100) << "the suite may ask to close at any time";
        return goOn();
    }

    std::optional<ConsoleSize> size;
    std::string written;
    bool closed = false;  // what is written is refused
    bool held = false;    // it is taken by nobody
    int writes = 0;
    int waited = 0;  // milliseconds
    std::function<bool()> goOn = [] { return false; };
    std::function<void()> beforeError;
};

class CtlTest : public ::testing::Test, public System {
protected:
    CoreServices Core() override { return test.system->Core(); }
    Libraries& GetLibraries() override { return test.system->GetLibraries(); }
    Instance& GetInstance() override { return test.system->GetInstance(); }
    Executable& GetExecutable() override { return test.system->GetExecutable(); }
    Console& GetConsole() override { return console; }

    // Another program of the suite starts.
    void StartSuite() { suite = std::make_unique<CCore>(Core()); }
    RecordBytes Record() { return RecordBytes(suite->View()); }
    void Publish(ChannelId channel, double value, double secondsAgo = 0.0) {
        suite->SetChannel(channel, 0, value, UtcNowDays(Core().clock) - secondsAgo / 86400);
    }

    // What a command prints and its reason for failing.
    std::string Printed(std::function<int()> command, int status = 0) {
        console.written.clear();
        EXPECT_EQ(status, command());
        return console.written;
    }
    std::string Got(ChannelId channel, BoatSlot boat = 0, int status = 0) {
        return Printed([&] { return GetChannelValue(*this, {std::to_string(channel), boat}); }, status);
    }
    std::string GotJson(ChannelId channel, int status = 0) {
        return Printed([&] { return GetChannelValue(*this, {.channel = std::to_string(channel), .json = true}); }, status);
    }
    // A guest would find the record.
    bool Held() { return CCore(Core(), Attachment::kOpenOnly).View() != nullptr; }
    std::string Watched(std::optional<ConsoleSize> size = {}) {
        console.size = size;
        return Printed([&] { return Watch(*this, {.snapshots = 1}); });
    }

    TestSystem test;
    FakeConsole console;
    std::unique_ptr<CCore> suite;
};

void ExpectIn(const std::string& text, const std::vector<const char*>& parts) {
    for (const char* part : parts) EXPECT_NE(std::string::npos, text.find(part)) << part << "\nis not in\n" << text;
}

TEST_F(CtlTest, WithoutARecordEveryCommandSaysWhatToStart) {
    ExpectIn(Got(kBsp, 0, 1), {"Start " HALYRIG_PROGRAM " first"});
    ExpectIn(Printed([&] { return Watch(*this, {}); }, 1), {"Start " HALYRIG_PROGRAM " first"});
    ExpectIn(Printed([&] { return Quit(*this, {}); }, 1), {"Start " HALYRIG_PROGRAM " first"});
    EXPECT_FALSE(Held()) << "and none creates one";
}

TEST_F(CtlTest, ListsTheCatalogueInThreeForms) {
    const auto list = [&](TableForm form) { return Printed([&] { return ListChannels(console, form); }); };
    ExpectIn(list(TableForm::kTsv),
             {"\n13\tHDG\tHeading\t6\t0\t360\t10\t0\t11\tdl\n", "\n34\tTm on S\tLayline time on starb\t2\t0\t0\t10\t255\t32767\t\n",
              "\n148\tTWD-90\tTWD - 90\u00B0\t6\t"});
    ExpectIn(list(TableForm::kText),
             {"\n   0  Time         Time ",
              "  13  HDG          Heading                           6      0    360     10     0     11  dl\n",
              "  34  Tm on S      Layline time on starb             2      -      -     10     -      -  \n",
              " 161  Mk Lat       Mark latitude                     8    -90     90      -     -      -  l\n"});
    const std::string json = list(TableForm::kJson);
    ExpectIn(json, {R"({"id":13,"name":"HDG","longName":"Heading","type":6,"min":0,"max":360,"staleSeconds":10,)"
                    R"("prec":0,"shortIndex":11,"flags":"dl"},)",
                    R"({"id":0,"name":null,"longName":"Time")",
                    R"("type":2,"min":null,"max":null,"staleSeconds":10,"prec":null,"shortIndex":null,"flags":null},)"});
    EXPECT_TRUE(json.starts_with("[\n") && json.ends_with("\"flags\":\"dl\"}\n]\n"));
}

TEST_F(CtlTest, FindsAChannelByNumberOrNameOrTheUsersOwnName) {
    StartSuite();
    Record().SetText(RecordBytes::Channel(172) + 12, u"Jib lead position");
    Record().SetText(RecordBytes::Channel(172) + 76, u"Jib lead positi");
    const std::pair<const char*, std::optional<ChannelId>> rows[] = {
        {"13", 13},
        {"0", 0},
        {"Time", 0},
        {"413", 413},
        {"414", {}},
        {"hdg", 13},
        {"Tm on S", 34},
        {"", {}},
        {"User0", {}},
        {"-1", {}},
        {"xyz", {}},
        {"13x", {}},
        {"99999999999", {}},
        {"jib lead position", 172},
        {"Jib lead positi", 172},
    };
    for (const auto& [text, channel] : rows) EXPECT_EQ(channel, FindChannel(*suite, text)) << text;
    ExpectIn(Printed([&] { return GetChannelValue(*this, {"speed\x1b"}); }, 2), {"there is no channel speed\u00B7;"});
}

TEST_F(CtlTest, GetsAValueInTheUsersUnits) {
    StartSuite();
    Record().SetInt(2, 2);
    Publish(kBsp, 10.0);
    const std::string bsp = Got(kBsp);
    ExpectIn(bsp, {"channel  1 BSP\nboat     0\nvalue    10 kt\ntext     18.52 km/hr\nage      0.0 s\nlimit    10 s\n"});
    EXPECT_TRUE(bsp.starts_with("channel")) << bsp;
    const std::pair<std::size_t, ChannelId> chain[] = {{0, kAlt1}, {1, kAlt2}, {2, kBsp}};
    for (const auto& [row, next] : chain) Record().SetSlot(row, 1, next);
    ExpectIn(Got(kAlt0), {"value    10 kt\ntext     18.52 km/hr\n"});
    Publish(kMkLat, 45.2057);
    ExpectIn(Got(kMkLat), {"value    45.2057 \u00B0\ntext     45 12.3420n\n", "limit    none\n"});
    Publish(kMagVar, -3.0);
    ExpectIn(Got(kMagVar), {"value    -3 \u00B0\ntext     3.00\u00B0w\n"});
    Publish(kTmOnS, 0.5);
    ExpectIn(Got(kTmOnS), {"value    0.5 days\ntext     12h 00m\n"});
    Record().SetFlag(3, false);
    Publish(kHdg, 90.0);
    ExpectIn(Got(kHdg), {"value    90 \u00B0M\ntext     087 \u00B0T\n"});
    ExpectIn(Got(kTime), {"channel  0 Time\n"});
}

TEST_F(CtlTest, GetsAValueAsJson) {
    StartSuite();
    Record().SetInt(2, 2);
    Publish(kBsp, 10.0);
    Publish(kMkLat, 45.0);
    Publish(kSail, 1.0);
    Publish(kAwa, 30.0, 20.0);
    const struct {
        ChannelId channel;
        int status;
        std::vector<const char*> parts;
    } rows[] = {
        {kBsp,
         0,
         {R"({"id":1,"name":"BSP","boat":0,"value":10.0,"valueUnit":"kt","text":"18.52","textUnit":"km/hr","age":)",
          R"(,"limit":10,"missing":null})"}},
        {kMkLat, 0, {R"("valueUnit":"\u00b0","text":"45 00.0000n","textUnit":null)", R"("limit":null)"}},
        {kSail, 0, {R"("valueUnit":null,"text":null,)"}},
        {kAwa, 1, {R"("value":null,"valueUnit":"\u00b0","text":null,"textUnit":null,"age":20)", R"("missing":"it is stale)"}},
        {kHdg, 1, {R"("age":null,"limit":10,"missing":"it was never)"}},
        {kAlt3, 1, {R"("value":null,"valueUnit":null,"text":null)", R"("missing":"it stands for no channel)"}},
    };
    for (const auto& row : rows) ExpectIn(GotJson(row.channel, row.status), row.parts);
}

TEST_F(CtlTest, NoTextOfTheRecordCommandsTheTerminal) {
    StartSuite();
    Publish(kSail, 1.0);
    Publish(172, 1.0);
    Record().SetText(1780, u"A\x1b[31m\u0085\u007F\u202E2");
    Record().SetText(RecordBytes::Channel(172) + 76, u"Lead\a\u009B");
    ExpectIn(Got(kSail), {"text     A\u00B7[31m\u00B7\u00B7\u00B72\n"});
    ExpectIn(Got(172), {"channel  172 Lead\u00B7\u00B7\n"});
    ExpectIn(Watched(), {"A\u00B7[31m\u00B7\u00B7\u00B72", " 172  Lead\u00B7\u00B7 "});
    ExpectIn(GotJson(kSail), {R"("text":"A\u001b[31m\u0085\u007f\u202e2")"});
}

TEST_F(CtlTest, TellsWhyThereIsNoValue) {
    StartSuite();
    Publish(kTws, 151.0);
    Publish(kAwa, 30.0, 20.0);
    Publish(kHdg, 90.0);
    Publish(kDepth, 90.0);
    Record().SetFlag(3, false);  // bearings are shown true
    Record().SetInt(1, 7);       // the unit of depths
    Record().Set<std::uint8_t>(RecordBytes::Channel(kHeel) + 1, 1);
    Record().Set<std::uint8_t>(RecordBytes::Channel(kAws) + 4, 1);
    Record().SetFlag(52, true);
    suite->SetChannel(kHdg, 2, 90.0, UtcNowDays(Core().clock) - 70.0 / 86400);
    Record().Set<std::uint32_t>(51012 + 80 * 2 + 72, 211234560);
    Record().Set<std::int32_t>(51012 + 80 * 2, 60);
    const struct {
        const char* reason;
        ChannelId channel;
        BoatSlot boat = 0;
    } rows[] = {
        {"never published: no source", kBsp},
        {"(Sys_i6) is 3, and it is 6", kSog},
        {"no place", kRot, 5},
        {"gives no value", kTws},
        {"stale: last published 20.0 s ago, and the limit is 10 s", kAwa},
        {"70.0 s ago, and the limit is 60 s", kHdg, 2},
        {"blocked", kHeel},
        {"held: another program of the suite lets nothing new into it (system flag 52)", kAws},
        {"no variation", kHdg},
        {"unit chosen", kDepth},
        {"stands for no channel", kAlt3},
    };
    for (const auto& row : rows) ExpectIn(Got(row.channel, row.boat, 1), {row.reason});
}

TEST_F(CtlTest, ABearingThatCouldNotBeMadeMagneticLacksTheVariation) {
    StartSuite();
    Publish(kTwd, kNoValue);
    ExpectIn(Got(kTwd, 0, 1), {"gives no value, or one outside the channel's range; or Deckman's bearings are taken as true, and"});
    Core().registry.Write(u"Software\\Tidewright\\Halyrig32\\settings", u"DfwTrue", DwordValue(1));
    ExpectIn(Got(kTwd, 0, 1), {"no value: Deckman's bearings are taken as true, and there is no variation (MagVar, channel 93)"});
    Publish(kMagVar, 4.0);
    ExpectIn(Got(kTwd, 0, 1), {"outside the channel's range\n"});
}

TEST_F(CtlTest, APositionIsMissedFromItsSource) {
    StartSuite();
    Publish(kLat, 50.0, 20.0);
    ExpectIn(Got(kLat, 0, 1), {"limit is 10 s; position", "(Sys_i6) is 3, and it is 6"});
    Record().SetInt(6, 3);
    ExpectIn(Got(kLat, 0, 1), {"limit is 10 s\n"});
    ExpectIn(Got(kLon, 0, 1), {"never published: no source"});
}

TEST_F(CtlTest, SaysWhatItDoesNotUnderstand) {
    StartSuite();
    Publish(kBsp, 6.0);
    const struct {
        std::vector<std::string> arguments;
        const char* said;
        int status;
    } rows[] = {
        {{"bogus\x1b"}, "halyrigctl: there is no command or option bogus\u00B7; see 'halyrigctl --help'\n", 2},
        {{"--bogus"}, "halyrigctl: there is no command or option --bogus;", 2},
        {{}, "halyrigctl: a command is missing; see 'halyrigctl --help'\n", 2},
        {{"get"}, "halyrigctl: ID is required; see 'halyrigctl get --help'\n", 2},
        {{"get", "speed"}, "halyrigctl: there is no channel speed;", 2},
        {{"quit", "now"}, "not expected: now; see", 2},
        {{"watch", "--snapshots", "0"}, "not in range 1 to 1000000; see", 2},
        {{"get", "0", "--boat", "100"}, "not in range 0 to 99; see", 2},
        {{"channels", "--tsv", "--json"}, "halyrigctl: --", 2},
        {{"--version"}, "halyrigctl 1", 0},
        {{"get", "Time"}, "text ", 0},
        {{"watch", "--snapshots", "2"}, "channel", 0},
        {{"quit", "--no-wait"}, "Asked", 0},
    };
    console.goOn = [] { return true; };
    for (const auto& row : rows) {
        ExpectIn(Printed([&] { return RunCommandLine(*this, row.arguments); }, row.status), {row.said});
    }
    EXPECT_EQ(500, console.waited) << "between two looks alone";
}

TEST_F(CtlTest, SaysThatItsOutputIsLost) {
    StartSuite();
    Publish(kBsp, 6.0);
    console.closed = true;
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"--help"}, {"channels"}, {"get", "BSP"}, {"get", "BSP", "--json"}, {"watch"}, {"quit", "--no-wait"}}) {
        ExpectIn(Printed([&] { return RunCommandLine(*this, arguments); }, 1), {"halyrigctl: standard output can't be written"});
    }
}

TEST_F(CtlTest, WatchEndsWithTheUserOrTheSuite) {
    StartSuite();
    const auto watch = [&] { return Watch(*this, {.intervalMs = 250, .snapshots = {}}); };
    console.goOn = [&] { return console.waited < 700; };
    Printed(watch);
    EXPECT_EQ(700, console.waited);
    EXPECT_EQ(3, console.writes) << "one look for each interval begun";

    console.goOn = [&] {
        Record().SetFlag(35, true);
        return true;
    };
    ExpectIn(Printed(watch), {"asked to close"});
    EXPECT_EQ(800, console.waited);
    ExpectIn(Got(kBsp, 0, 1), {"asked to close", "never published"});
}

TEST_F(CtlTest, WatchEndsAndLetsGoOfTheRecordWhenNobodyTakesItsOutput) {
    StartSuite();
    console.held = true;
    console.goOn = [&, asked = 0]() mutable { return ++asked < 3; };
    Printed([&] { return Watch(*this, {}); });

    console.goOn = [&] {
        Record().SetFlag(35, true);
        return true;
    };
    console.beforeError = [&] {
        suite.reset();
        EXPECT_FALSE(Held()) << "the request would stay with it";
    };
    ExpectIn(Printed([&] { return Watch(*this, {}); }), {"asked to close"});
    EXPECT_EQ(0, console.waited);
}

TEST_F(CtlTest, WatchDimsAndDashesWhatIsStaleOnATerminal) {
    StartSuite();
    Publish(kBsp, 7.25);
    Publish(kAws, 12.5, 20.0);
    Publish(kMagVar, -3.0);
    const std::string shown = Watched(ConsoleSize{80, 24});
    ExpectIn(shown, {"\x1b[2m   3  AWS                          - -", "   1  BSP                         7.25 kt"});
    EXPECT_EQ(std::string::npos, shown.find("12.5"));
    EXPECT_EQ(std::string::npos, shown.find("Depth")) << "never published";
    ExpectIn(Watched(), {"   1  BSP                         7.25 kt", "  93  MagVar                    3.00\u00B0w "});
    EXPECT_EQ(std::string::npos, Watched().find('\x1b'));
}

TEST_F(CtlTest, WatchDrawsTheRemotesOfTheStandIn) {
    StartSuite();
    const std::u16string folder = test.folder.File("Deckman");
    Core().registry.Write(u"Software\\Tidewright\\Halyrig32\\settings", u"DfwFolder", StringValue(folder));
    DisplayWriter displays(Core().memory, folder);
    displays.ShowValue(3, "7.25");
    displays.ShowName(3, "BSP");
    displays.ShowValue(12, "3.00\xB0W");
    ExpectIn(Watched(), {"remote  3  BSP       7.25\n", "remote 12            3.00\u00B0W\n"});
    EXPECT_EQ(std::string::npos, Watched().find("remote  4"));
    ExpectIn(Watched(ConsoleSize{100, 24}), {"\u256D 3 \u2500", "\u256D 12 \u2500", "   7.25    ", "  3.00\u00B0W   "});
}

TEST_F(CtlTest, QuitWaitsUntilAllHaveLeft) {
    const struct {
        const char* what;
        bool wait;
        int leaves;    // ms after which the suite lets go of the record
        int patience;  // ms after which the user has enough
        int waited, status;
    } rows[] = {
        {"all leave", true, 300, 20000, 400, 0},
        {"one stays", true, 20000, 20000, 10000, 1},
        {"the user does not wait", true, 20000, 500, 500, 1},
        {"not to be waited for", false, 0, 20000, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        StartSuite();
        console.waited = 0;
        console.goOn = [&] {
            if (console.waited >= row.leaves) suite.reset();
            return console.waited < row.patience;
        };
        const std::string said = Printed([&] { return Quit(*this, {.wait = row.wait}); }, row.status);
        ExpectIn(said, {"Asked the programs of the suite to close.\n"});
        EXPECT_EQ(row.status == 1, said.find("still hold the record") != std::string::npos) << said;
        EXPECT_EQ(row.waited, console.waited);
        EXPECT_TRUE(!suite || suite->QuitRequested());
        suite.reset();
        EXPECT_FALSE(Held());
    }
}

}  // namespace
}  // namespace twr::testing
