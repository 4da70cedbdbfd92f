// The writer of XML into an open file.
#pragma once
#include <memory>

#include "platform/linux/descriptor.h"
#include "platform/xml.h"

namespace twr {

std::unique_ptr<XmlWriter> WriteXml(Descriptor file);

}  // namespace twr
