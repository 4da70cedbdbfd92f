// The mapping file: the lasting form of the mapping, in XML.
#pragma once
#include <string_view>
#include <vector>

#include "base/findings.h"
#include "mapping/mapping_rows.h"
#include "platform/files.h"
#include "platform/xml.h"

namespace twr {

// Reads every `var` and `remote` element of a file, whatever its root. A `var` is kept if a row of `catalogue` has its number or
// its name, and copies that row. Reading ends at the first fault; what can't be read gives an empty mapping. What is passed over is
// reported to `findings`, if given.
Mapping LoadMapping(Xml& xml, std::u16string_view path, const std::vector<MappingVar>& catalogue, Findings* findings = nullptr);

// Writes the whole mapping. The former file is kept as `path` plus ".bak", unless it is incomplete itself. False if the document
// could not be finished: a file that was begun stays as far as it was written; if none could be begun, the former file stays in
// place. A row that can't be written is left out.
bool SaveMapping(Files& files, Xml& xml, std::u16string_view path, const Mapping& mapping);

// Take the attributes of an element into a row. False if it is another element or the row would not be valid.
bool ParseVarElement(const XmlElement& element, MappingVar& row, const Place& place = {});
bool ParseRemoteElement(const XmlElement& element, MappingRemote& row, const Place& place = {});

// Write one empty element. False as soon as a part of it can't be written.
bool WriteVarElement(XmlWriter& writer, const MappingVar& row);
bool WriteRemoteElement(XmlWriter& writer, const MappingRemote& row);

}  // namespace twr
