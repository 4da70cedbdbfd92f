#include "support/xml_outline.h"

#include "base/wide_text.h"

namespace twr::testing {

std::string Outline(XmlReader& reader) {
    std::string outline;
    XmlElement element;
    while (reader.Next(element)) {
        if (!outline.empty()) outline += ' ';
        outline += ToUtf8(element.name) + '(';
        for (const XmlAttribute& attribute : element.attributes) {
            if (outline.back() != '(') outline += ',';
            outline += ToUtf8(attribute.name) + '=' + ToUtf8(attribute.value);
        }
        outline += ')';
    }
    return outline;
}

std::string Utf16Bytes(std::u16string_view text, bool bigEndian) {
    std::string bytes;
    for (const char16_t c : text) {
        for (const int shift : {bigEndian ? 8 : 0, bigEndian ? 0 : 8}) bytes += static_cast<char>(c >> shift);
    }
    return bytes;
}

}  // namespace twr::testing
