#include <gtest/gtest.h>

#include "core/core.h"
#include "core/days.h"
#include "halyrigctl/commands.h"
#include "simulator/displays.h"
#include "support/record_bytes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

// Keeps what is written; the user asks to stop after a number of waits.
class FakeConsole : public Console {
public:
    std::optional<ConsoleSize> Size() const override { return size; }
    bool Write(std::string_view utf8) override {
        written += utf8;
        return !closed;
    }
    bool Wait(int) override {
        onWait();
        return waits-- > 0;
    }

    std::optional<ConsoleSize> size;
    std::string written;
    int waits = 0;
    bool closed = false;
    std::function<void()> onWait = [] {};
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
    R Record() { return R(suite->View()); }

    // What a command prints and its reason for failing.
    std::string Printed(std::function<int()> command, int status) {
        console.written.clear();
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(status, command());
        return console.written + ::testing::internal::GetCapturedStderr();
    }
    std::string Got(ChannelId channel, BoatSlot boat, int status) {
        return Printed([&] { return GetChannelValue(*this, channel, boat); }, status);
    }

    TestSystem test;
    FakeConsole console;
    std::unique_ptr<CCore> suite;
};

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST_F(CtlTest, WithoutARecordEveryCommandSaysWhatToStart) {
    for (const auto& command :
         {std::function<int()>([&] { return GetChannelValue(*this, kBsp, 0); }),
          std::function<int()>([&] { return Watch(*this, {}); }), std::function<int()>([&] { return Quit(*this); })}) {
        EXPECT_TRUE(Holds(Printed(command, 1), "Start Halyrig32 first"));
        EXPECT_EQ(nullptr, CCore(Core(), Attachment::kOpenOnly).View()) << "and creates none";
    }
}

TEST_F(CtlTest, ListsTheCatalogueInThreeForms) {
    const struct {
        TableForm form;
        std::string row;
    } rows[] = {
        {TableForm::kTsv, "\n13\tHDG\tHeading\t6\t0\t360\t10\t0\t11\tdl\n"},
        {TableForm::kTsv, "\n34\tTm on S\tLayline time on starb\t2\t0\t0\t10\t255\t32767\t\n"},
        {TableForm::kTsv, "\n148\tTWD-90\tTWD - 90\u00B0\t6\t"},
        {TableForm::kJson,
         R"({"id": 13, "name": "HDG", "longName": "Heading", "type": 6, "min": 0, "max": 360, "staleSeconds": 10, )"
         R"("prec": 0, "shortIndex": 11, "flags": "dl"},)"},
        {TableForm::kText, "  13  HDG          Heading "},
    };
    for (const auto& row : rows) {
        const std::string printed = Printed([&] { return ListChannels(console, row.form); }, 0);
        EXPECT_TRUE(Holds(printed, row.row)) << row.row;
    }
    const std::string json = Printed([&] { return ListChannels(console, TableForm::kJson); }, 0);
    EXPECT_TRUE(json.starts_with("[\n") && json.ends_with("\"flags\": \"dl\"}\n]\n"));
}

TEST_F(CtlTest, FindsAChannelByNumberOrName) {
    const struct {
        const char* text;
        std::optional<ChannelId> channel;
    } rows[] = {{"13", 13}, {"0", 0},   {"413", 413}, {"414", {}}, {"hdg", 13},        {"Tm on S", 34},
                {"", {}},   {"-1", {}}, {"xyz", {}},  {"13x", {}}, {"99999999999", {}}};
    for (const auto& row : rows) EXPECT_EQ(row.channel, FindChannel(row.text)) << row.text;
}

TEST_F(CtlTest, GetsAValueInTheUsersUnits) {
    StartSuite();
    Record().Set<std::int32_t>(R::SysInt(2), 2);
    suite->SetChannel(kBsp, 0, 10.0, 0.0);
    const std::string got = Got(kBsp, 0, 0);
    for (const char* line :
         {"channel  1 BSP\n", "boat     0\n", "value    10\n", "text     18.52\n", "unit     km/hr\n", "limit    10 s\n"}) {
        EXPECT_TRUE(Holds(got, line)) << line << got;
    }
    suite->SetChannel(kMkLat, 0, 45.2057, 0.0);
    EXPECT_TRUE(Holds(Got(kMkLat, 0, 0), "text     45 12.3420n\nunit     -\n")) << "never stale";
    EXPECT_TRUE(Holds(Got(kMkLat, 0, 0), "limit    none\n"));
    suite->SetChannel(kMagVar, 0, -3.0, 0.0);
    EXPECT_TRUE(Holds(Got(kMagVar, 0, 0), "text     3.00\u00B0w\nunit     -\n")) << "the text says its unit";
}

