// SPDX-License-Identifier: MIT
// halyrigctl over the real machine under a test's own roots, with a console that the test reads.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "config/saved_settings.h"
#include "core/core.h"
#include "core/days.h"
#include "halyrigctl/commands.h"
#include "status/bridge_status.h"
#include "support/fakes.h"
#include "support/record_bytes.h"
#include "support/test_system.h"

namespace twr::testing {

// What a screen of this size shows.
inline std::string Shown(const std::vector<ScreenText>& texts, ConsoleSize size) {
    std::vector<std::u16string> rows(static_cast<std::size_t>(size.rows),
                                     std::u16string(static_cast<std::size_t>(size.columns), u' '));
    for (const ScreenText& text : texts) {
        EXPECT_TRUE(text.row >= 0 && text.row < size.rows && text.column >= 0) << text.row << ' ' << text.column;
        auto column = static_cast<std::size_t>(text.column);
        for (const char16_t c : FromUtf8(text.text)) {
            if (column < rows[0].size()) rows[static_cast<std::size_t>(text.row)][column++] = c;
        }
    }
    std::string shown;
    for (const std::u16string& row : rows) shown += ToUtf8(row) + '\n';
    return shown;
}

// Keeps what is written; the user goes on for as long as the test says. With a size it has a screen too.
class FakeConsole : public Console {
public:
    std::unique_ptr<ConsoleScreen> TakeScreen() override { return size ? std::make_unique<Screen>(*this) : nullptr; }
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
    std::optional<std::string> ReadLine() override { return std::exchange(answer, std::nullopt); }
    bool Wait(int milliseconds) override {
        waited += milliseconds;
        EXPECT_LE(milliseconds, 100) << "the suite may ask to close at any time";
        return forgets ? stillGoesOn() : goOn();
    }
    void ForgetStop() override { forgets = true; }
    // How the last text that holds it was drawn; nullopt if none does.
    std::optional<Look> LookOf(std::string_view part) const {
        std::optional<Look> look;
        for (const ScreenText& text : drawn) look = text.text.find(part) == text.text.npos ? look : text.look;
        return look;
    }

    std::optional<ConsoleSize> size;
    std::u32string keys;                // typed at the screen, one for each wait
    std::vector<std::string> pictures;  // drawn there
    std::vector<ScreenText> drawn;      // as the last of them
    bool screenTaken = false;
    std::string written;
    std::optional<std::string> answer;  // typed once
    bool closed = false;                // what is written is refused
    bool held = false;                  // it is taken by nobody
    int writes = 0;
    int waited = 0;  // milliseconds
    std::function<bool()> goOn = [] { return false; };
    bool forgets = false;  // the request to stop; the next one is that of stillGoesOn
    std::function<bool()> stillGoesOn = [] { return true; };
    std::function<void()> beforeError;

private:
    class Screen : public ConsoleScreen {
    public:
        explicit Screen(FakeConsole& of) : console_(of) { console_.screenTaken = true; }
        ~Screen() override { console_.screenTaken = false; }
        ConsoleSize Size() override { return *console_.size; }
        void Draw(const std::vector<ScreenText>& texts) override {
            console_.pictures.push_back(Shown(texts, Size()));
            console_.drawn = texts;
        }
        std::optional<char32_t> Wait(int milliseconds) override {
            if (!console_.keys.empty()) {
                const char32_t key = console_.keys.front();
                console_.keys.erase(0, 1);
                return key;
            }
            return console_.Wait(milliseconds) ? std::nullopt : std::optional<char32_t>(Key::kStop);
        }

    private:
        FakeConsole& console_;
    };
};

inline void ExpectIn(const std::string& text, const std::vector<const char*>& parts) {
    for (const char* part : parts) EXPECT_NE(std::string::npos, text.find(part)) << part << "\nis not in\n" << text;
}

// Paths with the sizes of files and when they were written last, and what the registry holds, where it is no file.
inline std::map<std::string, std::string> Snapshot(const TempFolder& folder, const Registry& registry) {
    std::map<std::string, std::string> all;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(folder.Path(), std::filesystem::directory_options::skip_permission_denied)) {
        all[entry.path().string()] =
            std::filesystem::is_regular_file(entry.symlink_status())
                ? std::to_string(entry.file_size()) + " " + std::to_string(entry.last_write_time().time_since_epoch().count())
                : "";
    }
    for (const auto& key : {kSavedSettingsKey, kBridgeSettingsKey}) {
        for (const std::u16string& name : registry.Names(key)) {
            const auto data = registry.Read(key, name).value_or(RegistryValue{}).data;
            all[ToUtf8(key) + ToUtf8(name)].assign(data.begin(), data.end());
        }
    }
    return all;
}

// A bridge that runs: its name is taken, and it tells its status. However slow the test is, its last tick has only just been.
struct ClaimedName {
    std::unique_ptr<System> system;
    FakeClock clock = {};
};
struct RunningBridge : ClaimedName, BridgeStatusWriter {
    explicit RunningBridge(const TestSystem& test)
        : ClaimedName{SystemOf(test.Arguments())}, BridgeStatusWriter(system->GetStatusBoard(), clock) {
        EXPECT_TRUE(system->GetInstance().Claim(kBridgeName));
    }
};

struct CtlTest : ::testing::Test, System {
    CoreServices Core() override { return test.system->Core(); }
    Libraries& GetLibraries() override { return test.system->GetLibraries(); }
    Instance& GetInstance() override { return instance ? *instance : test.system->GetInstance(); }
    StatusBoard& GetStatusBoard() override { return test.system->GetStatusBoard(); }
    Executable& GetExecutable() override { return test.system->GetExecutable(); }
    Console& GetConsole() override { return console; }
    CrashReports& GetCrashReports() override { return test.system->GetCrashReports(); }

    // Another program of the suite starts and publishes these.
    void StartSuite(const std::vector<std::pair<ChannelId, double>>& published = {}) {
        suite = std::make_unique<CCore>(Core());
        for (const auto& [channel, value] : published) Publish(channel, value);
    }
    RecordBytes Record() { return RecordBytes(suite->View()); }
    void Publish(ChannelId channel, double value, double secondsAgo = 0.0) {
        suite->SetChannel(channel, 0, value, UtcNowDays(Core().clock) - secondsAgo / 86400);
    }

    // All that a command says, as it is typed.
    std::string Said(const std::string& command, int status = 0) {
        std::istringstream words(command);
        console.written.clear();
        console.forgets = false;
        EXPECT_EQ(status, RunCommandLine(*this, {std::istream_iterator<std::string>(words), {}})) << command;
        return console.written;
    }
    // A guest would find the record.
    bool Held() { return CCore(Core(), Attachment::kOpenOnly).View() != nullptr; }
    // Parts of what each command says.
    void ExpectSaid(int status, const std::vector<std::pair<const char*, std::vector<const char*>>>& rows) {
        for (const auto& [typed, said] : rows) ExpectIn(Said(typed, status), said);
    }

    TestSystem test;
    FakeConsole console;
    Instance* instance = nullptr;  // in place of the system's
    std::unique_ptr<CCore> suite;
};

// Time passes only as the test says.
struct TimedCtlTest : CtlTest {
    CoreServices Core() override {
        const CoreServices real = test.system->Core();
        Registry& ofTest = registry ? *registry : real.registry;
        return {clock, zone, real.memory, ofTest, files ? *files : real.files, real.xml, real.desktop};
    }

    FakeClock clock;
    FakeZone zone;
    Registry* registry = nullptr;  // in place of the machine's
    Files* files = nullptr;        // likewise
};

}  // namespace twr::testing
