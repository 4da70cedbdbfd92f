// Where position, COG and SOG come from, by the user's choice: all four from one source.
#pragma once
#include "core/core_record.h"
#include "core/shared_field.h"

namespace twr {

inline constexpr std::size_t kIntPositionSource = 6;  // index into sysInt
inline constexpr std::int32_t kPositionFromDeckman = 3;

inline bool PositionFromDeckman(const CoreRecord& record) {
    return Load(record.sysInt[kIntPositionSource]) == kPositionFromDeckman;
}

inline bool FollowsPositionSource(ChannelId channel) {
    return channel == kLat || channel == kLon || channel == kCog || channel == kSog;
}

}  // namespace twr
