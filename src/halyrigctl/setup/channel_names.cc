#include "halyrigctl/setup/channel_names.h"

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "core/record_access.h"

namespace twr {

std::u16string_view CatalogueName(ChannelId channel) {
    const ChannelInfo& info = ChannelCatalogue()[channel];
    return info.name.empty() ? info.longName : info.name;
}

std::u16string NameForPeople(CCore& core, ChannelId channel) {
    const std::u16string name = core.ChannelName(channel);
    return name.empty() ? std::u16string(CatalogueName(channel)) : name;
}

std::optional<ChannelId> FindChannel(const CCore& core, const std::string& text) {
    const std::u16string wide = FromUtf8(text);
    if (wide.empty()) return std::nullopt;
    if (text.find_first_not_of("0123456789") == std::string::npos && text.size() < 4) {
        const auto id = static_cast<ChannelId>(LeadingInt(wide));
        return id < kChannelCount ? std::optional(id) : std::nullopt;
    }
    for (ChannelId id = 0; id < kChannelCount; ++id) {
        if (EqualsIgnoringCase(CatalogueName(id), wide)) return id;
    }
    for (ChannelId id = 0; core.View() && id < kChannelCount; ++id) {
        const ChannelRow& row = core.View()->channels[id];
        if (EqualsIgnoringCase(FieldText(row.userName), wide) || EqualsIgnoringCase(FieldText(row.userShortName), wide)) return id;
    }
    return std::nullopt;
}

}  // namespace twr
