// SPDX-License-Identifier: MIT
// The record, which other processes read and write at the same time: its fields, its texts, its entries.
#pragma once
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/no_value.h"
#include "core/channel_catalogue.h"
#include "core/core_record.h"

namespace twr {

// --- Fields ---
// Each is one access of the field's own width. A plain access would not do: a 32-bit compiler may split a double into two moves,
// and another process would see half of each value.

template <class T>
T Load(const T& field) {
    return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_relaxed);
}

template <class T>
void Put(T& field, T value) {
    std::atomic_ref<T>(field).store(value, std::memory_order_relaxed);
}

// Ordered after all earlier stores of this thread.
template <class T>
void PutInOrder(T& field, T value) {
    std::atomic_ref<T>(field).store(value, std::memory_order_release);
}

// --- Texts: fixed fields of UTF-16, ended by a zero ---
// Each unit is one access: a reader may see a mixture of an old text and a new one, but always a text.

// Stores as much of the text as fits before the field's zero.
template <std::size_t Units>
void SetFieldText(char16_t (&field)[Units], std::u16string_view text) {
    const std::size_t length = std::min(text.size(), Units - 1);
    for (std::size_t i = 0; i < length; ++i) Put(field[i], text[i]);
    Put(field[length], u'\0');
}

// The text up to its zero, or the whole field if another program left no zero.
template <std::size_t Units>
std::u16string FieldText(const char16_t (&field)[Units]) {
    std::u16string text;
    for (std::size_t i = 0; i < Units; ++i) {
        const char16_t unit = Load(field[i]);
        if (unit == 0) break;
        text.push_back(unit);
    }
    return text;
}

// Whether that is the field's text. Allocates no memory.
template <std::size_t Units>
bool FieldTextIs(const char16_t (&field)[Units], std::u16string_view text) {
    std::size_t i = 0;
    while (i < text.size() && i < Units && text[i] != 0 && Load(field[i]) == text[i]) ++i;
    return i == text.size() && (i == Units || Load(field[i]) == 0);
}

// --- Entries: a channel's value for a boat, with its time stamp ---

// The places of one channel of one boat; all null if the boat has no entry for the channel.
struct Entry {
    double* time = nullptr;
    double* value = nullptr;
    double* damped = nullptr;

    explicit operator bool() const { return value != nullptr; }
};

// Boats 0 and 1 hold every channel, the others those with a short index.
inline Entry EntryOf(CoreRecord& record, ChannelId channel, BoatSlot boat) {
    if (channel >= kChannelCount || boat >= kBoatCount) return {};
    if (boat < kFullBoatCount) {
        BoatBlock& block = record.fullBlocks[boat];
        return {&block.time[channel], &block.value[channel], &block.damped[channel]};
    }
    const std::uint16_t index = ChannelCatalogue()[channel].shortIndex;
    if (index >= kShortChannelCount) return {};
    ShortBoatBlock& block = record.shortBlocks[boat - kFullBoatCount];
    return {&block.time[index], &block.value[index], &block.damped[index]};
}

// Whether a value published at `time`, which is 0 if none was, is stale at `now`. `limit` in seconds, 0 or less for never; `maxAge`
// in days takes its place, but a value that never becomes stale stays so.
inline bool IsStale(double time, double now, std::int16_t limit, double maxAge = kNoValue) {
    if (limit <= 0) return false;
    if (maxAge == kNoValue) maxAge = static_cast<double>(limit) / 60 / 60 / 24;
    return time == 0.0 || std::fabs(now - time) > maxAge;
}

// Deckman's mark for no value, kNoValue, is a number like any other to the bridge, which makes this of it if depths are in feet. It
// stands in the record, and displays show it, as ever; who reads for people takes it for no value.
inline constexpr float kDeckmanFeetPerMetre = 3.2808f;
inline bool IsLostDepth(ChannelId channel, double stored) {
    return channel == kDepth && stored == static_cast<double>(static_cast<float>(kNoValue) / kDeckmanFeetPerMetre);
}

// The own boat's variation in degrees, east positive; kNoValue if unknown.
inline double OwnVariation(const CoreRecord& record) {
    return Load(record.boatCount) == 0 ? kNoValue : Load(record.fullBlocks[0].value[kMagVar]);
}

// Writes an entry. A real value also marks the boat as active and raises boatCount above it; the Time channel doesn't. False if
// there is no entry.
inline bool Store(CoreRecord& record, ChannelId channel, BoatSlot boat, double value, double time) {
    const Entry entry = EntryOf(record, channel, boat);
    if (!entry) return false;
    // Readers rely on this order: the value first for boats 0 and 1, the time stamp first for the others.
    if (boat < kFullBoatCount) {
        PutInOrder(*entry.value, value);
        PutInOrder(*entry.time, time);
    } else {
        PutInOrder(*entry.time, time);
        PutInOrder(*entry.value, value);
    }
    if (channel != kTime && value != kNoValue) {
        Put(record.boats[boat].active, std::uint8_t{1});
        if (Load(record.boatCount) < boat + 1) Put(record.boatCount, boat + 1);
    }
    return true;
}

}  // namespace twr
