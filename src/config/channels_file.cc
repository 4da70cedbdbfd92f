// SPDX-License-Identifier: MIT
// channels.xml: log mark, damping and decimals of single channels, and the types and names of the user channels.
#include "base/numbers.h"
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

ChannelId ChannelOf(const XmlAttribute& id, const Place& place) {
    const std::int32_t number = NumberOf(id, place);
    if (number > 0 && number < static_cast<std::int32_t>(kChannelCount)) return static_cast<ChannelId>(number);
    place.Report(Flaw::kNoSuchChannel, id.value);
    return kNoChannel;
}

void ReadDamping(ChannelId channel, ChannelRow& row, const XmlAttribute& attribute, const Place& place) {
    if (ChannelCatalogue()[channel].dampable == 0) return static_cast<void>(place.Report(Flaw::kNotDampable));
    const std::int32_t period = NumberOf(attribute, place);
    CheckRange(period, 0, 0xFFFF, attribute, place);
    Put(row.damp, static_cast<std::uint16_t>(period));
}

void ReadDecimals(const CCore& core, ChannelId channel, ChannelRow& row, const XmlAttribute& attribute, const Place& place) {
    const std::int32_t decimals = NumberOf(attribute, place);
    CheckRange(decimals, 0, kMostDecimals, attribute, place);
    if (decimals < 0 || decimals > kMostDecimals) return;
    // The type so far: one further on in the element has no effect.
    if (IsAlternating(channel) || !HasDecimals(core.ChannelTypeOf(channel))) {
        return static_cast<void>(place.Report(Flaw::kNoDecimals));
    }
    Put(row.prec, static_cast<std::uint16_t>(decimals));
}

void ReadUsersSetting(ChannelId channel, ChannelRow& row, const XmlAttribute& attribute, const Place& place) {
    if (!IsUser(channel)) return static_cast<void>(place.Report(Flaw::kNotUsersChannel, attribute.name));
    if (Is(attribute, u"type")) {
        const std::int32_t type = NumberOf(attribute, place);
        if (!IsUnitType(type)) place.Report(Flaw::kNoSuchType, attribute.value);
        Put(row.type, static_cast<std::int16_t>(type));
    } else {
        CheckLength(attribute, std::size(row.userName) - 1, place);
        SetFieldText(row.userName, attribute.value);
        SetFieldText(row.userShortName, attribute.value);
    }
}

void ReadSetting(const CCore& core, ChannelId channel, const XmlAttribute& attribute, const Place& place) {
    ChannelRow& row = core.View()->channels[channel];
    if (Is(attribute, u"log")) {
        Put(row.log, static_cast<std::uint8_t>(!EqualsIgnoringCase(attribute.value, u"false")));
    } else if (Is(attribute, u"damp")) {
        ReadDamping(channel, row, attribute, place);
    } else if (Is(attribute, u"prec")) {
        ReadDecimals(core, channel, row, attribute, place);
    } else if (Is(attribute, u"type") || Is(attribute, u"user")) {
        ReadUsersSetting(channel, row, attribute, place);
    } else {
        place.Report(Flaw::kUnknownAttribute, attribute.name);
    }
}

void ReadChannel(const CCore& core, const XmlElement& element, const Place& place) {
    CheckIdIsFirst(element, {u"log", u"damp", u"prec", u"type", u"user"}, place);
    ChannelId channel = kNoChannel;
    ForEachAttribute(element, place, [&](const XmlAttribute& attribute) {
        if (Is(attribute, u"id")) {
            channel = ChannelOf(attribute, place);
        } else if (channel != kNoChannel) {
            ReadSetting(core, channel, attribute, place);
        }
    });
}

}  // namespace

bool CCore::LoadChannelsFile() {
    if (!view_) return false;
    const std::u16string path = GetDataFile(u"config", u"channels.xml");
    ResetChannels(*view_);
    return ForEachElement(services_.xml, {services_.findings, path}, u"channels", u"channel",
                          [&](const XmlElement& channel, const Place& place) { ReadChannel(*this, channel, place); });
}

}  // namespace twr
