// SPDX-License-Identifier: MIT
#include "deckman/remote_text.h"

#include <algorithm>

#include "base/wide_text.h"
#include "platform/code_page.h"
#include "text/texts.h"

namespace twr {
namespace {

constexpr std::size_t kShortest = 4;  // characters that every remote can show

bool IsTime(const CCore& core, ChannelId channel) {
    channel = core.ResolveAlternate(channel, true);
    if (channel >= kChannelCount) return false;
    const std::int16_t type = core.ChannelTypeOf(channel);
    return type == kTypeDateTime || type == kTypeDuration;
}

}  // namespace

std::u16string RemoteValueText(const CCore& core, ChannelId channel, double value) {
    if (value == kNoValue) return u"-0";
    std::u16string text = IsTime(core, channel) ? CompactDurationText(value) : core.ChannelText(channel, value);
    if (text.size() > kShortest && text.find(u'.') != std::u16string::npos) text.resize(kShortest);
    return UpperCase(text);
}

RemoteField ToRemoteField(std::u16string_view text) {
    text = text.substr(0, text.find(u'\0'));
    const bool wide = std::ranges::any_of(text, [](char16_t c) { return c > 0xFF; });
    const std::string bytes = wide ? ToCodePage(text) : ToBytes(text);
    RemoteField field{};
    std::copy_n(bytes.data(), std::min(bytes.size(), field.size() - 1), field.begin());
    return field;
}

}  // namespace twr
