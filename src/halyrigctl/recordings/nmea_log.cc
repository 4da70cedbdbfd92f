// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/nmea_log.h"

#include "core/days.h"
#include "deckman/instrument_value.h"

namespace twr {
namespace {

constexpr int kLinesToLookAt = 1000;

struct Mapped {
    Quantity quantity;
    ChannelId channel;
};

// As the demo's mapping has them.
constexpr Mapped kMapped[] = {
    {Quantity::kVariation, kMagVar}, {Quantity::kBsp, kBsp},     {Quantity::kAwa, kAwa},       {Quantity::kAws, kAws},
    {Quantity::kTwa, kTwa},          {Quantity::kTws, kTws},     {Quantity::kTwd, kTwd},       {Quantity::kHdg, kHdg},
    {Quantity::kHeel, kHeel},        {Quantity::kTrim, kTrim},   {Quantity::kRudder, kRudder}, {Quantity::kRateOfTurn, kRot},
    {Quantity::kLat, kLat},          {Quantity::kLon, kLon},     {Quantity::kCog, kCog},       {Quantity::kSog, kSog},
    {Quantity::kSet, kSet},          {Quantity::kDrift, kDrift}, {Quantity::kDepth, kDepth},   {Quantity::kSeaTemp, kSeaTemp},
    {Quantity::kAirTemp, kAirTemp},  {Quantity::kBaro, kBaro},   {Quantity::kVmg, kVmg},       {Quantity::kVolts, kVolts},
};

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
    if (whole.first == '{') return RecordedForm::kRecording;
    BoundedLines lines(whole, kLogLines);
    RecordedForm form = RecordedForm::kNeither;
    for (int i = 0; i < kLinesToLookAt && lines.Next(); ++i) {
        const auto sentence = ParseSentence(lines.Line());
        if (!sentence) continue;
        form = RecordedForm::kLog;
        if (TimeOfDayOf(*sentence)) return RecordedForm::kLogWithClock;
    }
    return form;
}

NmeaLog::NmeaLog(std::unique_ptr<UnpackingSource> file, bool hasClock) : file_(std::move(file)), lines_(*file_, kLogLines) {
    clock_.Start(hasClock);
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
        const auto sentence = ParseSentence(lines_.Line());
        if (!sentence) continue;
        const double step = clock_.Step(*sentence);
        if (const auto ofDay = TimeOfDayOf(*sentence); ofDay && !start_) start_ = *ofDay - seconds_;
        if (step > 0.0) Gather();
        seconds_ += step;
        heard_ |= readings_.Take(*sentence, seconds_);
        if (step > 0.0) return true;
    }
    const bool rest = heard_;
    Gather();
    return rest;
}

// In the channels' internal units, which the bridge's conversion gives: bearings are true here, and depths in feet.
void NmeaLog::Gather() {
    if (!heard_) return;
    heard_ = false;
    const Moment moment = readings_.At(seconds_);
    const float variation = moment[Quantity::kVariation];
    const ReadingUnits units{.degreesTrue = true, .depthInFeet = true, .variation = variation == kAbsent ? kNoValue : variation};
    const double time = (start_.value_or(0.0) + seconds_) / kSecondsPerDay;
    gatheredAt_ = seconds_;
    for (const Mapped& mapped : kMapped) {
        if (moment[mapped.quantity] == kAbsent) continue;
        const double value = InstrumentValue(mapped.channel, moment[mapped.quantity], units);
        if (value != kNoValue) gathered_.push_back({time, mapped.channel, 0, value});
    }
}

}  // namespace twr
