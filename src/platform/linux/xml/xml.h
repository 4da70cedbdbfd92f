// SPDX-License-Identifier: MIT
// The pieces of the XML service.
#pragma once
#include <expat.h>

#include <memory>
#include <string_view>

#include "base/byte_source.h"
#include "platform/xml.h"

namespace twr {

// The handler for XML_SetUnknownEncodingHandler: any encoding that iconv knows with one or two bytes to a character.
int FindXmlEncoding(void* unused, const XML_Char* name, XML_Encoding* encoding);

// As Xml::OpenReader, of an open document.
std::unique_ptr<XmlReader> ReadXml(std::unique_ptr<ByteSource> document);

// As Xml::OpenWriter.
std::unique_ptr<XmlWriter> OpenXmlWriter(std::u16string_view path);

}  // namespace twr
