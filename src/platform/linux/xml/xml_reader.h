// The reader of XML over any source of bytes.
#pragma once
#include <memory>

#include "platform/files.h"
#include "platform/xml.h"

namespace twr {

std::unique_ptr<XmlReader> ReadXml(std::unique_ptr<ByteSource> source);

}  // namespace twr
