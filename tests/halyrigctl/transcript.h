// SPDX-License-Identifier: MIT
// What commands say in a scene, word for word, compared with tests/halyrigctl/said/NAME.txt, which also tells what is typed. With
// HALYRIG_KEEP=1 in the environment it is kept anew: then read the difference like code.
#pragma once
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "base/version.h"
#include "config/saved_settings.h"
#include "ctl_fixture.h"
#include "streams/iso_time.h"
#include "streams/json_lines.h"

namespace twr::testing {

// What a scene's text makes happen. Time passes only by its own doing.
struct SceneTest : TimedCtlTest {
    // "BSP@7=5.5, HDG=350" as lines of a recording; null for none.
    static std::string Lines(double time, const std::string& values) {
        std::string lines, name, value;
        for (std::istringstream parts(values); std::getline(parts >> std::ws, name, '=') && std::getline(parts, value, ',');) {
            const std::size_t at = std::min(name.find('@'), name.size());
            const auto channel = std::ranges::find(ChannelCatalogue(), FromUtf8(name.substr(0, at)), &ChannelInfo::name);
            EXPECT_NE(ChannelCatalogue().end(), channel) << name;
            lines += R"({"time":")" + IsoTime(time) + R"(","id":)" + std::to_string(channel->id);
            lines += (at < name.size() ? R"(,"boat":)" + name.substr(at + 1) : "") + R"(,"value":)" + value + "}\n";
        }
        return lines;
    }
    using CtlTest::Publish;
    void Publish(const std::string& values, double secondsAgo) {
        for (const std::string& line : LinesOf(Lines(0.0, values))) {
            const Change change = ParseJsonLine(line).change.value();
            suite->SetChannel(change.channel, change.boat, change.value, clock.Days() - secondsAgo / kSecondsPerDay);
        }
    }
    // One of `happenings`, a setting that is saved, or values that are published, some of them so many seconds ago.
    void Happens(const std::string& what) {
        std::smatch parts;
        const auto is = [&](const char* form) { return std::regex_match(what, parts, std::regex(form)); };
        const auto save = [&](const RegistryValue& to) { Core().registry.Write(kSavedSettingsKey, FromUtf8(parts.str(1)), to); };
        if (happenings.contains(what)) {
            happenings[what]();
        } else if (is("(.*) is removed")) {
            std::filesystem::remove_all(test.folder.Path() / parts.str(1));
        } else if (is("saved: (.*)=(\\d+)")) {
            save(DwordValue(static_cast<std::uint32_t>(std::stoul(parts.str(2)))));
        } else if (is("saved: (.*)=~/(.*)")) {
            save(StringValue(test.folder.File(parts.str(2))));
        } else if (is("saved: (.*)=(.*)")) {
            save(StringValue(FromUtf8(parts.str(2))));
        } else if (is("(.*), ([\\d.]+) s ago")) {
            Publish(parts.str(1), std::stod(parts.str(2)));
        } else {
            Publish(what, 0.0);
        }
    }
    std::map<std::string, std::function<void()>> happenings{
        {"the suite starts", [this] { StartSuite(); }},
        {"the suite is asked to close", [this] { Put(suite->View()->sysFlag[kFlagQuitRequest], std::uint8_t{1}); }},
        {"the suite ends", [this] { suite.reset(); }},
        {"Ctrl-C", [this] { lasts = 0; }}};

    // For a console that waits: what goes on during a command, until its user ends it.
    virtual bool Step() {
        clock.AdvanceMs(console.waited - std::exchange(passed_, console.waited));
        clock.ticks += late;
        while (!acts.empty() && acts.begin()->first <= Passed()) Happens(acts.extract(acts.begin()).mapped());
        return Passed() < lasts;
    }
    double Passed() const { return static_cast<double>(clock.ticks - typedAt) / 1e7; }

    static constexpr double kLong = 300;      // seconds
    std::multimap<double, std::string> acts;  // what happens at seconds of the next command, or of this one
    double lasts = kLong;                     // it, at most
    std::int64_t typedAt = 0;                 // ticks
    std::int64_t late = 0;                    // ticks by which looks come late

private:
    int passed_ = 0;  // milliseconds that were waited
};

class Transcript {
public:
    Transcript(const char* name, System& system, FakeConsole& console, TestSystem& test)
        : path_(std::string(SAID) + "/" + name + ".txt"), system_(system), console_(console), test_(test) {}
    Transcript(const char* name, SceneTest& test) : Transcript(name, test, test.console, test.test) {
        ways['!'] = [&](const std::string& what, const std::string&) { return test.Happens(what), ""; };
        ways['@'] = [&](const std::string& act, const std::string&) {
            test.acts.emplace(std::stod(act), act.substr(act.find(' ') + 1));
            return "";
        };
        ways['$'] = [&](const std::string& command, const std::string&) {
            test.typedAt = test.clock.ticks;
            const std::string said = Answer(command);
            test.acts.clear(), test.lasts = SceneTest::kLong;
            return said;
        };
    }
    ~Transcript() {
        if (isPart_) return;
        if (std::getenv("HALYRIG_KEEP")) std::ofstream(path_, std::ios::binary) << said_;
        const auto kept = LinesOf(BytesOf(path_)), said = LinesOf(said_);
        EXPECT_EQ(kept.size(), said.size()) << path_;
        std::string last;  // what was typed
        for (std::size_t i = 0, wrong = 0; i < std::min(kept.size(), said.size()) && wrong < 5; ++i) {
            if (kept[i].starts_with('$')) last = kept[i];
            EXPECT_EQ(kept[i], said[i]) << path_ << ":" << i + 1 << ", behind " << last;
            if (kept[i] != said[i]) ++wrong;
        }
    }
    Transcript(const Transcript&) = delete;
    Transcript& operator=(const Transcript&) = delete;

