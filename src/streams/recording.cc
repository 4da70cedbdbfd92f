// SPDX-License-Identifier: MIT
#include "streams/recording.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "core/days.h"
#include "streams/recording_name.h"

namespace twr {
namespace {

constexpr double kFlushAfter = 0.95 / kSecondsPerDay;  // a second, for a look that comes a little early
constexpr const char* kUnwritable = "can't be written any more: the disk is full, or has gone.";
constexpr int kMostFiles = 100000;    // of one name
constexpr double kLongestGap = 60.0;  // seconds; longer ones are cut: nobody published anything, or the clock was set

}  // namespace

bool RecordingWriter::Put(std::string_view lines, RecordingMoment now) {
    if (!fault_.empty()) return false;
    if (file_ && !lines.empty() && NameAt(options_.name, now.shown) != name_ && !Close()) return false;
    now_ = now;
    if (lines.empty()) return true;
    if (!file_ && !Open()) return false;
    AppendMark(pending_, now.utc);  // ahead of what changed at that look: publications may bear stamps of their own
    pending_ += lines;
    return true;
}

bool RecordingWriter::Keep() {
    if (!fault_.empty()) return false;
    // A clock that was set back must not stop the writing.
    if (!file_ || std::fabs(now_.utc - flushed_) < kFlushAfter) return true;
    if (!FindAgain() || !Flush()) return false;
    if (const std::string why = options_.tend ? options_.tend(path_, WholeNumber<std::int64_t>(now_.shown)) : ""; !why.empty()) {
        Close();
        return Fail(why);
    }
    return options_.maxSize == 0 || size_ < options_.maxSize || Close();
}

bool RecordingWriter::Begin(RecordingMoment now) {
    now_ = now;
    return file_ || (Open() && Flush());
}

bool RecordingWriter::Close() {
    const bool open = fault_.empty() && file_ && (pending_.empty() || FindAgain());
    if (open && Flush() && packer_ && !(Write(packer_->Finish()) && file_->Flush())) Fail(kUnwritable);
    file_.reset();
    packer_.reset();
    return fault_.empty();
}

// Never a file that exists: who looks for a recording finds what was written then. Files of the same name are numbered.
bool RecordingWriter::Open() {
    if (givenUp_) return Fail(kUnwritable);
    std::u16string name = NameAt(options_.name, now_.shown);
    if (name != name_) number_ = 0;
    name_ = std::move(name);
    while (!file_ && number_ < kMostFiles) {
        path_ = NumberedName(name_, ++number_);
        file_ = files_.Create(path_);
        if (!file_ && !files_.Exists(path_)) break;
    }
    if (!file_) return Fail("can't be made: its folder is missing or may not be written, or the disk is full.");
    if (options_.gzip) packer_.emplace();
    lost_.clear();
    ++begun_;
    size_ = 0;
    flushed_ = now_.utc;
    std::string header;
    AppendHeader(header, now_.utc);
    pending_.insert(0, header);
    return true;
}

// What was not written yet to a file that is not found any more goes to the next one.
bool RecordingWriter::FindAgain() {
    if (file_->HasItsName()) return true;
    const std::u16string lost = path_;
    file_.reset();
    packer_.reset();
    if (!Open()) return false;
    lost_ = lost;
    return true;
}

bool RecordingWriter::Flush() {
    flushed_ = now_.utc;
    const bool written = pending_.empty() || (Write(packer_ ? packer_->Pack(pending_) : pending_) && file_->Flush());
    pending_.clear();
    if (!written) return Fail(kUnwritable);
    kept_ = flushed_;
    return true;
}

bool RecordingWriter::Write(std::string_view bytes) {
    size_ += bytes.size();
    return file_->Write(bytes);
}

bool RecordingWriter::Fail(const std::string& what) {
    if (fault_.empty()) fault_ = what;
    return false;
}

std::optional<Recorded> RecordingReader::Next() {
    while (const std::optional<Change> change = lines_.Next()) {
        if (change->channel == kTime) {
            marked_ = true;
            Reach(change->time);
            reached_ = change->time;
            continue;
        }
        if (!marked_) Reach(change->time);
        return Recorded{seconds_, *reached_, *change, lines_.TakeSeam()};
    }
    return std::nullopt;
}

// Stamps of single values may lie in the past, so only a mark sets the time back.
void RecordingReader::Reach(double time) {
    const double before = reached_.value_or(time);
    seconds_ += std::clamp((time - before) * kSecondsPerDay, 0.0, kLongestGap);
    reached_ = std::max(before, time);
}

std::string RecordingReader::Fault() const {
    if (!lines_.Fault().empty()) return lines_.Fault();
    const std::string fault = file_->Fault();
    return fault.empty() ? "" : "line " + std::to_string(lines_.Number() + 1) + ": " + fault;
}

}  // namespace twr
