// SPDX-License-Identifier: MIT
#include "platform/xml.h"

#include "platform/files.h"

namespace twr {
namespace {

class UnopenedReader final : public XmlReader {
public:
    bool Next(XmlElement&) override { return false; }
    std::optional<XmlFault> Fault() const override { return XmlFault{0, 0, std::u16string(kNotOpened), Flaw::kReadFailed}; }
};

}  // namespace

std::unique_ptr<XmlReader> UnopenedXml(const Files& files, std::u16string_view path) {
    return files.Exists(path) ? std::make_unique<UnopenedReader>() : nullptr;
}

std::u16string Spelled(const XmlAttribute& attribute) { return attribute.name + u"=\"" + attribute.value + u"\""; }

std::u16string Spelled(const XmlElement& element) {
    std::u16string text = element.name;
    for (const XmlAttribute& attribute : element.attributes) text += u' ' + Spelled(attribute);
    return text;
}

}  // namespace twr