    // What the lines of a scene's text do, by their first characters: with the rest of the line, and the lines below it. Returns
    // what is told below it then.
    using Way = std::function<std::string(const std::string& of, const std::string& below)>;
    std::map<char, Way> ways{
        {'$', [this](const std::string& command, const std::string&) { return Answer(command); }},
        {'<', [this](const std::string& file, const std::string&) { return test_.folder.Read(file); }},
        {'>', [this](const std::string& file, const std::string& content) { return test_.folder.Write(file, content), content; }},
        {';', [](const std::string&, const std::string&) { return ""; }}};

    // All that a command says, in which ~ is the test's folder, and its status if that isn't 0.
    std::string Answer(const std::string& command) {
        std::istringstream words(command);
        std::vector<std::string> arguments;
        for (std::string word; words >> word;)
            arguments.push_back(std::regex_replace(word, std::regex("~"), ToUtf8(test_.folder.Text())));
        console_.written.clear();
        console_.forgets = false;
        const auto before = Snapshot(test_.folder, system_.Core().registry);
        const int status = RunCommandLine(system_, arguments);
        if (std::regex_search(command, std::regex("^(check|explain|get|watch|boats|channels|info)\\b"))) {
            EXPECT_EQ(before, Snapshot(test_.folder, system_.Core().registry)) << "looking changes nothing";
        }
        return console_.written + (status == 0 ? "" : "[" + std::to_string(status) + "]\n");
    }
    void Type(const std::string& command) { Tell("$ " + command, ways['$'](command, "")); }
    // What stands in the file below "# HEADING", up to the next one: files to be written, as "> PATH" with their lines below,
    // commands to be typed, as "$ COMMAND", files to be shown, as "< PATH", what happens, as "! WHAT", or at a second of the next
    // command, as "@ SECOND WHAT", remarks, as "; REMARK", and what else the test knows.
    void Play(const std::string& heading) {
        Tell("# " + heading);
        const auto kept = LinesOf(BytesOf(path_));
        auto line = std::ranges::find(kept, "# " + heading);
        EXPECT_NE(kept.end(), line) << heading << " is not in " << path_;
        while (line != kept.end() && ++line != kept.end() && !line->starts_with("# ")) {
            if (!IsEntry(*line)) continue;
            std::string below;
            for (auto next = line + 1; next != kept.end() && !IsEntry(*next); ++next) below += *next + "\n";
            Tell(*line, ways[line->front()](line->substr(2), below));
        }
    }
    // What has happened, or what the text behind it is.
    void Tell(const std::string& what, const std::string& text = "") {
        said_ += what + "\n";
        const std::string alike = Alike(text);
        for (const std::string& line : LinesOf(usual_.empty() ? alike : ByMember(alike)))
            if (!usual_.contains(line)) said_ += line + "\n";
    }
    // What has been said so far is left out from here on, of JSON each member.
    void LeaveOutUsual() {
        for (const std::string& line : LinesOf(ByMember(said_))) usual_.insert(line);
    }
    // Some of it can't be tried here: nothing is compared.
    void IsPart() { isPart_ = true; }

private:
    bool IsEntry(const std::string& line) const {
        return line.size() > 1 && line[1] == ' ' && (line[0] == '#' || ways.contains(line[0]));
    }
    static std::string ByMember(const std::string& text) { return std::regex_replace(text, std::regex(R"(,(["{]))"), ",\n$1"); }
    // As it is on each system and in each folder.
    std::string Alike(std::string text) const {
        const auto replace = [&](const std::string& from, const std::string& to) {
            for (std::size_t at = 0; !from.empty() && (at = text.find(from, at)) != text.npos; at += to.size())
                text.replace(at, from.size(), to);
        };
        if (kPathSeparator == u'\\') {
            replace("\\\\", "/");
            text = std::regex_replace(text, std::regex(R"(\\(?!u[0-9a-f]{4}|"))"), "/");  // but JSON's other characters
        }
        std::string folder = ToUtf8(test_.folder.Text());
        std::ranges::replace(folder, '\\', '/');
        replace(folder, "~");
        text = std::regex_replace(text, std::regex(R"(~/Deckman\d+)"), "~/Deckman");  // one of many
        text = std::regex_replace(text, std::regex(R"(belongs to (?!root\b)\w+)"), "belongs to USER");
        replace(HALYRIG_PROGRAM, "halyrig32");
        replace("Halyrig " HALYRIG_VERSION, "Halyrig VERSION");
        replace("ShDfW2" + ToUtf8(kLibrarySuffix), "ShDfW2.so");
        replace(" (unclosed token)", "");  // the words of one system's XML
        replace("\r", "\\r");
        return text;
    }

    const std::string path_;
    System& system_;
    FakeConsole& console_;
    TestSystem& test_;
    std::string said_;
    std::set<std::string> usual_;
    bool isPart_ = false;
};

}  // namespace twr::testing
