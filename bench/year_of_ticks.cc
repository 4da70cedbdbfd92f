// SPDX-License-Identifier: MIT
// The bridge's two passes under a clock that a tick advances by 100 ms, as fast as they run: a year takes minutes.
//   year_of_ticks [DAYS [YYYY-MM-DD]]    366 days from 2027-07-01: both changes of daylight time, a new year, a leap day
// On each tick every stamp is compared with the clock by the formula, and the steady value's repetition with a second; every hour
// the time of day that a user sees is compared with the standard library's. Prints a Markdown table. Ends with status 1 if one of
// them is wrong, or memory has grown since the first tenth of the time.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "base/calendar.h"
#include "base/wide_text.h"
#include "bridge/instrument_pass.h"
#include "bridge/remote_pass.h"
#include "core/record_access.h"
#include "support/fakes.h"
#include "support/stub_deckman.h"

namespace twr {
namespace {

using namespace std::chrono;
using Ticks = duration<std::int64_t, std::ratio<1, 10'000'000>>;

constexpr std::int64_t kTick = 1'000'000, kHour = 36'000'000'000;
constexpr int kGrowthKiB = 256;  // the kernel counts in lots of pages

float changing = 0.0f;
void TWR_EXPORT_CALL Read(std::int32_t variable, float* value) { *value = variable == 1 ? changing : 90.0f; }
void TWR_EXPORT_CALL Show(std::uint32_t*, std::int32_t, const char*) {}

struct SteppedClock : Clock {
    std::int64_t Ticks() const override { return ticks; }
    std::int64_t ticks = 0;
};

int ResidentKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) return std::atoi(line.c_str() + 6);
    }
    return 0;
}

// Central Europe.
bool IsDaylight(sys_seconds time) {
    const year thisYear = year_month_day(floor<days>(time)).year();
    return time >= sys_days(thisYear / March / Sunday[last]) + hours(1) &&
           time < sys_days(thisYear / October / Sunday[last]) + hours(1);
}

std::u16string LocalText(sys_seconds time) {
    time += hours(IsDaylight(time) ? 2 : 1);
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
    return FromBytes(text);
}

struct Bridge {
    explicit Bridge(std::int64_t start) {
        clock.ticks = start;
        library.fnRead = Read;
        library.fnSetISData = library.fnSetISName = Show;
        for (const ChannelId channel : {kBsp, kHdg}) {
            const auto number = static_cast<std::int32_t>(channel);
            variables.emplace_back().channel = remotes.emplace_back().channel = number;
            variables.back().dfwId = number;
        }
        remotes.emplace_back().channel = static_cast<std::int32_t>(kTime);
    }

    void Tick() {
        changing = changing < 9.0f ? changing + 0.25f : 0.0f;
        instruments.Run(library, variables, -1, settings);
        texts.Run(library, remotes, settings);
    }
    double Stamp(ChannelId channel) const { return Load(core.View()->fullBlocks[0].time[channel]); }
    double Value(ChannelId channel) const { return Load(core.View()->fullBlocks[0].value[channel]); }

    testing::FakeMachine machine;
    SteppedClock clock;
    CCore core{CoreServices{clock, machine.zone, machine.memory, machine.registry, machine.files, machine.xml, machine.desktop}};
    testing::StubDeckman deckman;
    DeckmanLibrary library{deckman};
    std::vector<MappingVar> variables;
    std::vector<MappingRemote> remotes;
    Settings settings;
    InstrumentPass instruments{core, clock};
    RemotePass texts{core};
};

struct Faults {
    std::int64_t stamps = 0, repetitions = 0, texts = 0;
    double furthest = 0.0;  // microseconds between a stamp and the clock

    void LookAtTick(const Bridge& bridge, double before) {
        const std::int64_t ticks = bridge.clock.ticks;
        const double now = static_cast<double>(ticks) / 864000000000.0 + 25569.0;
        const double steady = bridge.Stamp(kHdg);
        if (bridge.Stamp(kBsp) != now || bridge.Value(kBsp) != changing || bridge.Value(kTime) != now) ++stamps;
        // A second is 10 ticks, or 11 where the rounding of days makes 10 of them no longer than a second.
        const double age = (now - steady) * 864000.0, step = (steady - before) * 864000.0;
        if (!(age < 10.5) || (before != 0.0 && step != 0.0 && !(step > 9.5 && step < 11.5))) ++repetitions;
        const long double exact = static_cast<long double>(ticks) / 864000000000.0L + 25569.0L;
        furthest =
            std::max(furthest, static_cast<double>(std::fabs(static_cast<long double>(bridge.Stamp(kBsp)) - exact)) * 86400e6);
    }

    void LookAtHour(Bridge& bridge) {
        const auto time = floor<seconds>(sys_time<Ticks>(Ticks(bridge.clock.ticks)));
        bridge.machine.zone.state = ZoneState{-60, -60, IsDaylight(time)};
        if (DateTimeFormat(bridge.core.ToDisplayTime(bridge.Value(kTime)), u"%Y-%m-%d %H:%M:%S") != LocalText(time)) ++texts;
    }
};

int Run(std::int64_t daysToRun, std::int64_t start) {
    Bridge bridge(start);
    Faults faults;
    const double bound = (std::nextafter(DaysFromTicks(start), 1e9) - DaysFromTicks(start)) * 86400e6;  // the last bit of a double
    const std::int64_t end = start + daysToRun * 24 * kHour, settled = start + (end - start) / 10;
    const auto begun = steady_clock::now();
    int resident = 0;
    while ((bridge.clock.ticks += kTick) <= end) {
        const double before = bridge.Stamp(kHdg);
        bridge.Tick();
        faults.LookAtTick(bridge, before);
        if (bridge.clock.ticks % kHour == 0) faults.LookAtHour(bridge);
        if (bridge.clock.ticks == settled) resident = ResidentKiB();
    }
    const double took = duration<double>(steady_clock::now() - begun).count();
    const int grown = ResidentKiB() - resident;
    const auto ticks = static_cast<double>(end - start) / kTick;
    std::printf(
        "| days | ticks | took s | ns a tick | wrong stamps | furthest from the clock us | bound us | wrong repetitions "
        "| wrong times of day | memory KiB | grown KiB |\n|---|---|---|---|---|---|---|---|---|---|---|\n");
    std::printf("| %lld | %.0f | %.1f | %.0f | %lld | %.3f | %.3f | %lld | %lld | %d | %d |\n", static_cast<long long>(daysToRun),
                ticks, took, took * 1e9 / ticks, static_cast<long long>(faults.stamps), faults.furthest, bound,
                static_cast<long long>(faults.repetitions), static_cast<long long>(faults.texts), resident + grown, grown);
    const bool right = faults.stamps + faults.repetitions + faults.texts == 0 && faults.furthest <= bound;
    return right && grown <= kGrowthKiB ? 0 : 1;
}

}  // namespace
}  // namespace twr

int main(int count, char** words) {
    using namespace std::chrono;
    int year = 2027, month = 7, day = 1;
    const int daysToRun = count > 1 ? std::atoi(words[1]) : 366;
    const bool dated = count < 3 || std::sscanf(words[2], "%d-%d-%d", &year, &month, &day) == 3;
    const year_month_day from(std::chrono::year{year}, std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(day)));
    if (count > 3 || daysToRun < 1 || !dated || !from.ok()) {
        std::fputs("usage: year_of_ticks [DAYS [YYYY-MM-DD]]\n", stderr);
        return 2;
    }
    return twr::Run(daysToRun, twr::Ticks(sys_days(from).time_since_epoch()).count());
}
