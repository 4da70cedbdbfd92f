// SPDX-License-Identifier: MIT
// Recordings that are made by themselves: a file a day, on board, in the data folder.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/system.h"

namespace twr {

// What is kept of them: those of so many days, today among them, or so many bytes. 0 for no bound.
struct KeptDays {
    std::int64_t days = 0;
    std::uint64_t bytes = 0;
};

// "30" or "30d" for days, "500M" or "4G" for bytes; nullopt for anything else.
std::optional<KeptDays> ParseKeep(std::string_view text);

// Where these files are.
std::u16string RecordingsFolder(std::u16string_view dataFolder);

// Takes the right to make them there, which one program has at a time; nullptr while another has it.
std::unique_ptr<FileLock> TakeDays(Files& files, const std::u16string& folder);

// The newest of them.
struct DaysKept {
    bool runs = false;                       // a program makes them
    std::u16string newest = {};              // empty if there is none
    std::optional<double> since = {};        // from then on they have no break, maybe over several files; days, UTC
    std::optional<double> until = {};        // when the newest last grew; days, UTC
    std::optional<std::uint64_t> room = {};  // bytes that their disk has left; nullopt if there is no folder for them
    bool isFull = false;                     // too little room to go on
};
DaysKept LookAtDays(Files& files, const std::u16string& folder);

class DayFiles {
public:
    DayFiles(Files& files, std::u16string folder, const KeptDays& keep) : files_(files), folder_(std::move(folder)), keep_(keep) {}

    // Packed, with the fields of recording_name.h.
    std::u16string Name() const;

    // Removes the oldest of these files beyond what is kept, never the one at `current`. Why no recording can go on, for want of
    // room; empty if it can. `today` is the day on board.
    std::string Tend(std::u16string_view current, std::int64_t today);

private:
    Files& files_;
    const std::u16string folder_;
    const KeptDays keep_;
};

}  // namespace twr
