// Writes a recording: lines of JSON behind a header, file after file. docs/streams.md describes it.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "streams/gzip_packer.h"

namespace twr {

struct RecordingOptions {
    std::u16string name = {};  // of the file; with the fields of recording_name.h
    bool gzip = false;
    std::uint64_t maxSize = 0;  // bytes, after which a new file begins; 0 for no bound
};

// A moment, in days.
struct RecordingMoment {
    double utc;
    double shown;  // in the zone in which times of day are shown
};

class RecordingWriter {
public:
    RecordingWriter(Files& files, const RecordingOptions& options) : files_(files), options_(options) {}

    // Takes the lines of a look, none if nothing has changed, and writes all it has to the disk once a second. False if that
    // fails, which ends the recording; Fault() says why. To be called several times a second.
    bool Put(std::string_view lines, RecordingMoment now);

    // Makes the file, even if there is nothing to write yet. False if it can't be made.
    bool Begin(RecordingMoment now);

    // Writes what is left, and ends the file.
    bool Close();

    const std::string& Fault() const { return fault_; }   // what is wrong and what to do, in UTF-8; empty while nothing is
    const std::u16string& Path() const { return path_; }  // of the file written last

private:
    bool Open(RecordingMoment now);
    bool Flush(double now);
    bool Write(std::string_view bytes);
    bool Fail(const std::string& what);

    Files& files_;
    const RecordingOptions options_;
    std::unique_ptr<FileWriter> file_;
    std::optional<GzipPacker> packer_;
    std::u16string name_;  // of the first file at this time
    std::u16string path_;
    int number_ = 0;       // of the file, among those of that name
    std::string pending_;  // lines that are not written yet
    std::uint64_t size_ = 0;
    double flushed_ = 0.0;  // days, UTC
    std::string fault_;
};

}  // namespace twr
