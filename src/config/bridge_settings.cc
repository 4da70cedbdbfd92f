// SPDX-License-Identifier: MIT
#include "config/bridge_settings.h"

#include "config/saved_settings.h"

namespace twr {
namespace {

constexpr std::u16string_view kFolder = u"DfwFolder";

struct Flag {
    std::u16string_view name;
    bool Settings::*field;
};

constexpr Flag kFlags[] = {
    {u"DfwTags", &Settings::sendNames},
    {u"DfwTrue", &Settings::degreesTrue},
    {u"DfwDepth", &Settings::depthInFeet},
    {u"DfwTimer", &Settings::useTimer},
};

}  // namespace

Settings ReadSettings(const Registry& registry, Findings* findings) {
    Settings settings;
    SavedValues saved(registry, kBridgeSettingsKey, findings);
    for (const Flag& flag : kFlags) {
        if (const auto number = saved.Dword(flag.name)) settings.*flag.field = *number != 0;
    }
    if (auto folder = saved.Text(kFolder)) settings.dfwFolder = *folder;
    saved.ReportOthers(Flaw::kUnknownSetting);
    return settings;
}

bool WriteFolder(Registry& registry, std::u16string_view folder) {
    return registry.Write(kBridgeSettingsKey, kFolder, StringValue(std::u16string(folder)));
}

void WriteSettings(Registry& registry, const Settings& settings) {
    WriteFolder(registry, settings.dfwFolder);
    for (const Flag& flag : kFlags) registry.Write(kBridgeSettingsKey, flag.name, DwordValue(settings.*flag.field ? 1 : 0));
}

}  // namespace twr
