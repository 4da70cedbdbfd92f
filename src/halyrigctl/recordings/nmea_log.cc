// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/nmea_log.h"

#include <charconv>
#include <cmath>

#include "base/wide_text.h"
#include "core/days.h"
#include "deckman/instrument_value.h"

namespace twr {
namespace {

constexpr int kLinesToLookAt = 1000;

constexpr double kJitter = 5.0;  // seconds by which the times of one epoch may differ

// As the demo's mapping has them.
struct Mapped {
    Quantity quantity;
    ChannelId channel;
};
constexpr Mapped kMapped[] = {
    {Quantity::kVariation, kMagVar}, {Quantity::kBsp, kBsp},         {Quantity::kAwa, kAwa},       {Quantity::kAws, kAws},
    {Quantity::kTwa, kTwa},          {Quantity::kTws, kTws},         {Quantity::kTwd, kTwd},       {Quantity::kHdg, kHdg},
    {Quantity::kHeel, kHeel},        {Quantity::kTrim, kTrim},       {Quantity::kRudder, kRudder}, {Quantity::kRateOfTurn, kRot},
    {Quantity::kCog, kCog},          {Quantity::kSog, kSog},         {Quantity::kSet, kSet},       {Quantity::kDrift, kDrift},
    {Quantity::kSeaTemp, kSeaTemp},  {Quantity::kAirTemp, kAirTemp}, {Quantity::kBaro, kBaro},     {Quantity::kVmg, kVmg},
    {Quantity::kVolts, kVolts},
};

// What is in the channel's unit already, with more digits than a Moment has.
struct Direct {
    Reading reading;
    ChannelId channel;
};
constexpr Direct kDirect[] = {
    {Reading::kLat, kLat},
    {Reading::kLon, kLon},
    {Reading::kLog, kLogBsp},
    {Reading::kTrip, kTripLog},
    {Reading::kFixQuality, kGpsMethod},
    {Reading::kHdop, kHdop},
    {Reading::kPdop, kPdop},
    {Reading::kVdop, kVdop},
    {Reading::kSatellites, kGpsNum},
    {Reading::kDifferentialAge, kGpsAge},
    {Reading::kDifferentialStation, kDiffStn},
    {Reading::kAltitude, kAltitude},
    {Reading::kGeoidSeparation, kGeoSep},
};

// The number that a log had, which is no float.
double DecimalOf(float value) {
    char digits[32];
    double decimal = value;
    std::from_chars(digits, std::to_chars(digits, digits + sizeof digits, value).ptr, decimal);
    return decimal;
}

}  // namespace

RecordedForm FormOf(ByteSource& source) {
    // A line of JSON may be longer than any sentence, so its first character must do.
    struct WithFirst : ByteSource {
        explicit WithFirst(ByteSource& of) : source(of) {
            for (int blanks = 0; blanks < 4096 && source.Read(&first, 1) == 1; ++blanks) {
                if (first != ' ' && first != '\t' && first != '\r' && first != '\n') break;
            }
        }
        std::size_t Read(char* to, std::size_t room) override {
            if (given || room == 0) return source.Read(to, room);
            given = true;
            *to = first;
            return 1;
        }
        ByteSource& source;
        char first = '\0';
        bool given = false;
    } whole(source);
    if (whole.first == '{') return {RecordedForm::kRecording};
    BoundedLines lines(whole, kLogLines);
    RecordedForm form;
    for (int i = 0; i < kLinesToLookAt && !form.hasDate && lines.Next(); ++i) {
        const auto sentence = ParseSentence(lines.Line());
        if (!sentence) continue;
        form.kind = RecordedForm::kLog;
        const auto ofDay = TimeOfDayOf(*sentence), date = DateOf(*sentence);
        if (!ofDay) continue;
        form.hasClock = true;
        form.hasDate = date.has_value();
        if (date || !form.moment) form.moment = date.value_or(0.0) * kSecondsPerDay + *ofDay;
    }
    return form;
}

NmeaLog::NmeaLog(std::unique_ptr<UnpackingSource> file, const RecordedForm& form)
    : file_(std::move(file)), lines_(*file_, kLogLines), moment_(form.moment.value_or(0.0)), toldTime_(form.moment.has_value()) {
    clock_.Start(form.hasClock);
}

std::optional<Recorded> NmeaLog::Next() {
    while (gathered_.empty() && ReadEpoch()) continue;
    if (gathered_.empty()) return std::nullopt;
    const Change change = gathered_.front();
    gathered_.pop_front();
    return Recorded{gatheredAt_, change.time, change};
}

std::string NmeaLog::Fault() const { return file_->Fault(); }

// Reads up to where time goes on. False at the end, once all is gathered.
bool NmeaLog::ReadEpoch() {
    while (lines_.Next()) {
        if (Trimmed(std::string_view(lines_.Line())).empty() && !lines_.Cut()) continue;
        const auto sentence = ParseSentence(lines_.Line());
        if (!sentence) {
            tally_.CountBroken();
            continue;
        }
        const double step = clock_.Step(*sentence);
        const double moment = MomentAfter(*sentence, step);
        const bool goesOn = step > 0.0 || moment != moment_;
        if (goesOn) Gather();
        seconds_ += step;
        moment_ = moment;
        toldTime_ = toldTime_ || TimeOfDayOf(*sentence);
        const bool heard = readings_.Take(*sentence, seconds_);
        tally_.Count(*sentence, heard);
        heard_ |= heard;
        if (goesOn) return true;
    }
    const bool rest = heard_;
    Gather();
    return rest;
}

// A sentence without a date tells a time of the day that is nearest. Within an epoch the time stands still.
double NmeaLog::MomentAfter(const NmeaSentence& sentence, double step) const {
    const double expected = moment_ + step;
    const auto ofDay = TimeOfDayOf(sentence);
    if (!ofDay) return expected;
    const auto date = DateOf(sentence);
    const double day = date ? *date : toldTime_ ? std::round((expected - *ofDay) / kSecondsPerDay) : 0.0;
    const double told = std::max(day, 0.0) * kSecondsPerDay + *ofDay;
    return !toldTime_ || step > 0.0 || std::fabs(told - expected) > kJitter ? told : expected;
}

// In the channels' internal units, which the bridge's conversion gives.
void NmeaLog::Gather() {
    if (!heard_) return;
    heard_ = false;
    const Moment moment = readings_.At(seconds_);
    gatheredAt_ = seconds_;
    for (const auto& [quantity, channel] : kMapped) {
        const float value = moment[quantity];
        if (const auto bearing = readings_.MagneticBearing(quantity, moment, seconds_)) {
            Tell(channel, DecimalOf(static_cast<float>(*bearing)));
        } else if (value == kAbsent || IsInstrumentBearing(channel)) {
            Tell(channel, std::nullopt);
        } else {
            Tell(channel, DecimalOf(InstrumentValue(channel, value, {})));
        }
    }
    for (const auto& [reading, channel] : kDirect) Tell(channel, readings_.Get(reading, seconds_));
    const auto depth = readings_.Get(Reading::kDepthBelowSurface, seconds_);
    Tell(kDepth, depth ? depth : readings_.Get(Reading::kDepthBelowTransducer, seconds_));
}

void NmeaLog::Tell(ChannelId channel, std::optional<double> value) {
    const bool had = has_.erase(channel) != 0;
    if (value) has_.insert(channel);
    if (value || had) gathered_.push_back({moment_ / kSecondsPerDay, channel, 0, value.value_or(kNoValue)});
}

}  // namespace twr
