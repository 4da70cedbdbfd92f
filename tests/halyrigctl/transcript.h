// SPDX-License-Identifier: MIT
// What commands say in a scene, word for word, compared with tests/halyrigctl/said/NAME.txt, which also tells what is typed. With
// HALYRIG_KEEP=1 in the environment it is kept anew: then read the difference like code.
#pragma once
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <regex>
#include <set>

#include "base/version.h"
#include "ctl_fixture.h"

namespace twr::testing {

class Transcript {
public:
    Transcript(const char* name, System& system, FakeConsole& console, TestSystem& test)
        : path_(std::string(SAID) + "/" + name + ".txt"), system_(system), console_(console), test_(test) {}
    Transcript(const char* name, CtlTest& test) : Transcript(name, test, test.console, test.test) {}
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

    // A command, in which ~ is the test's folder, all that it says, and its status if that isn't 0.
    void Type(const std::string& command) {
        std::istringstream words(command);
        std::vector<std::string> arguments;
        for (std::string word; words >> word;)
            arguments.push_back(std::regex_replace(word, std::regex("~"), ToUtf8(test_.folder.Text())));
        console_.written.clear();
        console_.forgets = false;
        const int status = RunCommandLine(system_, arguments);
        Tell("$ " + command, console_.written + (status == 0 ? "" : "[" + std::to_string(status) + "]"));
    }
    // What stands in the file below "# HEADING", up to the next one: files to be written, as "> PATH" with their lines below,
    // commands to be typed, as "$ COMMAND", and files to be shown, as "< PATH".
    void Play(const std::string& heading) {
        Tell("# " + heading);
        const auto kept = LinesOf(BytesOf(path_));
        auto line = std::ranges::find(kept, "# " + heading);
        EXPECT_NE(kept.end(), line) << heading << " is not in " << path_;
        while (line != kept.end() && ++line != kept.end() && !line->starts_with("# ")) {
            const std::string what = line->substr(0, 2), of = line->substr(std::min<std::size_t>(2, line->size()));
            if (what == "$ ") Type(of);
            if (what == "< ") Tell(*line, test_.folder.Read(of));
            if (what != "> ") continue;
            std::string content;
            for (auto next = line + 1; next != kept.end() && !IsEntry(*next); ++next) content += *next + "\n";
            test_.folder.Write(of, content);
            said_ += *line + "\n" + content;
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
    static bool IsEntry(const std::string& line) { return line.size() > 1 && line[1] == ' ' && std::strchr("#$<>", line[0]); }
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
