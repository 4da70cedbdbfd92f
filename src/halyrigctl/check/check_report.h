// SPDX-License-Identifier: MIT
// What comes of a set-up, and its forms for people and programs.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/bridge_settings.h"
#include "halyrigctl/output/say.h"

namespace twr {

// The more serious first.
enum class Weight {
    kBridge,     // how it runs now, whatever the files say
    kSettings,   // settings that are lost, which may be why what follows is wrong
    kLibrary,    // without it nothing comes from Deckman
    kVariables,  // the same
    kMapping,    // the same
    kOld,        // what is in force is older than the files
    kLine,       // a part of the mapping that has no effect
    kConfig,     // the same of the suite's files and settings
    kNote,       // no fault
};

struct CheckFinding {
    Weight weight;
    std::u16string path = {};          // none if it concerns no file
    std::size_t line = 0, column = 0;  // from 1; 0 for none
    std::string_view flaw = {};        // a word for programs
    Advice says = {};
};

struct CheckReport {
    struct LibraryPart {
        Advice fault;                      // why it can't be loaded
        std::vector<std::string> missing;  // functions that it lacks
    };
    struct VariablesPart {
        std::u16string path;  // empty if there is none
        std::size_t count = 0;
        bool timer = false;
    };
    struct MappingPart {
        std::u16string path;
        bool exists = false;
        std::size_t lines = 0, used = 0;  // those that name a variable
        std::size_t remotes = 0;
    };

    struct RecordingPart {
        bool running = false;
        std::u16string file;                // the newest; empty if there is none
        std::string since;                  // without a break; a time on board, as the next; empty while nothing is written
        std::string until;                  // the last that it holds
        std::optional<std::uint64_t> room;  // bytes that are left for it; nullopt if there never was one
        bool full = false;                  // they are too few
    };

    bool running = false;  // the bridge
    bool inForce = false;  // the settings are those of the running bridge
    bool given = false;    // the folder is the caller's, not the one in force
    Settings settings;
    std::u16string dataFolder;
    bool dataFolderExists = false;
    LibraryPart library;
    VariablesPart variables;
    MappingPart mapping;
    RecordingPart recording;
    std::vector<CheckFinding> findings;

    // By weight; those of the same weight stay in their order. Lines of a file that share their cause become one.
    void Sort();

    std::size_t Faults() const;  // notes not counted
};

// "1 line", "2 lines"
std::string Counted(std::size_t number, const std::string& what);

std::string CheckAsText(const CheckReport& report);
std::string CheckAsSummary(const CheckReport& report);  // a few lines
std::string CheckAsJson(const CheckReport& report);

}  // namespace twr
