// SPDX-License-Identifier: MIT
// One channel of one boat as its user would see it, and why it has no value.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "core/core.h"
#include "halyrigctl/setup/circumstances.h"

namespace twr {

// What became of a channel's value.
enum class ChannelState {
    kFresh,
    kStale,    // it stopped coming
    kRefused,  // one comes, but is not taken: the channel is blocked or held, or the value outside its range
    kMissing,  // none comes, or it can't be shown
};

// One lower-case word for it, at most kStateWidth letters; the first letters differ.
inline constexpr std::size_t kStateWidth = 7;
std::string_view StateWord(ChannelState state);

struct ChannelReading {
    ChannelState state = ChannelState::kMissing;
    std::optional<double> value;    // as stored, in the internal unit; nullopt without a fresh value
    std::u16string_view valueUnit;  // a plain word, as in the streams; empty if there is none
    std::optional<double> shown;    // the same in the user's units
    std::u16string text;            // in the user's units; "- -" without a fresh value
    std::u16string_view textUnit;   // empty if there is none, or the text contains it
    std::optional<double> age;      // seconds since the last publication; nullopt if it was never published
    std::int32_t limit = 0;         // seconds after which a value is stale; 0 for never
    Fault missing;                  // why there is no fresh value; nothing if there is one
};

// The text of a channel in the user's units, with the unit, and "- -" without a fresh value. `damped`: of the damped value.
std::u16string LiveText(CCore& core, ChannelId channel, BoatSlot boat, bool damped);

// An alternating channel is read as the one that it stands for.
ChannelReading ReadChannel(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances);

}  // namespace twr
