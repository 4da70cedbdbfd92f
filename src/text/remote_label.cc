// SPDX-License-Identifier: MIT
// The names of channels, in full and as a remote shows them.
#include <cstddef>

#include "base/wide_text.h"
#include "core/core.h"
#include "core/record_access.h"
#include "text/texts.h"

namespace twr {
namespace {

constexpr std::size_t kLabelLength = 8;

std::u16string Replaced(std::u16string_view text, char16_t character, std::u16string_view by) {
    std::u16string replaced;
    for (const char16_t c : text) {
        if (c == character) {
            replaced += by;
        } else {
            replaced += c;
        }
    }
    return replaced;
}

}  // namespace

std::u16string RemoteLabelOf(std::u16string_view name) {
    std::u16string label = Replaced(name, u'°', u"");
    label = Replaced(label, u'%', label.size() < 6 ? u" PC" : label.size() == 6 ? u"PC" : u"");
    label = Replaced(label, u'/', label.size() > kLabelLength ? u"" : u" ");
    label.resize(std::min(label.size(), kLabelLength));
    return UpperCase(label);
}

std::u16string CCore::ChannelName(ChannelId channel) const {
    if (channel >= kChannelCount) return {};
    if (view_) {
        if (const ChannelId resolved = ResolveAlternate(channel, true); resolved != kNoChannel) channel = resolved;
        std::u16string own = FieldText(view_->channels[channel].userShortName);
        if (!own.empty()) return own;
    }
    return std::u16string(ChannelCatalogue()[channel].name);
}

std::u16string CCore::RemoteLabel(ChannelId channel) const { return RemoteLabelOf(ChannelName(channel)); }

}  // namespace twr
