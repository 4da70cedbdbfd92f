// SPDX-License-Identifier: MIT
// What the bridge remembers from run to run, in the user's registry.
#pragma once
#include <string>
#include <string_view>

#include "base/findings.h"
#include "platform/registry.h"

namespace twr {

inline constexpr std::u16string_view kBridgeSettingsKey = u"Software\\Tidewright\\Halyrig32\\settings";

struct Settings {
    std::u16string dfwFolder = u"C:\\Program Files (x86)\\BandG\\Deckman";
    bool sendNames = false;
    bool degreesTrue = false;
    bool depthInFeet = true;
    bool useTimer = false;
};

// A value that is missing or of another type keeps its default. What is passed over is reported to `findings`, if given.
Settings ReadSettings(const Registry& registry, Findings* findings = nullptr);

// Only the folder. False if it can't be saved.
bool WriteFolder(Registry& registry, std::u16string_view folder);

void WriteSettings(Registry& registry, const Settings& settings);

}  // namespace twr