TEST_F(CtlTest, TellsWhyThereIsNoValue) {
    StartSuite();
    const double now = UtcNowDays(Core().clock);
    const double old = now - 20.0 / 86400;
    const struct {
        std::string reason;
        ChannelId channel;
        BoatSlot boat;
        std::function<void()> make;
    } rows[] = {
        {"never published", kBsp, 0, [] {}},
        {"no place", kRot, 5, [] {}},
        {"gives no value", kTws, 0, [&] { suite->SetChannel(kTws, 0, 151.0, 0.0); }},
        {"stale: last published 20.0 s ago, and the limit is 10 s", kAwa, 0, [&] { suite->SetChannel(kAwa, 0, 30.0, old); }},
        {"blocked", kHeel, 0, [&] { Record().Set<std::uint8_t>(R::Channel(kHeel) + 1, 1); }},
        {"no variation", kHdg, 0,
         [&] {
             suite->SetChannel(kHdg, 0, 90.0, 0.0);
             Record().Set<std::uint8_t>(R::SysFlag(3), 0);
         }},
        {"unit chosen", kDepth, 0,
         [&] {
             suite->SetChannel(kDepth, 0, 90.0, 0.0);
             Record().Set<std::int32_t>(R::SysInt(1), 7);
         }},
        {"stands for no channel", kAlt3, 0, [] {}},
    };
    for (const auto& row : rows) {
        row.make();
        const std::string told = Got(row.channel, row.boat, 1);
        EXPECT_TRUE(Holds(told, row.reason)) << row.reason << " instead of " << told;
    }
}

TEST_F(CtlTest, WatchEndsWithTheUserOrTheSuite) {
    StartSuite();
    suite->SetChannel(kBsp, 0, 7.25, 0.0);
    console.waits = 2;
    std::string shown = Printed([&] { return Watch(*this, {}); }, 0);
    EXPECT_TRUE(Holds(shown, "BSP") && Holds(shown, "7.25")) << shown;
    EXPECT_FALSE(Holds(shown, "\x1b")) << "plain where there is no terminal";

    console.waits = 1000;
    console.onWait = [&] { Record().Set<std::uint8_t>(R::SysFlag(35), 1); };
    Printed([&] { return Watch(*this, {}); }, 0);
    EXPECT_EQ(999, console.waits);

    console.closed = true;
    Printed([&] { return Watch(*this, {}); }, 1);
}

TEST_F(CtlTest, WatchDimsAndDashesWhatIsStale) {
    StartSuite();
    suite->SetChannel(kBsp, 0, 7.25, 0.0);
    suite->SetChannel(kAws, 0, 12.5, UtcNowDays(Core().clock) - 20.0 / 86400);
    console.size = ConsoleSize{80, 24};
    const std::string shown = Printed([&] { return Watch(*this, {.snapshots = 1}); }, 0);
    EXPECT_TRUE(Holds(shown, "\x1b[2m   3  AWS                          - -")) << shown;
    EXPECT_FALSE(Holds(shown, "12.5"));
    EXPECT_TRUE(Holds(shown, "   1  BSP                         7.25 kt")) << shown;
}

TEST_F(CtlTest, WatchDrawsTheRemotesOfTheStandIn) {
    StartSuite();
    const std::u16string folder = test.folder.File("Deckman");
    Core().registry.Write(u"Software\\Tidewright\\Halyrig32\\settings", u"DfwFolder", StringValue(folder));
    DisplayWriter displays(Core().memory, folder);
    displays.ShowValue(3, "7.25");
    displays.ShowName(3, "BSP");
    displays.ShowValue(12, "-0");
    std::string shown = Printed([&] { return Watch(*this, {.snapshots = 1}); }, 0);
    EXPECT_TRUE(Holds(shown, "remote  3  BSP       7.25\n")) << shown;
    EXPECT_TRUE(Holds(shown, "remote 12            -0\n")) << shown;
    EXPECT_FALSE(Holds(shown, "remote  4"));
    console.size = ConsoleSize{100, 24};
    shown = Printed([&] { return Watch(*this, {.snapshots = 1}); }, 0);
    EXPECT_TRUE(Holds(shown, "\u256D 3 \u2500") && Holds(shown, "\u256D 12 \u2500") && Holds(shown, "   7.25    ")) << shown;
}

TEST_F(CtlTest, WatchFitsItsTerminal) {
    StartSuite();
    for (ChannelId channel = 1; channel < 60; ++channel) suite->SetChannel(channel, 0, 1.0, 0.0);
    console.size = ConsoleSize{80, 10};
    const std::string shown = Printed([&] { return Watch(*this, {.snapshots = 1}); }, 0);
    EXPECT_TRUE(shown.starts_with("\x1b["));
    EXPECT_LE(std::count(shown.begin(), shown.end(), '\n'), 9);
    EXPECT_TRUE(Holds(shown, "more"));
}

TEST_F(CtlTest, QuitSetsTheFlagOfTheSuite) {
    StartSuite();
    Printed([&] { return Quit(*this); }, 0);
    EXPECT_TRUE(suite->QuitRequested());
}

}  // namespace
}  // namespace twr::testing
