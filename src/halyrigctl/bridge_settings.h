// What the bridge has saved of its settings. It saves them when it is closed, so what was ticked since can't be told from them.
#pragma once
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace twr {

inline constexpr std::u16string_view kBridgeSettings = u"Software\\Tidewright\\Halyrig32\\settings";

// Deckman's bearings come true.
inline bool SavedDegreesTrue(const Registry& registry) {
    return DwordOf(registry.Read(kBridgeSettings, u"DfwTrue")).value_or(0) != 0;
}

// Deckman's folder; nothing when none was saved.
inline std::optional<std::u16string> SavedFolder(const Registry& registry) {
    return TextOf(registry.Read(kBridgeSettings, u"DfwFolder"));
}

}  // namespace twr
