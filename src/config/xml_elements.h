// The walk over a configuration file in XML: a root of a known name and, at any depth, elements whose attributes hold the settings.
#pragma once
#include <functional>
#include <string_view>

#include "platform/xml.h"

namespace twr {

// Calls `take` for each element named `name` after a first element named `root`; letter case is ignored. A fault ends the walk; the
// elements before it count. False, without a call, if the file can't be read or its first element isn't `root`.
bool ForEachElement(Xml& xml, std::u16string_view path, std::u16string_view root, std::u16string_view name,
                    const std::function<void(const XmlElement&)>& take);

// Calls `take` with name and value of each attribute, in the order of the file, except those with an empty value.
void ForEachAttribute(const XmlElement& element, const std::function<void(std::u16string_view, std::u16string_view)>& take);

}  // namespace twr
