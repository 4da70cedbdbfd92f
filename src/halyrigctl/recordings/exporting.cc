// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/exporting.h"

#include <algorithm>
#include <tuple>

#include "base/wide_text.h"

namespace twr {

std::optional<Refusal> TakeSpan(const RecordedFiles& files, const BoardZone& board, const std::string& from, const std::string& to,
                                Span& span) {
    const RecordedFile* first = nullptr;
    for (const RecordedFile& file : files.All()) {
        if (!file.start) continue;
        if (!first) first = &file;
        if (file.IsDated() != first->IsDated())
            return Refusal{kFailed, Harmless((file.IsDated() ? *first : file).path) +
                                        " tells no date, so that its place among the others is not known; export it alone."};
    }
    const std::string fault = files.Fault();
    if (!first) return Refusal{kFailed, fault.empty() ? "there is no value in what you named." : fault};
    double start = *first->start;
    const std::tuple<const char*, const std::string&, double&> bounds[] = {{"--from", from, span.from}, {"--to", to, span.to}};
    for (const auto& [name, typed, bound] : bounds) {
        if (typed.empty()) continue;
        const auto time = ParseTypedTime(typed);
        if (!time)
            return Refusal{kMisunderstood, std::string(name) + " must be " + kTypedTimes + "; not " + Harmless(FromUtf8(typed))};
        bound = time->MomentFrom(time->fromStart ? *first->start : start, board);
        start = std::max(start, bound);  // the end of a day is behind its beginning
    }
    return std::nullopt;
}

bool Sink::Open() {
    if (path_.empty()) return true;
    Files& files = system_.Core().files;
    file_ = files.Create(FromUtf8(path_));
    if (file_) return true;
    return Fail(files.Exists(FromUtf8(path_)) ? "is there already, and is not overwritten; give another name."
                                              : "can't be made: its folder is missing or may not be written, or the disk is full.");
}

bool Sink::Put(std::size_t atLeast) {
    if (failed_ || bytes_.size() < atLeast) return !failed_;
    if (file_ && !file_->Write(bytes_)) Fail("can't be written any more: the disk is full, or has gone.");
    if (!file_ && Print(system_.GetConsole(), bytes_) != kDone) failed_ = true;
    bytes_.clear();
    return !failed_;
}

bool Sink::Close() {
    return Put(1) && (!file_ || file_->Flush() || Fail("can't be written to its end: the disk is full, or has gone."));
}

bool Sink::Fail(const char* why) {
    Complain(system_.GetConsole(), Harmless(FromUtf8(path_)) + " " + why);
    failed_ = true;
    return false;
}

}  // namespace twr
