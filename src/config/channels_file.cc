// channels.xml: log mark, damping and decimals of single channels, and the types and names of the user channels.
#include "base/scan.h"
#include "base/wide_text.h"
#include "config/xml_elements.h"
#include "core/core.h"
#include "core/record_access.h"

namespace twr {
namespace {

constexpr std::int32_t kMostDecimals = 254;  // 255 stands for no fixed number

bool IsUser(ChannelId channel) { return channel >= kUser0 && channel <= kUser31; }

// Times, positions and sails have texts of their own form.
bool HasDecimals(std::int16_t type) {
    switch (type) {
        case kTypeDateTime:
        case kTypeDuration:
        case kTypeLatitude:
        case kTypeLongitude:
        case kTypeSail:
            return false;
        default:
            return true;
    }
}

void ResetChannels(CoreRecord& record) {
    for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel) {
        const ChannelInfo& info = ChannelCatalogue()[channel];
        ChannelRow& row = record.channels[channel];
        Put(row.log, info.logDefault);
        Put(row.damp, std::uint16_t{0});
        Put(row.prec, std::uint16_t{info.prec});
    }
}

ChannelId ChannelOf(std::u16string_view id) {
    const std::int32_t number = LeadingInt(id);
    return number > 0 && number < static_cast<std::int32_t>(kChannelCount) ? static_cast<ChannelId>(number) : kNoChannel;
}

void ReadSetting(const CCore& core, ChannelId channel, std::u16string_view name, std::u16string_view value) {
    ChannelRow& row = core.View()->channels[channel];
    if (EqualsIgnoringCase(name, u"log")) {
        Put(row.log, static_cast<std::uint8_t>(!EqualsIgnoringCase(value, u"false")));
    } else if (EqualsIgnoringCase(name, u"damp")) {
        if (ChannelCatalogue()[channel].dampable != 0) Put(row.damp, static_cast<std::uint16_t>(LeadingInt(value)));
    } else if (EqualsIgnoringCase(name, u"prec")) {
        const std::int32_t decimals = LeadingInt(value);
        if (decimals < 0 || decimals > kMostDecimals || IsAlternating(channel)) return;
        // The type so far: one further on in the element has no effect.
        if (HasDecimals(core.ChannelTypeOf(channel))) Put(row.prec, static_cast<std::uint16_t>(decimals));
    } else if (EqualsIgnoringCase(name, u"type")) {
        if (IsUser(channel)) Put(row.type, static_cast<std::int16_t>(LeadingInt(value)));
    } else if (EqualsIgnoringCase(name, u"user") && IsUser(channel)) {
        SetFieldText(row.userName, value);
        SetFieldText(row.userShortName, value);
    }
}

void ReadChannel(const CCore& core, const XmlElement& element) {
    ChannelId channel = kNoChannel;
    ForEachAttribute(element, [&](std::u16string_view name, std::u16string_view value) {
        if (EqualsIgnoringCase(name, u"id")) {
            channel = ChannelOf(value);
        } else if (channel != kNoChannel) {
            ReadSetting(core, channel, name, value);
        }
    });
}

}  // namespace

bool CCore::LoadChannelsFile() {
    if (!view_) return false;
    const std::u16string path = GetDataFile(u"config", u"channels.xml");
    ResetChannels(*view_);
    return ForEachElement(services_.xml, path, u"channels", u"channel",
                          [&](const XmlElement& channel) { ReadChannel(*this, channel); });
}

}  // namespace twr
