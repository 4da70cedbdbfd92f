#include "platform/xml.h"

namespace twr {

std::u16string Spelled(const XmlAttribute& attribute) { return attribute.name + u"=\"" + attribute.value + u"\""; }

std::u16string Spelled(const XmlElement& element) {
    std::u16string text = element.name;
    for (const XmlAttribute& attribute : element.attributes) text += u' ' + Spelled(attribute);
    return text;
}

}  // namespace twr
