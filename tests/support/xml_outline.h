// What an XML reader gives, in one line.
#pragma once
#include <string>
#include <string_view>

#include "platform/xml.h"

namespace twr::testing {

// Elements as "name(attribute=value,...)", separated by blanks, in UTF-8.
std::string Outline(XmlReader& reader);

// The bytes of a text in UTF-16, without a mark.
std::string Utf16Bytes(std::u16string_view text, bool bigEndian);

}  // namespace twr::testing
