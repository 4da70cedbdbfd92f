// boats.xml: names, MMSIs and display colours of the boats.
#include "base/scan.h"
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

void ReadBoat(const XmlElement& element, CoreRecord& record) {
    BoatRow* boat = nullptr;
    Colour colour;
    ForEachAttribute(element, [&](std::u16string_view name, std::u16string_view value) {
        if (EqualsIgnoringCase(name, u"id")) {
            const std::int32_t slot = LeadingInt(value);
            boat = slot >= 0 && slot < static_cast<std::int32_t>(kBoatCount) ? &record.boats[slot] : nullptr;
        } else if (EqualsIgnoringCase(name, u"name")) {
            if (boat) SetName(*boat, value);
        } else if (EqualsIgnoringCase(name, u"mmsi")) {
            const auto mmsi = ScanUnsigned(value);
            if (boat && mmsi) Put(boat->mmsi, *mmsi);
        } else if (EqualsIgnoringCase(name, u"r")) {
            colour.red = LeadingInt(value);
        } else if (EqualsIgnoringCase(name, u"g")) {
            colour.green = LeadingInt(value);
        } else if (EqualsIgnoringCase(name, u"b")) {
            colour.blue = LeadingInt(value);
        }
    });
    if (boat) Put(boat->colour, colour.Packed());
}

}  // namespace

bool CCore::LoadBoatsFile() {
    if (!view_) return false;
    const std::u16string path = GetDataFile(u"config", u"boats.xml");
    ResetBoats(*view_);
    return ForEachElement(services_.xml, path, u"boats", u"boat", [&](const XmlElement& boat) { ReadBoat(boat, *view_); });
}

}  // namespace twr
