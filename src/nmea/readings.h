// SPDX-License-Identifier: MIT
// The readings of the sentences of a log: those of one sentence, and the latest of all.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "nmea/moment.h"
#include "nmea/sentence.h"

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
    kLog,
    kTrip,
    kHdop,
    kPdop,
    kVdop,
    kSatellites,
    kFixQuality,  // as GGA counts: 0 none, 1 GPS, 2 differential...
    kAltitude,
    kGeoidSeparation,
    kDifferentialAge,
    kDifferentialStation,
    kCount
};

// The readings that one sentence holds.
class SentenceReadings {
public:
    struct Held {
        Reading reading;
        double value;
    };

    // nullopt adds nothing.
    void Put(Reading reading, std::optional<double> value) {
        if (value && count_ < all_.size()) all_[count_++] = {reading, *value};
    }

    std::span<const Held> All() const { return std::span(all_).first(count_); }

private:
    std::array<Held, NmeaSentence::kMostFields> all_;
    std::size_t count_ = 0;
};

// Those that are empty, malformed or marked as invalid are left out; sentences of an unknown type hold none (sentence_readings.cc).
SentenceReadings ReadSentence(const NmeaSentence& sentence);

// The latest readings, each with the time at which it was received.
class Readings {
public:
    static constexpr double kLife = 10.0;  // seconds for which a reading is valid

    // Takes the readings of the sentence that are plausible. False if there are none.
    bool Take(const NmeaSentence& sentence, double time);

    void Clear() { heard_.fill({}); }

    // What is known at `time`: the readings that are still valid, and what follows from them.
    Moment At(double time) const;

    // The reading itself, if it is still valid.
    std::optional<double> Get(Reading reading, double time) const;

    // kHdg, kCog, kTwd or kSet as the record keeps it: it needs no variation if a sentence has given the magnetic one. `moment` is
    // that of `time`.
    std::optional<double> MagneticBearing(Quantity quantity, const Moment& moment, double time) const;

private:
    struct Heard {
        double value = 0.0;
        double time = -2.0 * kLife;
    };

    std::optional<double> Variation(double time) const;

    std::array<Heard, static_cast<std::size_t>(Reading::kCount)> heard_;
};

// The sentence's time in seconds since midnight; nullopt if its type has no time or the field is empty.
std::optional<double> TimeOfDayOf(const NmeaSentence& sentence);

// The date of a sentence that has one, RMC or ZDA, as the number of its day since 1899-12-30.
std::optional<double> DateOf(const NmeaSentence& sentence);

}  // namespace twr
