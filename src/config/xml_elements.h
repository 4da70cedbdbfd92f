// SPDX-License-Identifier: MIT
// The walk over a configuration file in XML: a root of a known name and, at any depth, elements whose attributes hold the settings.
#pragma once
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string_view>

#include "base/findings.h"
#include "platform/xml.h"

namespace twr {

// Calls `take` for each element named `name` after a first element named `root`; letter case is ignored. A fault ends the walk; the
// elements before it count. False, without a call, if the file can't be read or its first element isn't `root`. `file` has the
// file's path; what is passed over is reported there.
bool ForEachElement(Xml& xml, const Place& file, std::u16string_view root, std::u16string_view name,
                    const std::function<void(const XmlElement&, const Place&)>& take);

// Calls `take` for each attribute, in the order of the file, except those with an empty value.
void ForEachAttribute(const XmlElement& element, const Place& place, const std::function<void(const XmlAttribute&)>& take);

// Whether the attribute has that name; letter case is ignored.
bool Is(const XmlAttribute& attribute, std::u16string_view name);

// The number at the start of the value, 0 when there is none, which is reported.
std::int32_t NumberOf(const XmlAttribute& attribute, const Place& place);

// Reports a number that is not within `least` and `most`.
void CheckRange(std::int32_t number, std::int32_t least, std::int32_t most, const XmlAttribute& attribute, const Place& place);

// Reports a text that is longer than its field can hold.
void CheckLength(const XmlAttribute& attribute, std::size_t most, const Place& place);

// Reports an element without an `id`, or else those attributes before it that need it.
void CheckIdIsFirst(const XmlElement& element, std::initializer_list<std::u16string_view> needIt, const Place& place);

}  // namespace twr
