// The latest readings from the sentences of a recording, each with the time at which it was received.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "stand_in/moment.h"
#include "stand_in/nmea_sentence.h"

namespace twr {

// Units as in Moment, but depths in metres; angles and bearings as they are named.
enum class Reading : std::uint8_t {
    kBsp,
    kHeadingTrue,
    kHeadingMagnetic,
    kVariation,
    kCourseVariation,  // between the true and the magnetic course
    kAwa,
    kAws,
    kTwa,
    kTws,
    kTwdTrue,
    kTwdMagnetic,
    kCogTrue,
    kCogMagnetic,
    kSog,
    kSetTrue,
    kSetMagnetic,
    kDrift,
    kLat,
    kLon,
    kDepthBelowSurface,
    kDepthBelowTransducer,
    kSeaTemp,
    kAirTemp,
    kBaro,
    kVmg,
    kRateOfTurn,
    kRudder,
    kHeel,
    kTrim,
    kVolts,
    kCount
};

class Readings {
public:
    static constexpr double kLife = 10.0;  // seconds for which a reading is valid

    // Takes the readings of the sentence. Those that are empty, malformed, marked as invalid or implausible are ignored. False if
    // there are no others in it.
    bool Take(const NmeaSentence& sentence, double time);

    void Clear() { heard_.fill({}); }

    // What is known at `time`: the readings that are still valid, and what follows from them.
    Moment At(double time) const;

private:
    struct Heard {
        double value = 0.0;
        double time = -2.0 * kLife;
    };

    std::optional<double> Get(Reading reading, double time) const;

    std::array<Heard, static_cast<std::size_t>(Reading::kCount)> heard_;
};

// The sentence's time in seconds since midnight; nullopt if its type has no time or the field is empty.
std::optional<double> TimeOfDayOf(const NmeaSentence& sentence);

}  // namespace twr
