// The writer of XML files.
#pragma once
#include <memory>
#include <string_view>

#include "platform/xml.h"

namespace twr {

// As Xml::OpenWriter.
std::unique_ptr<XmlWriter> OpenXmlWriter(std::u16string_view path);

}  // namespace twr
