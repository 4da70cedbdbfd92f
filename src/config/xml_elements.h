// The walk over a configuration file in XML: a root of a known name and, at any depth, elements whose attributes hold the settings.
#pragma once
#include <functional>
#include <string_view>

#include "platform/xml.h"

namespace twr {

// Calls `take` for each element named `name` behind a first element named `root`; case of letters plays no part. A fault ends the
// walk and keeps what was taken. False, with nothing taken, when the file can't be read or its first element isn't `root`.
bool ForEachElement(Xml& xml, std::u16string_view path, std::u16string_view root, std::u16string_view name,
                    const std::function<void(const XmlElement&)>& take);

// Calls `take` with name and value of each attribute, in the order of the file, but for those whose value is empty.
void ForEachAttribute(const XmlElement& element, const std::function<void(std::u16string_view, std::u16string_view)>& take);

}  // namespace twr
