// SPDX-License-Identifier: MIT
// A recording: lines of JSON behind a header. docs/streams.md describes it.
#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "streams/gzip.h"
#include "streams/json_lines.h"

namespace twr {

struct RecordingOptions {
    std::u16string name = {};  // of the file; with the fields of recording_name.h
    bool gzip = false;
    std::uint64_t maxSize = 0;  // bytes, after which a new file begins; 0 for no bound
    // Called by whoever writes, about once a second, with the file that is written and the day that is shown. What it returns ends
    // the recording, as its fault.
    std::function<std::string(std::u16string_view path, std::int64_t day)> tend = {};
};

// A moment, in days.
struct RecordingMoment {
    double utc;
    double shown;  // in the zone in which times of day are shown
};

// Writes it, file after file.
class RecordingWriter {
public:
    RecordingWriter(Files& files, const RecordingOptions& options) : files_(files), options_(options) {}

    // Takes the lines of a look, none if nothing has changed. False if a file can't be made or written, which ends the recording;
    // Fault() says why.
    bool Put(std::string_view lines, RecordingMoment now);

    // Writes all it has to the disk if that was done last a second ago. If the file is not found under its name any more, it goes
    // to a new one. False as above. To be called several times a second.
    bool Keep();

    // Makes the file, even if there is nothing to write yet. False if it can't be made.
    bool Begin(RecordingMoment now);

    // Writes what is left, and ends the file.
    bool Close();

    // From another thread: no file is looked for or begun from now on.
    void GiveUp() { givenUp_ = true; }

    const std::string& Fault() const { return fault_; }   // what is wrong and what to do, in UTF-8; empty while nothing is
    const std::u16string& Path() const { return path_; }  // of the file written last
    const std::u16string& Lost() const { return lost_; }  // of the one before if that was not found under its name any more
    int Begun() const { return begun_; }                  // files
    double Kept() const { return kept_; }                 // what was put up to then is on the disk; days, UTC

private:
    bool Open();
    bool FindAgain();
    bool Flush();
    bool Write(std::string_view bytes);
    bool Fail(const std::string& what);

    Files& files_;
    const RecordingOptions options_;
    std::unique_ptr<FileWriter> file_;
    std::optional<GzipPacker> packer_;
    std::u16string name_;  // of the first file at this time
    std::u16string path_, lost_;
    int number_ = 0;       // of the file, among those of that name
    std::string pending_;  // lines that are not written yet
    std::uint64_t size_ = 0;
    int begun_ = 0;
    RecordingMoment now_{};  // of what was put last
    double flushed_ = 0.0;   // days, UTC
    double kept_ = 0.0;      // the same, of the last time that succeeded
    std::atomic<bool> givenUp_ = false;
    std::string fault_;
};

// Reads one, or what halyrigctl stream has written.
class RecordingReader : public RecordedSource {
public:
    explicit RecordingReader(std::unique_ptr<UnpackingSource> file) : file_(std::move(file)), lines_(*file_) {}

    std::optional<Recorded> Next() override;
    std::string Fault() const override;
    bool IsTorn() const override { return lines_.IsTorn(); }

private:
    void Reach(double time);

    const std::unique_ptr<UnpackingSource> file_;
    JsonLineReader lines_;
    double seconds_ = 0.0;
    std::optional<double> reached_;  // days
    bool marked_ = false;            // lines of the Time channel tell the time
};

}  // namespace twr
