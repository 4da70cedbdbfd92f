// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "halyrigctl/recordings/race_log.h"
#include "halyrigctl/recordings/recorded_files.h"
#include "halyrigctl/recordings/replayer.h"
#include "halyrigctl/recordings/survey.h"
#include "halyrigctl/recordings/table_rows.h"
#include "kept_core.h"

namespace {

// Turns and legs are in their order, and in the rows.
void LookForRace(const twr::RaceLog& log) {
    const std::vector<twr::RaceRow>& rows = log.Rows();
    auto turns = twr::FindTurns(rows);
    const auto legs = twr::FindLegs(rows, log.Guns(), turns).all;
    twr::FindCosts(rows, legs, turns);
    twr::FindStarts(rows, log.Guns());
    twr::FindPolarBands(rows, turns);
    if (!std::ranges::is_sorted(turns, {}, &twr::Turn::row) || !std::ranges::is_sorted(legs, {}, &twr::Leg::from)) __builtin_trap();
    if (!legs.empty() && legs.back().to > rows.size()) __builtin_trap();
}

// What is told of the file and made a table of: no more rows than its time has seconds, each in its form.
void LookThrough(twr::testing::KeptCore& kept) {
    twr::RecordedFiles files(kept.machine.files, {"/file"}, [] { return true; });
    twr::Survey survey(kept.core);
    twr::RaceLog log(kept.core, 0, -1e9, 1e9);
    std::size_t changes = 0, rows = 0;
    twr::TableRows table(kept.core, {1000, {twr::kBsp, twr::kHdg, twr::kMkLat}, {0, 7}}, [&](const twr::TableRow& row) {
        if (row.values.size() != 3 || !std::isfinite(row.time)) __builtin_trap();
        ++rows;
    });
    for (auto next = files.Next(); next; next = files.Next(), ++changes) {
        survey.Take(*next);
        table.Take(*next);
        log.Take(*next);
    }
    table.Finish();
    log.Finish();
    LookForRace(log);
    if (rows > 122 * (changes + 1)) __builtin_trap();  // two boats, and a gap begins after a minute
    for (const twr::ChannelId channel : survey.Channels()) {
        const twr::ChannelSurvey* const found = survey.Of(channel, survey.Boats().front());
        if (found && (found->least > found->greatest || found->last < found->least)) __builtin_trap();
    }
    files.Fault();
}

}  // namespace

// A file that is to be replayed, packed or not: what comes of it is in its order and in the bounds of the record.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static twr::testing::KeptCore kept;
    kept.Reset();
    twr::testing::FakeMachine& machine = kept.machine;
    machine.files.files.push_back({u"/file", std::string(reinterpret_cast<const char*>(data), size)});
    LookThrough(kept);
    twr::RecordedFile file{u"/file"};
    const auto source = twr::OpenRecorded(machine.files, file, [] { return true; });
    if (!source) return 0;
    twr::Put(kept.core.View()->sysFlag[twr::kFlagMastAngle], std::uint8_t{1});
    // The last byte says whether it is played from a later time on.
    const bool later = size > 0 && data[size - 1] % 2 == 1;
    twr::Replayer replayer(kept.core, *source, {}, later ? [](double first) { return first + 0.01; } : twr::ReplayStart{});
    double due = 0.0;
    for (int step = 0; step < 100 && replayer.PlayTo(due) != twr::Replayer::Result::kEnded; ++step) {
        // What is published at once is at most behind.
        if (!std::isfinite(replayer.Due()) || replayer.Due() < 0.0) __builtin_trap();
        due = std::max(due, replayer.Due());
    }
    source->Fault();
    return 0;
}
