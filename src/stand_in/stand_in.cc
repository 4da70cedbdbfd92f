#include "stand_in/stand_in.h"

#include <algorithm>

#include "platform/paths.h"
#include "stand_in/log_replay.h"
#include "stand_in/sailing_simulation.h"
#include "stand_in/variables.h"

namespace twr {
namespace {

constexpr double kTicksPerSecond = 1e7;
constexpr std::int64_t kOneMoment = 200000;       // 20 ms: all reads within it see the same moment
constexpr std::int64_t kLongestStep = 100000000;  // 10 s; after a longer sleep it goes on where it was

std::unique_ptr<InstrumentSource> MakeSource(Files& files, std::u16string_view folder, const StandInSettings& settings) {
    const std::u16string recording = JoinPath(folder, u"recording.nmea");
    if (files.Exists(recording)) return std::make_unique<LogReplay>(files, recording);
    return std::make_unique<SailingSimulation>(settings.seed, settings.startLead);
}

}  // namespace

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
