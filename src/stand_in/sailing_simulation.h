// SPDX-License-Identifier: MIT
// A day's racing of a 16 m yacht in the Celtic Sea, the same for the same seed and time. The instruments' source if there is no
// recording.
#pragma once
#include <cstdint>

#include "stand_in/instrument_source.h"
#include "stand_in/race.h"
#include "stand_in/racing_yacht.h"
#include "stand_in/random.h"
#include "stand_in/wind_model.h"
#include "stand_in/yacht_polar.h"

namespace twr {

class SailingSimulation : public InstrumentSource {
public:
    // `startLead`: seconds of the count before each start, at least 1.
    SailingSimulation(std::uint64_t seed, std::int32_t startLead);

    // Runs in steps of a tenth of a second, so that many small advances give the same result as one large one.
    void Advance(double seconds) override;
    const Moment& Now() const override { return moment_; }

private:
    Vector Current() const;
    void Step();
    void Describe();
    void DescribeSailing();
    void DescribeTargets();
    void DescribeSurroundings();

    Random random_;
    YachtPolar polar_;
    WindModel wind_;
    double tidePhase_;
    Race race_;
    RacingYacht yacht_;
    std::int64_t ticks_ = 0;  // of 100 ns
    std::int64_t steps_ = 0;
    Moment moment_;
};

}  // namespace twr
