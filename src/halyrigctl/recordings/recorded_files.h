// SPDX-License-Identifier: MIT
// The files that a user names, recordings or logs of NMEA 0183, packed or not: one after the other, the oldest first.
#pragma once
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "halyrigctl/recordings/nmea_log.h"
#include "platform/files.h"
#include "streams/change.h"

namespace twr {

struct RecordedFile {
    std::u16string path;
    RecordedForm form = {};
    std::optional<double> start = {};          // the moment of its first change, days; nullopt if it holds none
    std::string fault = {};                    // why it can't be read, or was read no further, in UTF-8; empty while there is none
    bool torn = false;                         // its last line has no end
    LogTally tally = {};                       // of a log
    std::shared_ptr<std::uint64_t> read = {};  // bytes so far, of the source that was opened last

    // A log that tells no date has its moments on day 0.
    bool IsDated() const { return form.kind == RecordedForm::kRecording || form.hasDate; }
};

// Opens one from its start; nullptr, with its fault, if it is none. `goOn` is asked again and again while it is read; once it
// returns false, the file ends.
std::unique_ptr<RecordedSource> OpenRecorded(Files& files, RecordedFile& file, const std::function<bool()>& goOn);

class RecordedFiles final : public RecordedSource {
public:
    // `files` must outlive this. It reads the start of each.
    RecordedFiles(Files& files, const std::vector<std::string>& paths, std::function<bool()> goOn);

    // From the start of the first file again.
    void Rewind();

    // Goes on in the next file where one can't be read any further.
    std::optional<Recorded> Next() override;
    std::string Fault() const override;  // of the first file that has one, with its name

    std::span<const RecordedFile> All() const { return all_; }

private:
    Files& files_;
    const std::function<bool()> goOn_;
    std::vector<RecordedFile> all_;
    std::size_t at_ = 0;  // in all_, of the one that is read, or is next
    std::unique_ptr<RecordedSource> source_;
    bool begins_ = false;
};

}  // namespace twr
