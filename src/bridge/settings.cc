#include "bridge/settings.h"

namespace twr {
namespace {

constexpr std::u16string_view kKey = u"Software\\Tidewright\\Halyrig32\\settings";
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

Settings ReadSettings(const Registry& registry) {
    Settings settings;
    for (const Flag& flag : kFlags) {
        if (const auto number = DwordOf(registry.Read(kKey, flag.name))) settings.*flag.field = *number != 0;
    }
    if (auto folder = TextOf(registry.Read(kKey, kFolder))) settings.dfwFolder = *folder;
    return settings;
}

void WriteSettings(Registry& registry, const Settings& settings) {
    registry.Write(kKey, kFolder, StringValue(settings.dfwFolder));
    for (const Flag& flag : kFlags) registry.Write(kKey, flag.name, DwordValue(settings.*flag.field ? 1 : 0));
}

}  // namespace twr
