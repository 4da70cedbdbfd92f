// Reads a recording of lines of JSON, or what halyrigctl stream has written.
#pragma once
#include <memory>
#include <optional>
#include <string>

#include "streams/json_lines.h"
#include "streams/recorded.h"
#include "streams/gzip.h"

namespace twr {

class RecordingReader : public RecordedSource {
public:
    explicit RecordingReader(std::unique_ptr<UnpackingSource> file) : file_(std::move(file)), lines_(*file_) {}

    std::optional<Recorded> Next() override;
    std::string Fault() const override;

private:
    void Reach(double time);

    const std::unique_ptr<UnpackingSource> file_;
    JsonLineReader lines_;
    double seconds_ = 0.0;
    std::optional<double> reached_;  // days
    bool marked_ = false;            // lines of the Time channel tell the time
};

}  // namespace twr
