// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "halyrigctl/recordings/nmea_log.h"
#include "halyrigctl/recordings/replayer.h"
#include "kept_core.h"
#include "streams/recording.h"

namespace {

std::unique_ptr<twr::UnpackingSource> Open(twr::Files& files) {
    return std::make_unique<twr::UnpackingSource>(files.Open(u"/file"));
}

}  // namespace

// A file that is to be replayed, packed or not: what comes of it is in its order and in the bounds of the record.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static twr::testing::KeptCore kept;
    kept.Reset();
    twr::testing::FakeMachine& machine = kept.machine;
    machine.files.files.push_back({u"/file", std::string(reinterpret_cast<const char*>(data), size)});
    const twr::RecordedForm form = twr::FormOf(*Open(machine.files));
    std::unique_ptr<twr::RecordedSource> source;
    if (form == twr::RecordedForm::kRecording) {
        source = std::make_unique<twr::RecordingReader>(Open(machine.files));
    } else {
        source = std::make_unique<twr::NmeaLog>(Open(machine.files), form == twr::RecordedForm::kLogWithClock);
    }
    twr::Put(kept.core.View()->sysFlag[twr::kFlagMastAngle], std::uint8_t{1});
    // The last byte says whether it is played from a time of day on.
    const bool later = size > 0 && data[size - 1] % 2 == 1;
    twr::Replayer replayer(kept.core, *source, {}, later ? *twr::ParseReplayStart("12:00") : twr::ReplayStart{});
    double due = 0.0;
    for (int step = 0; step < 100 && replayer.PlayTo(due) != twr::Replayer::Result::kEnded; ++step) {
        // What is published at once is at most behind.
        if (!std::isfinite(replayer.Due()) || replayer.Due() < 0.0) __builtin_trap();
        due = std::max(due, replayer.Due());
    }
    source->Fault();
    return 0;
}
