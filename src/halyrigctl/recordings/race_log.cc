// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/race_log.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/days.h"
#include "core/units.h"

namespace twr {
namespace {

constexpr double kSameGun = 2.0;  // seconds between what two moments of a count tell of its gun
constexpr double kLastSeconds = 5.0;
constexpr double kLeastCount = 10.0;  // seconds counted down

// Where each channel goes.
struct Place {
    ChannelId channel;
    double RaceRow::*value;
    double factor = 1.0;
};
constexpr Place kPlaces[] = {{kLat, &RaceRow::latitude},
                             {kLon, &RaceRow::longitude},
                             {kBsp, &RaceRow::bsp},
                             {kSog, &RaceRow::sog},
                             {kTws, &RaceRow::tws},
                             {kTwa, &RaceRow::twa},
                             {kAwa, &RaceRow::awa},
                             {kTwd, &RaceRow::twd},
                             {kHdg, &RaceRow::heading},
                             {kCog, &RaceRow::cog},
                             {kTargBsp, &RaceRow::targetBsp},
                             {kTargTwa, &RaceRow::targetTwa},
                             {kHeel, &RaceRow::heel},
                             {kDepth, &RaceRow::depth},
                             {kMkLat, &RaceRow::markLatitude},
                             {kMkLon, &RaceRow::markLongitude},
                             {kMkRng, &RaceRow::markRange},
                             {kDistToLn, &RaceRow::lineDistance, kMetresPerNauticalMile},
                             {kPortLat, &RaceRow::portLatitude},
                             {kPortLon, &RaceRow::portLongitude},
                             {kStbdLat, &RaceRow::starboardLatitude},
                             {kStbdLon, &RaceRow::starboardLongitude}};

std::vector<ChannelId> Channels() {
    std::vector<ChannelId> channels;
    for (const Place& place : kPlaces) channels.push_back(place.channel);
    return channels;
}

bool IsPlace(double latitude, double longitude) { return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 360.0; }

}  // namespace

void GunWatch::Take(const Recorded& recorded) {
    const double now = recorded.time * kSecondsPerDay;
    if (count_ && now >= count_->time) {
        if (last_ <= kLastSeconds && first_ - last_ >= kLeastCount) guns_.push_back(*count_);
        count_.reset();
    }
    const Change& change = recorded.change;
    if (change.channel != kTmToGun || change.boat != 0 || change.value == kNoValue || !(change.value > 0.0)) return;
    const double left = change.value * kSecondsPerDay, gun = change.time * kSecondsPerDay + left;
    if (count_ && std::fabs(gun - count_->time) > kSameGun) count_.reset();
    if (!count_) {
        count_ = Gun{gun, now};
        first_ = left;
    }
    count_->time = std::min(count_->time, gun);  // whole seconds are those that have begun
    last_ = left;
}

RaceLog::RaceLog(const CCore& core, BoatSlot boat, double from, double to)
    : boat_(boat),
      table_(core, {.step = 1000, .channels = Channels(), .boats = {boat}, .from = from, .to = to},
             [this](const TableRow& row) { Append(row); }) {}

void RaceLog::Take(const Recorded& recorded) {
    table_.Take(recorded);
    if (boat_ == 0 && (rows_.empty() || recorded.time * kSecondsPerDay > rows_.back().time)) guns_.Take(recorded);
}

void RaceLog::Append(const TableRow& told) {
    RaceRow row;
    row.time = std::round(told.time * kSecondsPerDay);
    if (!rows_.empty() && row.time <= rows_.back().time) {
        ++repeated_;
        seam_ = true;
        return;
    }
    if (IsFull()) return;
    for (std::size_t i = 0; i < std::size(kPlaces); ++i) {
        const double value = told.values[i];
        if (value != kNoValue && std::isfinite(value)) row.*kPlaces[i].value = value * kPlaces[i].factor;
    }
    if (!IsPlace(row.latitude, row.longitude)) row.latitude = row.longitude = kUnmeasured;
    if (!IsPlace(row.markLatitude, row.markLongitude)) row.markLatitude = row.markLongitude = kUnmeasured;
    if (told.variation != kNoValue) row.variation = told.variation;
    row.seam = std::exchange(seam_, false);
    rows_.push_back(row);
}

}  // namespace twr
