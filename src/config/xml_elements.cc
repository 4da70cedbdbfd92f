// SPDX-License-Identifier: MIT
#include "config/xml_elements.h"

#include <algorithm>

#include "base/numbers.h"
#include "base/wide_text.h"

namespace twr {

bool ForEachElement(Xml& xml, const Place& file, std::u16string_view root, std::u16string_view name,
                    const std::function<void(const XmlElement&, const Place&)>& take) {
    const auto reader = xml.OpenReader(file.path);
    if (!reader) return false;
    XmlElement element;
    bool rooted = false;
    while (reader->Next(element)) {
        const std::u16string spelled = file.findings ? Spelled(element) : std::u16string();
        const Place place = file.At(element.line).Of(spelled);
        if (!rooted) {
            if (!EqualsIgnoringCase(element.name, root)) return place.Report(Flaw::kOtherRoot, root);
            rooted = true;
        } else if (EqualsIgnoringCase(element.name, name)) {
            take(element, place);
        } else {
            place.Report(Flaw::kUnknownElement, element.name);
        }
    }
    if (const auto fault = reader->Fault()) file.At(fault->line, fault->column).Report(fault->flaw, fault->text);
    return rooted;
}

void ForEachAttribute(const XmlElement& element, const Place& place, const std::function<void(const XmlAttribute&)>& take) {
    for (const XmlAttribute& attribute : element.attributes) {
        if (attribute.value.empty()) {
            place.Report(Flaw::kEmptyAttribute, attribute.name);
        } else {
            take(attribute);
        }
    }
}

bool Is(const XmlAttribute& attribute, std::u16string_view name) { return EqualsIgnoringCase(attribute.name, name); }

std::int32_t NumberOf(const XmlAttribute& attribute, const Place& place) {
    if (place.findings && !ScanInt(attribute.value)) place.Report(Flaw::kNotANumber, Spelled(attribute));
    return LeadingInt(attribute.value);
}

void CheckRange(std::int32_t number, std::int32_t least, std::int32_t most, const XmlAttribute& attribute, const Place& place) {
    if (place.findings && (number < least || number > most)) place.Report(Flaw::kOutOfRange, Spelled(attribute));
}

void CheckLength(const XmlAttribute& attribute, std::size_t most, const Place& place) {
    if (attribute.value.size() > most) place.Report(Flaw::kCut, attribute.value.substr(0, most));
}

void CheckIdIsFirst(const XmlElement& element, std::initializer_list<std::u16string_view> needIt, const Place& place) {
    if (!place.findings) return;
    const auto isId = [](const XmlAttribute& attribute) { return Is(attribute, u"id") && !attribute.value.empty(); };
    const auto id = std::ranges::find_if(element.attributes, isId);
    if (id == element.attributes.end()) return static_cast<void>(place.Report(Flaw::kIdMissing));
    for (auto before = element.attributes.begin(); before != id; ++before) {
        const auto isBefore = [&](std::u16string_view name) { return Is(*before, name); };
        if (std::ranges::any_of(needIt, isBefore)) place.Report(Flaw::kIdNotFirst, before->name);
    }
}

}  // namespace twr
