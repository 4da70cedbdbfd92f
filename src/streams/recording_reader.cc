#include "streams/recording_reader.h"

#include <algorithm>

#include "core/days.h"

namespace twr {
namespace {

// Longer ones are cut: nobody published anything, or the clock was set.
constexpr double kLongestGap = 60.0;  // seconds

}  // namespace

std::optional<Recorded> RecordingReader::Next() {
    while (const std::optional<Change> change = lines_.Next()) {
        if (change->channel == kTime) {
            marked_ = true;
            Reach(change->time);
            reached_ = change->time;
            continue;
        }
        if (!marked_) Reach(change->time);
        return Recorded{seconds_, *reached_, *change};
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
