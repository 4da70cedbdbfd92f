// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/names.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "core/record_access.h"

namespace twr {
namespace {

// Words of the field for what a channel holds, as they are said and typed; and in other programs' lists.
struct OtherWord {
    std::u16string_view word;  // plain
    ChannelId channel;
};
constexpr OtherWord kOtherWords[] = {
    {u"STW", kBsp},          {u"BOATSPD", kBsp},      {u"SPEED", kBsp},         {u"WATERSPEED", kBsp}, {u"HEADING", kHdg},
    {u"COMPASS", kHdg},      {u"COGTRUE", kCog},      {u"COGMAGNETIC", kCog},   {u"COGT", kCog},       {u"COGM", kCog},
    {u"HDGTRUE", kHdg},      {u"HDGMAGNETIC", kHdg},  {u"HDT", kHdg},           {u"HDM", kHdg},        {u"GPSSPEED", kSog},
    {u"DPT", kDepth},        {u"DBT", kDepth},        {u"SOUNDER", kDepth},     {u"LATITUDE", kLat},   {u"LONGITUDE", kLon},
    {u"VARIATION", kMagVar}, {u"DRIFTSPEED", kDrift}, {u"WATERTEMP", kSeaTemp}, {u"PITCH", kTrim},     {u"ROLL", kHeel},
    {u"TIMER", kTmToGun},
};

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

std::string TypedVariable(const DeckmanVariable& variable) {
    const bool plain = std::ranges::all_of(variable.dfwName, [](char16_t c) {
        return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
    });
    return plain ? ToUtf8(variable.dfwName) : std::to_string(variable.dfwId);
}

std::u16string PlainName(std::u16string_view name) {
    std::u16string plain = UpperCase(name);
    std::erase_if(plain, [](char16_t c) { return c == u' ' || c == u'_' || c == u'-' || c == u'.'; });
    return plain;
}

std::optional<ChannelId> ChannelOfWord(std::u16string_view plain) {
    const auto word = std::ranges::find(kOtherWords, plain, &OtherWord::word);
    return word == std::end(kOtherWords) ? std::nullopt : std::optional(word->channel);
}

std::string GuessChannel(const CCore& core, const std::string& typed) {
    const std::u16string plain = PlainName(FromUtf8(typed));
    std::vector<std::u16string> names;
    std::vector<ChannelId> channels;
    const auto add = [&](std::u16string_view name, ChannelId channel) {
        names.push_back(PlainName(name));
        channels.push_back(channel);
    };
    for (const OtherWord& word : kOtherWords) add(word.word, word.channel);
    for (ChannelId id = 0; id < kChannelCount; ++id) {
        add(CatalogueName(id), id);
        add(ChannelCatalogue()[id].longName, id);
        if (core.View()) add(FieldText(core.View()->channels[id].userName), id);
    }
    const auto nearest = Nearest(plain, names);
    if (!nearest || nearest->empty()) return {};
    const ChannelId channel = channels[static_cast<std::size_t>(std::ranges::find(names, *nearest) - names.begin())];
    return "did you mean " + ToUtf8(CatalogueName(channel)) + " (" + std::to_string(channel) + ")?";
}

NamedChannels FindChannels(const CCore& core, const std::vector<std::string>& typed) {
    NamedChannels named;
    const auto take = [&](const std::string& text) {
        const auto channel = FindChannel(core, text);
        if (channel) named.found.push_back(*channel);
        if (!channel && !named.unknown) named.unknown = text, named.guess = GuessChannel(core, text);
    };
    for (const std::string& text : typed) {
        if (FindChannel(core, text) || text.find(',') == text.npos) {
            take(text);
            continue;
        }
        std::istringstream parts(text);
        for (std::string part; std::getline(parts, part, ',');) {
            if (!part.empty()) take(part);
        }
    }
    return named;
}

Status ComplainOfChannel(Console& console, const NamedChannels& named) {
    const std::string otherwise = "'halyrigctl channels' lists them, 'halyrigctl get --help' explains how to name one";
    Complain(console, "there is no channel " + Harmless(FromUtf8(named.unknown.value_or(""))) + "; " +
                          (named.guess.empty() ? otherwise : named.guess));
    return kMisunderstood;
}

std::string Guess(std::u16string_view typed, const std::vector<std::u16string>& names, const std::string& otherwise) {
    const auto nearest = Nearest(typed, names);
    return nearest ? "did you mean " + Harmless(*nearest) + "?" : otherwise;
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
