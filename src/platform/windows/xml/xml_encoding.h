// The characters of an XML file, whatever its encoding.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// Decodes a document by its mark, else by its declaration, else as UTF-8, and removes the encoding from its declaration. The text
// ends at the first malformed character; it is empty if the declaration names an unknown encoding.
std::u16string DecodeXml(std::string_view bytes);

}  // namespace twr
