#include "streams/recording_writer.h"

#include <charconv>
#include <cmath>

#include "base/version.h"
#include "base/wide_text.h"
#include "core/days.h"
#include "streams/iso_time.h"
#include "streams/recording_format.h"
#include "streams/recording_name.h"

namespace twr {
namespace {

constexpr double kFlushAfter = 0.95 / kSecondsPerDay;  // a second, for a look that comes a little early
constexpr const char* kUnwritable = "can't be written any more: the disk is full, or has gone.";
constexpr int kMostFiles = 100000;  // of one name

void AppendHeader(std::string& out, double now) {
    ((out += R"({"format":")") += kRecordingFormat) += R"(","version":)" + std::to_string(kRecordingVersion);
    out += R"(,"halyrig":")" HALYRIG_VERSION R"(","units":"internal","start":")";
    AppendIsoTime(out, now);
    out += "\"}\n";
}

// The Time channel, ahead of what changed at that look: publications may bear stamps of their own.
void AppendMark(std::string& out, double now) {
    out += R"({"time":")";
    AppendIsoTime(out, now);
    char value[32];
    const char* const end = std::to_chars(value, value + sizeof value, now).ptr;
    (out += R"(","id":0,"value":)").append(value, static_cast<std::size_t>(end - value)) += "}\n";
}

}  // namespace

bool RecordingWriter::Put(std::string_view lines, RecordingMoment now) {
    if (!fault_.empty()) return false;
    if (file_ && !lines.empty() && NameAt(options_.name, now.shown) != name_ && !Close()) return false;
    if (!lines.empty()) {
        if (!file_ && !Open(now)) return false;
        AppendMark(pending_, now.utc);
        pending_ += lines;
    }
    // A clock that was set back must not stop the writing.
    if (!file_ || std::fabs(now.utc - flushed_) < kFlushAfter) return true;
    if (!Flush(now.utc)) return false;
    return options_.maxSize == 0 || size_ < options_.maxSize || Close();
}

bool RecordingWriter::Begin(RecordingMoment now) { return file_ || (Open(now) && Flush(now.utc)); }

bool RecordingWriter::Close() {
    if (file_ && Flush(flushed_) && packer_ && !(Write(packer_->Finish()) && file_->Flush())) Fail(kUnwritable);
    file_.reset();
    packer_.reset();
    return fault_.empty();
}

// Never a file that exists: who looks for a recording finds what was written then. Files of the same name are numbered.
bool RecordingWriter::Open(RecordingMoment now) {
    std::u16string name = NameAt(options_.name, now.shown);
    if (name != name_) number_ = 0;
    name_ = std::move(name);
    while (!file_ && number_ < kMostFiles) {
        path_ = NumberedName(name_, ++number_);
        file_ = files_.Create(path_);
        if (!file_ && !files_.Exists(path_)) break;
    }
    if (!file_) return Fail("can't be made: its folder is missing or may not be written, or the disk is full.");
    if (options_.gzip) packer_.emplace();
    size_ = 0;
    flushed_ = now.utc;
    AppendHeader(pending_, now.utc);
    return true;
}

bool RecordingWriter::Flush(double now) {
    flushed_ = now;
    if (pending_.empty()) return true;
    const bool written = Write(packer_ ? packer_->Pack(pending_) : pending_) && file_->Flush();
    pending_.clear();
    return written || Fail(kUnwritable);
}

bool RecordingWriter::Write(std::string_view bytes) {
    size_ += bytes.size();
    return file_->Write(bytes);
}

bool RecordingWriter::Fail(const std::string& what) {
    if (fault_.empty()) fault_ = what;
    return false;
}

}  // namespace twr
