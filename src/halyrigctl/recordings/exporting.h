// SPDX-License-Identifier: MIT
// What the commands that make something of recordings have in common: the times between which, and where it goes.
#pragma once
#include <memory>
#include <optional>
#include <string>

#include "halyrigctl/output/say.h"
#include "halyrigctl/recordings/board_time.h"
#include "halyrigctl/recordings/recorded_files.h"
#include "platform/system.h"

namespace twr {

// Days of UTC, both included.
struct Span {
    double from = -1e9, to = 1e9;
};

struct Refusal {
    Status status;
    std::string why;
};

// Takes `from` and `to`, as ParseTypedTime takes them; empty for no bound. Refuses files that have no value, or no common time.
std::optional<Refusal> TakeSpan(const RecordedFiles& files, const BoardZone& board, const std::string& from, const std::string& to,
                                Span& span);

// Standard output, or a new file. What goes wrong is on standard error then.
class Sink {
public:
    Sink(System& system, std::string path) : system_(system), path_(std::move(path)) {}

    bool Open();
    std::string& Bytes() { return bytes_; }
    // Writes the bytes if there are so many. False once nothing can be written any more.
    bool Put(std::size_t atLeast = 1 << 18);
    bool Close();

private:
    bool Fail(const char* why);

    System& system_;
    const std::string path_;
    std::unique_ptr<FileWriter> file_;
    std::string bytes_;
    bool failed_ = false;
};

}  // namespace twr
