#include "bridge/remote_pass.h"

#include <algorithm>

#include "base/wide_text.h"
#include "core/record_access.h"
#include "platform/code_page.h"
#include "text/time_text.h"

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

void RemotePass::Run(const DeckmanLibrary& library, std::span<MappingRemote> rows, const Settings& settings) const {
    const bool magnetic = Load(core_.View()->sysFlag[kFlagMagnetic]) != 0;
    if (!library.fnSetISData || !library.fnSetISName) return;
    for (MappingRemote& row : rows) {
        const ChannelId channel = core_.ResolveAlternate(static_cast<ChannelId>(row.channel), true);
        if (channel == kNoChannel) continue;
        double value = kNoValue;
        core_.GetFreshChannel(channel, value, static_cast<BoatSlot>(row.boat), row.damp != 0, magnetic, kNoValue);
        if (value == row.lastValue) continue;
        row.lastValue = value;
        std::uint32_t word = 0;
        library.fnSetISData(&word, row.remote, ToRemoteField(RemoteValueText(core_, channel, value)).data());
        if (settings.sendNames && row.lastChannel != static_cast<std::int32_t>(channel)) {
            row.lastChannel = static_cast<std::int32_t>(channel);
            library.fnSetISName(&word, row.remote, ToRemoteField(core_.RemoteLabel(channel)).data());
        }
    }
}

}  // namespace twr
