// SPDX-License-Identifier: MIT
// boats.xml: names, MMSIs and display colours of the boats.
#include "base/numbers.h"
#include "base/wide_text.h"
#include "config/xml_elements.h"
#include "core/core.h"
#include "core/initialise.h"
#include "core/record_access.h"

namespace twr {
namespace {

constexpr std::size_t kNameLength = 31;  // less than the field holds

// Red, green and blue of one element, in any order, each optional.
struct Colour {
    std::int32_t red = kDefaultBoatColour & 0xFF;
    std::int32_t green = kDefaultBoatColour >> 8 & 0xFF;
    std::int32_t blue = kDefaultBoatColour >> 16 & 0xFF;

    std::uint32_t Packed() const {
        const auto byte = [](std::int32_t part) { return static_cast<std::uint32_t>(part) & 0xFF; };
        return byte(red) | byte(green) << 8 | byte(blue) << 16;
    }
};

void SetName(BoatRow& boat, std::u16string_view name) { SetFieldText(boat.name, name.substr(0, kNameLength)); }

void ResetBoats(CoreRecord& record) {
    for (BoatSlot slot = 0; slot < kBoatCount; ++slot) {
        BoatRow& boat = record.boats[slot];
        Put(boat.mmsi, 0u);
        Put(boat.colour, kDefaultBoatColour);
        SetName(boat, slot == 0 ? std::u16string() : u"Boat " + FromBytes(std::to_string(slot)));
    }
}

BoatRow* BoatOf(const XmlAttribute& id, CoreRecord& record, const Place& place) {
    const std::int32_t slot = NumberOf(id, place);
    if (slot >= 0 && slot < static_cast<std::int32_t>(kBoatCount)) return &record.boats[slot];
    place.Report(Flaw::kNoSuchBoat, id.value);
    return nullptr;
}

std::int32_t PartOf(const XmlAttribute& attribute, const Place& place) {
    const std::int32_t part = NumberOf(attribute, place);
    CheckRange(part, 0, 255, attribute, place);
    return part;
}

void ReadBoat(const XmlElement& element, CoreRecord& record, const Place& place) {
    CheckIdIsFirst(element, {u"name", u"mmsi"}, place);
    BoatRow* boat = nullptr;
    Colour colour;
    ForEachAttribute(element, place, [&](const XmlAttribute& attribute) {
        if (Is(attribute, u"id")) {
            boat = BoatOf(attribute, record, place);
        } else if (Is(attribute, u"name")) {
            CheckLength(attribute, kNameLength, place);
            if (boat) SetName(*boat, attribute.value);
        } else if (Is(attribute, u"mmsi")) {
            const auto mmsi = ScanUnsigned(attribute.value);
            if (!mmsi) place.Report(Flaw::kNotANumber, Spelled(attribute));
            if (boat && mmsi) Put(boat->mmsi, *mmsi);
        } else if (Is(attribute, u"r")) {
            colour.red = PartOf(attribute, place);
        } else if (Is(attribute, u"g")) {
            colour.green = PartOf(attribute, place);
        } else if (Is(attribute, u"b")) {
            colour.blue = PartOf(attribute, place);
        } else {
            place.Report(Flaw::kUnknownAttribute, attribute.name);
        }
    });
    if (boat) Put(boat->colour, colour.Packed());
}

}  // namespace

bool CCore::LoadBoatsFile() {
    if (!view_) return false;
    const std::u16string path = GetDataFile(u"config", u"boats.xml");
    ResetBoats(*view_);
    return ForEachElement(services_.xml, {services_.findings, path}, u"boats", u"boat",
                          [&](const XmlElement& boat, const Place& place) { ReadBoat(boat, *view_, place); });
}

}  // namespace twr
