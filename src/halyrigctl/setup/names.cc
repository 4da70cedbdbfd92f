// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/names.h"

#include <algorithm>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "core/record_access.h"

namespace twr {
namespace {

// The edit distance in which an exchange of neighbours is one step.
std::size_t Slips(std::u16string_view from, std::u16string_view to) {
    std::vector<std::vector<std::size_t>> slips(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                slips[i][j] = i + j;
                continue;
            }
            const bool same = from[i - 1] == to[j - 1];
            slips[i][j] = std::min({slips[i - 1][j] + 1, slips[i][j - 1] + 1, slips[i - 1][j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                slips[i][j] = std::min(slips[i][j], slips[i - 2][j - 2] + 1);
        }
    }
    return slips[from.size()][to.size()];
}

std::size_t Allowed(std::size_t length) { return length < 2 ? 0 : length < 5 ? 1 : 2; }

}  // namespace

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

NamedChannels FindChannels(const CCore& core, const std::vector<std::string>& typed) {
    NamedChannels named;
    for (const std::string& text : typed) {
        const auto channel = FindChannel(core, text);
        if (channel) named.found.push_back(*channel);
        if (!channel && !named.unknown) named.unknown = text;
    }
    return named;
}

std::optional<std::u16string> Nearest(std::u16string_view typed, std::span<const std::u16string> names) {
    const std::u16string capitals = UpperCase(typed);
    const std::size_t allowed = Allowed(typed.size());
    std::size_t fewest = allowed + 1;
    std::optional<std::u16string> nearest;
    for (const std::u16string& name : names) {
        if (name.size() > typed.size() + allowed || name.size() + allowed < typed.size()) continue;
        const std::size_t slips = Slips(capitals, UpperCase(name));
        if (slips < fewest) {
            fewest = slips;
            nearest = name;
        }
    }
    return nearest;
}

}  // namespace twr
