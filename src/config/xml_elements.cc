#include "config/xml_elements.h"

#include "base/wide_text.h"

namespace twr {

bool ForEachElement(Xml& xml, std::u16string_view path, std::u16string_view root, std::u16string_view name,
                    const std::function<void(const XmlElement&)>& take) {
    const auto reader = xml.OpenReader(path);
    XmlElement element;
    if (!reader || !reader->Next(element) || !EqualsIgnoringCase(element.name, root)) return false;
    while (reader->Next(element)) {
        if (EqualsIgnoringCase(element.name, name)) take(element);
    }
    return true;
}

void ForEachAttribute(const XmlElement& element, const std::function<void(std::u16string_view, std::u16string_view)>& take) {
    for (const XmlAttribute& attribute : element.attributes) {
        if (!attribute.value.empty()) take(attribute.name, attribute.value);
    }
}

}  // namespace twr
