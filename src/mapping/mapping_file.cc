#include "mapping/mapping_file.h"

#include <algorithm>
#include <string>

#include "base/channel_ids.h"
#include "base/scan.h"
#include "base/wide_text.h"

namespace twr {
namespace {

constexpr std::u16string_view kVar = u"var";
constexpr std::u16string_view kRemote = u"remote";

// A value without a number leaves the field unchanged.
bool TakeNumber(const XmlAttribute& attribute, std::u16string_view name, std::int32_t& field) {
    if (!EqualsIgnoringCase(attribute.name, name)) return false;
    if (const auto number = ScanInt(attribute.value)) field = *number;
    return true;
}

bool IsChannel(std::int32_t channel) { return channel >= 0 && channel < static_cast<std::int32_t>(kChannelCount); }
bool IsBoat(std::int32_t boat) { return boat >= 0 && boat < static_cast<std::int32_t>(kBoatCount); }

// The first variable with the row's number or, where the file gives one, its name.
const MappingVar* FindVariable(const std::vector<MappingVar>& catalogue, const MappingVar& row) {
    const auto found = std::ranges::find_if(catalogue, [&](const MappingVar& variable) {
        return variable.dfwId == row.dfwId || (!row.dfwName.empty() && variable.dfwName == row.dfwName);
    });
    return found == catalogue.end() ? nullptr : &*found;
}

// A mapping file that is incomplete, for example after a full disk, has no end tag. In some encodings every other byte is zero.
bool IsWhole(Files& files, std::u16string_view path) {
    const auto source = files.Open(path);
    std::string text;
    char chunk[4096];
    while (const std::size_t got = source ? source->Read(chunk, sizeof chunk) : 0) text.append(chunk, got);
    std::erase(text, '\0');
    return text.find('>', text.rfind("</")) != text.npos;
}

bool WriteNumber(XmlWriter& writer, std::u16string_view name, std::int32_t number) {
    return writer.Attribute(name, FromBytes(std::to_string(number)));
}

}  // namespace

bool ParseVarElement(const XmlElement& element, MappingVar& row) {
    if (!EqualsIgnoringCase(element.name, kVar)) return false;
    for (const XmlAttribute& attribute : element.attributes) {
        if (TakeNumber(attribute, u"twr", row.channel) || TakeNumber(attribute, u"boat", row.boat)) continue;
        if (!EqualsIgnoringCase(attribute.name, u"dfw")) continue;
        if (const auto number = ScanInt(attribute.value)) {
            row.dfwId = *number;
        } else {
            row.dfwName = attribute.value;
        }
    }
    return (row.dfwId != kNoInt || !row.dfwName.empty()) && IsChannel(row.channel) && IsBoat(row.boat);
}

bool ParseRemoteElement(const XmlElement& element, MappingRemote& row) {
    if (!EqualsIgnoringCase(element.name, kRemote)) return false;
    for (const XmlAttribute& attribute : element.attributes) {
        if (TakeNumber(attribute, u"remote", row.remote) || TakeNumber(attribute, u"twr", row.channel) ||
            TakeNumber(attribute, u"boat", row.boat)) {
            continue;
        }
        if (EqualsIgnoringCase(attribute.name, u"damp")) row.damp = EqualsIgnoringCase(attribute.value, u"false") ? 0 : 1;
    }
    return IsChannel(row.channel) && row.remote != kNoInt && row.remote >= 0 && IsBoat(row.boat);
}

Mapping LoadMapping(Xml& xml, std::u16string_view path, const std::vector<MappingVar>& catalogue) {
    Mapping mapping;
    const auto reader = xml.OpenReader(path);
    if (!reader) return mapping;
    XmlElement element;
    while (reader->Next(element)) {
        if (MappingVar row; ParseVarElement(element, row)) {
            const MappingVar* variable = FindVariable(catalogue, row);
            if (!variable) continue;
            BindVariable(row, *variable);
            mapping.varRows.push_back(row);
        } else if (MappingRemote remote; ParseRemoteElement(element, remote)) {
            mapping.remoteRows.push_back(remote);
        }
    }
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
    const std::u16string kept = std::u16string(path) + u".bak";
    const bool keeps = IsWhole(files, path) && files.Rename(path, kept);
    const auto writer = xml.OpenWriter(path);
    if (!writer && keeps) files.Rename(kept, path);
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
