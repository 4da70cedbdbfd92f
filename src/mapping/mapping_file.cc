// SPDX-License-Identifier: MIT
#include "mapping/mapping_file.h"

#include <algorithm>
#include <string>

#include "base/channel_ids.h"
#include "base/numbers.h"
#include "base/wide_text.h"

namespace twr {
namespace {

constexpr std::u16string_view kVar = u"var";
constexpr std::u16string_view kRemote = u"remote";

// A value without a number leaves the field unchanged.
bool TakeNumber(const XmlAttribute& attribute, std::u16string_view name, std::int32_t& field, const Place& place) {
    if (!EqualsIgnoringCase(attribute.name, name)) return false;
    if (const auto number = ScanInt(attribute.value)) {
        field = *number;
    } else {
        place.Report(Flaw::kNotANumber, Spelled(attribute));
    }
    return true;
}

std::u16string Digits(std::int32_t number) { return FromBytes(std::to_string(number)); }

bool IsChannel(std::int32_t channel, const Place& place) {
    if (channel >= 0 && channel < static_cast<std::int32_t>(kChannelCount)) return true;
    return channel == kNoInt ? place.Report(Flaw::kChannelMissing) : place.Report(Flaw::kNoSuchChannel, Digits(channel));
}

bool IsBoat(std::int32_t boat, const Place& place) {
    return (boat >= 0 && boat < static_cast<std::int32_t>(kBoatCount)) || place.Report(Flaw::kNoSuchBoat, Digits(boat));
}

bool IsRemote(std::int32_t remote, const Place& place) {
    if (remote >= 0 && remote != kNoInt) return true;
    return remote == kNoInt ? place.Report(Flaw::kRemoteMissing) : place.Report(Flaw::kNoSuchRemote, Digits(remote));
}

// The first variable with the row's number or, where the file gives one, its name.
const DeckmanVariable* FindVariable(const std::vector<DeckmanVariable>& catalogue, const MappingVar& row) {
    const auto found = std::ranges::find_if(catalogue, [&](const DeckmanVariable& variable) {
        return variable.dfwId == row.dfwId || (!row.dfwName.empty() && variable.dfwName == row.dfwName);
    });
    return found == catalogue.end() ? nullptr : &*found;
}

bool IsMappingElement(const XmlElement& element) {
    return EqualsIgnoringCase(element.name, kVar) || EqualsIgnoringCase(element.name, kRemote);
}

// A mapping file that is incomplete, for example after a full disk, has no end tag. In some encodings every other byte is zero.
bool IsWhole(std::string text) {
    std::erase(text, '\0');
    return text.find('>', text.rfind("</")) != text.npos;
}

// Under another name first: if the disk has no room for it, the copy of before stays.
bool Keep(Files& files, std::u16string_view path, std::string_view contents) {
    const std::u16string kept = std::u16string(path) + u".bak", keeping = kept + u".new";
    files.Remove(keeping);
    auto copy = files.Create(keeping);
    if (!copy) return false;
    const bool whole = copy->Write(contents) && copy->Flush();
    copy.reset();
    if (whole && files.Rename(keeping, kept)) return true;
    files.Remove(keeping);
    return false;
}

bool WriteNumber(XmlWriter& writer, std::u16string_view name, std::int32_t number) {
    return writer.Attribute(name, Digits(number));
}

}  // namespace

bool ParseVarElement(const XmlElement& element, MappingVar& row, const Place& place) {
    if (!EqualsIgnoringCase(element.name, kVar)) return false;
    for (const XmlAttribute& attribute : element.attributes) {
        if (TakeNumber(attribute, u"twr", row.channel, place) || TakeNumber(attribute, u"boat", row.boat, place)) continue;
        if (!EqualsIgnoringCase(attribute.name, u"dfw")) {
            place.Report(Flaw::kUnknownAttribute, attribute.name);
        } else if (const auto number = ScanInt(attribute.value)) {
            row.dfwId = *number;
        } else {
            row.dfwName = attribute.value;
        }
    }
    if (row.dfwId == kNoInt && row.dfwName.empty()) return place.Report(Flaw::kVariableMissing);
    return IsChannel(row.channel, place) && IsBoat(row.boat, place);
}

bool ParseRemoteElement(const XmlElement& element, MappingRemote& row, const Place& place) {
    if (!EqualsIgnoringCase(element.name, kRemote)) return false;
    for (const XmlAttribute& attribute : element.attributes) {
        if (TakeNumber(attribute, u"remote", row.remote, place) || TakeNumber(attribute, u"twr", row.channel, place) ||
            TakeNumber(attribute, u"boat", row.boat, place)) {
            continue;
        }
        if (EqualsIgnoringCase(attribute.name, u"damp")) {
            row.damp = EqualsIgnoringCase(attribute.value, u"false") ? 0 : 1;
        } else {
            place.Report(Flaw::kUnknownAttribute, attribute.name);
        }
    }
    return IsChannel(row.channel, place) && IsRemote(row.remote, place) && IsBoat(row.boat, place);
}

Mapping LoadMapping(Xml& xml, std::u16string_view path, const std::vector<DeckmanVariable>& catalogue, Findings* findings) {
    Mapping mapping;
    const Place file{findings, path};
    const auto reader = xml.OpenReader(path);
    if (!reader) return mapping;
    XmlElement element;
    for (bool first = true; reader->Next(element); first = false) {
        const std::u16string spelled = findings ? Spelled(element) : std::u16string();
        const Place place = file.At(element.line).Of(spelled);
        if (MappingVar row; ParseVarElement(element, row, place)) {
            const DeckmanVariable* variable = FindVariable(catalogue, row);
            if (!variable) {
                place.Report(Flaw::kNoSuchVariable, row.dfwName.empty() ? Digits(row.dfwId) : row.dfwName);
                continue;
            }
            static_cast<DeckmanVariable&>(row) = *variable;
            row.line = element.line;
            mapping.varRows.push_back(row);
        } else if (MappingRemote remote; ParseRemoteElement(element, remote, place)) {
            remote.line = element.line;
            mapping.remoteRows.push_back(remote);
        } else if (!first && !IsMappingElement(element)) {
            place.Report(Flaw::kUnknownElement, element.name);
        }
    }
    if (const auto fault = reader->Fault()) file.At(fault->line, fault->column).Report(fault->flaw, fault->text);
    return mapping;
}

bool WriteVarElement(XmlWriter& writer, const MappingVar& row) {
    return writer.StartElement(kVar) && WriteNumber(writer, u"twr", row.channel) && WriteNumber(writer, u"dfw", row.dfwId) &&
           (row.boat == 0 || WriteNumber(writer, u"boat", row.boat)) && writer.EndElement();
}

bool WriteRemoteElement(XmlWriter& writer, const MappingRemote& row) {
    return writer.StartElement(kRemote) && WriteNumber(writer, u"remote", row.remote) && WriteNumber(writer, u"twr", row.channel) &&
           writer.Attribute(u"damp", row.damp != 0 ? u"true" : u"false") &&
           (row.boat == 0 || WriteNumber(writer, u"boat", row.boat)) && writer.EndElement();
}

bool SaveMapping(Files& files, Xml& xml, std::u16string_view path, const Mapping& mapping) {
    const auto former = ReadWhole(files, path);
    // Whether it may be written is asked first, so that an older copy is not given up for nothing.
    if (!former || (IsWhole(*former) && !(files.Append(path, {}) && Keep(files, path, *former)))) return false;
    const auto writer = xml.OpenWriter(path);
    if (!writer || !writer->StartElement(u"halyrig") || !writer->Attribute(u"version", u"1.0") ||
        !writer->Attribute(u"creator", u"Tidewright - https://tidewright.example")) {
        return false;
    }
    writer->Comment(u"See user_channels.h for Tidewright var ids");
    for (const MappingVar& row : mapping.varRows) {
        if (row.channel != kNoInt && row.dfwId != kNoInt) WriteVarElement(*writer, row);
    }
    writer->Comment(u"B&G remote ids are 1-n");
    for (const MappingRemote& row : mapping.remoteRows) {
        if (row.channel != kNoInt && row.remote != kNoInt) WriteRemoteElement(*writer, row);
    }
    return writer->Finish();
}

}  // namespace twr
