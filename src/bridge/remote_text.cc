#include "bridge/remote_text.h"

#include "base/wide_text.h"
#include "text/duration_text.h"

namespace twr {
namespace {

constexpr std::size_t kShortest = 4;  // characters that every remote can show

bool IsTime(CCore& core, ChannelId channel) {
    channel = core.ResolveAlternate(channel, true);
    if (channel >= kChannelCount) return false;
    const std::int16_t type = core.ChannelTypeOf(channel);
    return type == kTypeDateTime || type == kTypeDuration;
}

}  // namespace

std::u16string RemoteValueText(CCore& core, ChannelId channel, double value) {
    if (value == kNoValue) return u"-0";
    std::u16string text = IsTime(core, channel) ? CompactDurationText(value) : core.ChannelText(channel, value);
    if (text.size() > kShortest && text.find(u'.') != std::u16string::npos) text.resize(kShortest);
    return UpperCase(text);
}

}  // namespace twr
