// SPDX-License-Identifier: MIT
// The pieces of the XML service.
#pragma once
#include <memory>
#include <string>
#include <string_view>

#include "platform/xml.h"

namespace twr {

// The document up to its first character, reference or half of a surrogate pair that XML doesn't allow. It has no declarations of
// entities, so that only the five that are built in count.
std::u16string_view WellFormedPrefix(std::u16string_view document);

// The document with nothing but line ends in comments of over 64 Ki characters, on which Wine's XmlLite crashes.
std::u16string WithShortComments(std::u16string_view document);

// Decodes a document by its mark, else by its declaration, else as UTF-8, and removes the encoding from its declaration. The text
// ends at the first malformed character; it is empty if the declaration names an unknown encoding.
std::u16string DecodeXml(std::string_view bytes);

// As Xml::OpenWriter.
std::unique_ptr<XmlWriter> OpenXmlWriter(std::u16string_view path);

}  // namespace twr
