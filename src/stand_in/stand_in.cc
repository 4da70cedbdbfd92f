// SPDX-License-Identifier: MIT
#include "stand_in/stand_in.h"

#include <algorithm>
#include <charconv>

#include "base/wide_text.h"
#include "nmea/sentence.h"
#include "platform/files.h"
#include "stand_in/log_replay.h"
#include "stand_in/sailing_simulation.h"
#include "stand_in/variables.h"

namespace twr {
namespace {

constexpr double kSlowest = 0.1;
constexpr double kFastest = 100.0;
constexpr std::int32_t kShortestLead = 10;
constexpr std::int32_t kLongestLead = 3600;
constexpr int kMostLines = 1000;

template <class Number>
bool ParseWhole(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

void TakeSetting(std::string_view key, std::string_view value, StandInSettings& settings) {
    std::uint64_t seed = 0;
    std::int32_t lead = 0;
    if (key == "seed" && ParseWhole(value, seed)) settings.seed = seed;
    if (key == "start_lead" && ParseWhole(value, lead) && lead >= kShortestLead && lead <= kLongestLead) settings.startLead = lead;
    if (key == "speed") {
        const auto speed = ParseDecimal(value);
        if (speed && *speed >= kSlowest && *speed <= kFastest) settings.speed = *speed;
    }
}

constexpr std::int64_t kOneMoment = 200000;       // 20 ms: all reads within it see the same moment
constexpr std::int64_t kLongestStep = 100000000;  // 10 s; after a longer sleep it goes on where it was

std::unique_ptr<InstrumentSource> MakeSource(Files& files, std::u16string_view folder, const StandInSettings& settings) {
    const std::u16string log = JoinPath(folder, u"recording.nmea");
    if (files.Exists(log)) return std::make_unique<LogReplay>(files, log);
    return std::make_unique<SailingSimulation>(settings.seed, settings.startLead);
}

}  // namespace

StandInSettings ReadStandInSettings(Files& files, std::u16string_view path) {
    StandInSettings settings;
    const auto source = files.Open(path);
    if (!source) return settings;
    BoundedLines lines(*source, kLogLines);
    for (int i = 0; i < kMostLines && lines.Next(); ++i) {
        const std::string_view line = lines.Line();
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos)
            TakeSetting(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)), settings);
    }
    return settings;
}

StandIn::StandIn(const StandInServices& services, std::u16string_view folder)
    : clock_(services.clock),
      settings_(ReadStandInSettings(services.files, JoinPath(folder, u"simulation.txt"))),
      source_(MakeSource(services.files, folder, settings_)),
      displays_(services.memory, folder),
      lastTicks_(services.clock.Ticks()) {}

const Moment& StandIn::Now() {
    const std::int64_t ticks = clock_.Ticks();
    const std::int64_t passed = ticks - lastTicks_;
    if (passed < 0) lastTicks_ = ticks;  // the clock was set back
    if (passed >= kOneMoment) {
        lastTicks_ = ticks;
        source_->Advance(static_cast<double>(std::min(passed, kLongestStep)) / kTicksPerSecond * settings_.speed);
    }
    return source_->Now();
}

float StandIn::Read(std::int32_t variable) {
    const Moment& now = Now();
    const auto quantity = QuantityOf(variable);
    return quantity ? now[*quantity] : kAbsent;
}

void StandIn::Position(float& latitude, float& longitude) {
    const Moment& now = Now();
    latitude = now[Quantity::kLat];
    longitude = now[Quantity::kLon];
}

}  // namespace twr
