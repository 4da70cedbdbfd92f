// SPDX-License-Identifier: MIT
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
Mapping LoadMapping(Xml& xml, std::u16string_view path, const std::vector<DeckmanVariable>& catalogue,
                    Findings* findings = nullptr);

// Writes the whole mapping into the file of that name, which keeps its owner, rights and links. What it held is first copied to
// `path` plus ".bak", unless it is incomplete. False if that can't be done, or if the file can't be written: nothing has changed
// then. False too if the document could not be finished: the file stays as far as it was written. A row that can't be written is
// left out.
bool SaveMapping(Files& files, Xml& xml, std::u16string_view path, const Mapping& mapping);

// Take the attributes of an element into a row. False if it is another element or the row would not be valid.
bool ParseVarElement(const XmlElement& element, MappingVar& row, const Place& place = {});
bool ParseRemoteElement(const XmlElement& element, MappingRemote& row, const Place& place = {});

// Write one empty element. False as soon as a part of it can't be written.
bool WriteVarElement(XmlWriter& writer, const MappingVar& row);
bool WriteRemoteElement(XmlWriter& writer, const MappingRemote& row);

}  // namespace twr
