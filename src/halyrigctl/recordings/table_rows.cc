// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/table_rows.h"

#include <algorithm>
#include <utility>

#include "halyrigctl/recordings/survey.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr double kMsPerDay = kSecondsPerDay * 1000;

std::int64_t RoundedUp(std::int64_t ms, std::int64_t step) { return (ms + step - 1) / step * step; }

}  // namespace

TableRows::TableRows(const CCore& core, const TableWish& wish, std::function<void(const TableRow&)> tell)
    : core_(core), wish_(wish), tell_(std::move(tell)), columns_(kChannelCount, -1), lines_(kBoatCount, -1) {
    columns_[kMagVar] = static_cast<std::int32_t>(wish_.channels.size());
    for (std::size_t i = 0; i < wish_.channels.size(); ++i) columns_[wish_.channels[i]] = static_cast<std::int32_t>(i);
    std::vector<BoatSlot> boats = wish_.boats;
    if (std::ranges::find(boats, 0u) == boats.end()) boats.push_back(0);  // whose variation serves all
    for (const BoatSlot boat : boats) {
        lines_[boat] = static_cast<std::int32_t>(slots_.size() / Width());
        for (const ChannelId channel : wish_.channels) slots_.push_back({.limit = core_.StaleSeconds(channel, boat)});
        slots_.push_back({.limit = core_.StaleSeconds(kMagVar, boat)});
    }
    values_.resize(wish_.channels.size());
}

void TableRows::Take(const Recorded& recorded) {
    if (!now_ || recorded.time != *now_ || recorded.seam != Seam::kNone) BeginLook(recorded);
    const Change& change = recorded.change;
    if (lines_[change.boat] < 0 || columns_[change.channel] < 0) return;
    if (waits_) {
        look_.push_back(change);
    } else {
        Apply(change);
    }
}

// What is found at a look was published since the look before, so a row between the two has a part of it.
void TableRows::BeginLook(const Recorded& recorded) {
    EndLook();
    const std::int64_t ms = ToMillisecond(recorded.time);
    const bool gap = !now_ || IsGap(*now_, recorded);
    if (recorded.seam == Seam::kStart) ++file_;
    if (gap) {
        next_ = RoundedUp(ms, wish_.step);
        if (recorded.seam == Seam::kStart) oldest_ = file_;
    }
    now_ = recorded.time;
    waits_ = next_ <= ms;
}

void TableRows::EndLook() {
    if (!now_) return;
    const std::int64_t ms = ToMillisecond(*now_);
    for (; waits_ && next_ <= ms; next_ += wish_.step) {
        // One that ended did so by the look; a stamp that is later than that is another clock's.
        const auto later = std::stable_partition(
            look_.begin(), look_.end(), [&](const Change& change) { return std::min(ToMillisecond(change.time), ms) <= next_; });
        std::for_each(look_.begin(), later, [&](const Change& change) { Apply(change); });
        look_.erase(look_.begin(), later);
        TellRows(static_cast<double>(next_) / kMsPerDay);
    }
    for (const Change& change : look_) Apply(change);
    look_.clear();
    waits_ = false;
    oldest_ = file_;  // the first look of a file tells all that holds
}

void TableRows::Apply(const Change& change) {
    const auto line = static_cast<std::size_t>(lines_[change.boat]);
    const auto put = [&](std::size_t column) {
        Slot& slot = slots_[line * Width() + column];
        slot.value = change.value, slot.time = change.time, slot.file = file_;
    };
    put(static_cast<std::size_t>(columns_[change.channel]));
    if (change.channel == kMagVar) put(wish_.channels.size());
}

double TableRows::Fresh(const Slot& slot, double time) const {
    return slot.file < oldest_ || IsStale(slot.time, time, slot.limit) ? kNoValue : slot.value;
}

void TableRows::TellRows(double time) {
    const std::int64_t ms = ToMillisecond(time);
    if (ms < ToMillisecond(wish_.from) || ms > ToMillisecond(wish_.to)) return;
    const double own = Fresh(slots_[(static_cast<std::size_t>(lines_[0]) + 1) * Width() - 1], time);
    for (std::size_t line = 0; line < wish_.boats.size(); ++line) {
        bool any = false;
        for (std::size_t column = 0; column < values_.size(); ++column) {
            values_[column] = Fresh(slots_[line * Width() + column], time);
            any = any || values_[column] != kNoValue;
        }
        const double variation = Fresh(slots_[(line + 1) * Width() - 1], time);
        if (any) tell_({time, wish_.boats[line], values_, variation == kNoValue ? own : variation});
    }
}

}  // namespace twr
