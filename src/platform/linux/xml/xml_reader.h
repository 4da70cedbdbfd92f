// The reader of XML documents.
#pragma once
#include <memory>

#include "base/byte_source.h"
#include "platform/xml.h"

namespace twr {

// As Xml::OpenReader, of an open document.
std::unique_ptr<XmlReader> ReadXml(std::unique_ptr<ByteSource> document);

}  // namespace twr
