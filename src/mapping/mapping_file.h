// The mapping file: the lasting form of the mapping, in XML.
#pragma once
#include <string_view>
#include <vector>

#include "mapping/mapping_rows.h"
#include "platform/xml.h"

namespace twr {

// Reads every `var` and `remote` element of a file, whatever its root. A `var` is kept when a row of `catalogue` has its number or
// its name, and takes over that row. Reading ends at the first fault; what can't be read gives an empty mapping.
Mapping LoadMapping(Xml& xml, std::u16string_view path, const std::vector<MappingVar>& catalogue);

// Writes the whole mapping. False when the document could not be finished; a row that can't be written is left out.
bool SaveMapping(Xml& xml, std::u16string_view path, const Mapping& mapping);

// Take the attributes of an element into a row. False when the row would not be valid.
bool ParseVarElement(const XmlElement& element, MappingVar& row);
bool ParseRemoteElement(const XmlElement& element, MappingRemote& row);

// Write one empty element. False as soon as a part of it can't be written.
bool WriteVarElement(XmlWriter& writer, const MappingVar& row);
bool WriteRemoteElement(XmlWriter& writer, const MappingRemote& row);

}  // namespace twr
