// SPDX-License-Identifier: MIT
#include "halyrigctl/map/map_file.h"

#include <algorithm>
#include <optional>

#include "base/wide_text.h"
#include "halyrigctl/output/say.h"
#include "halyrigctl/setup/reasons.h"
#include "mapping/mapping_text.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr const char* kSaveAsUtf8 = "open it in an editor and save it as UTF-8";

// Its declaration names UTF-8, or no encoding, or it begins with the mark.
bool IsDeclaredUtf8(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF") || !text.starts_with("<?xml")) return true;
    const std::u16string declaration = UpperCase(FromBytes(text.substr(0, text.find("?>"))));
    return declaration.find(u"ENCODING") == declaration.npos || declaration.find(u"UTF-8") != declaration.npos ||
           declaration.find(u"UTF8") != declaration.npos;
}

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string EncodingFault(std::string_view text) {
    if (text.find('\0') != text.npos || text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
        return std::string("it is not in UTF-8; ") + kSaveAsUtf8;
    if (!IsAscii(text) && !IsDeclaredUtf8(text))
        return std::string("it declares another encoding than UTF-8; ") + kSaveAsUtf8 + ", and say so in its first line";
    return {};
}

std::string ReadElements(Xml& xml, std::u16string_view path, std::vector<XmlElement>& elements) {
    const auto reader = xml.OpenReader(path);
    if (!reader) return "it has been removed meanwhile; try again";
    for (XmlElement element; reader->Next(element);) elements.push_back(element);
    const auto fault = reader->Fault();
    if (!fault) return {};
    const std::string place = "line " + std::to_string(fault->line) + ", column " + std::to_string(fault->column) + ": ";
    return (fault->line > 0 ? place : "") + Words({{}, fault->line, fault->column, fault->flaw, fault->text, {}});
}

bool Agree(const std::vector<ElementSpan>& spans, const std::vector<XmlElement>& elements) {
    return std::ranges::equal(spans, elements, [](const ElementSpan& span, const XmlElement& element) {
        return FromUtf8(LocalName(span)) == element.name;
    });
}

std::string FaultOf(const CoreServices& services, std::u16string_view path, MapFile& file) {
    const auto text = ReadWhole(services.files, path);
    if (text && text->empty()) return {};  // as if it were not there
    if (text) file.text = *text;
    if (std::string fault = EncodingFault(file.text); !fault.empty()) return fault;
    if (std::string fault = ReadElements(services.xml, path, file.elements); !fault.empty()) return fault;
    if (!text) return "it can't be read; see whether the disk is sound and this user may read it";
    auto spans = FindElements(file.text);
    if (!spans || !Agree(*spans, file.elements)) return "its elements are not where they seem to be; change it in an editor";
    file.spans = std::move(*spans);
    return {};
}

// Of processes that were killed: only who has the lock writes beside the mapping.
void RemoveLeftOvers(Files& files, std::u16string_view path) {
    const std::size_t name = path.rfind(kPathSeparator) + 1;
    for (const std::u16string& file : files.List(path.substr(0, name), std::u16string(path.substr(name)) + u".??????.new"))
        files.Remove(file);
}

bool IsSameVar(const MappingVar& left, const MappingVar& right) {
    return left.channel == right.channel && left.boat == right.boat && left.dfwId == right.dfwId && left.dfwName == right.dfwName;
}

bool IsSameRemote(const MappingRemote& left, const MappingRemote& right) {
    return left.channel == right.channel && left.boat == right.boat && left.remote == right.remote && left.damp == right.damp;
}

bool IsSame(const Mapping& left, const Mapping& right) {
    return std::ranges::equal(left.varRows, right.varRows, IsSameVar) &&
           std::ranges::equal(left.remoteRows, right.remoteRows, IsSameRemote);
}

}  // namespace

void ReadMapFile(const CoreServices& services, Circumstances& now, MapFile& file) {
    file.fault = FaultOf(services, now.MappingPath(), file);
    file.rows = LoadMapping(services.xml, now.MappingPath(), now.Variables().rows);
}

std::string NewMapText(const CoreServices& services, Circumstances& now, const Mapping& only) {
    Files& files = services.files;
    const std::u16string draft = files.WriteBeside(files.Target(now.MappingPath()), {}, now.MappingPath());
    const bool saved = !draft.empty() && SaveMapping(files, services.xml, draft, only);
    std::string text = saved ? ReadWhole(files, draft).value_or("") : "";
    if (!draft.empty()) files.Remove(draft);
    // The bridge writes the variable's number.
    const auto spans = FindElements(text);
    if (only.varRows.empty() || !spans || spans->size() != 2) return text;
    const ElementSpan& var = spans->back();
    return text.replace(var.begin, var.end - var.begin, VarText(only.varRows.front(), now.Variables().rows));
}

std::string ReplaceMapFile(const CoreServices& services, Circumstances& now, const MapFile& former, const std::string& text,
                           const Mapping& intended) {
    Files& files = services.files;
    const std::u16string path = now.MappingPath(), kept = path + u".bak", target = files.Target(path);
    for (const std::u16string& file : {target, kept}) RemoveLeftOvers(files, file);
    std::u16string fresh, keeping;
    const auto failed = [&](const std::string& what) {
        for (const std::u16string& file : {fresh, keeping}) {
            if (!file.empty()) files.Remove(file);
        }
        return what + "; nothing is changed";
    };
    if (!text.empty()) fresh = files.WriteBeside(target, text, target);
    if (fresh.empty())
        return failed("can't write a new file beside " + Harmless(target) +
                      (files.RoomIn(now.MappingFolder()).value_or(text.size()) < text.size()
                           ? ": the disk is full; make room on it"
                           : ": this user may not write there, or not what is there, or the disk may be full"));
    if (!IsSame(LoadMapping(services.xml, fresh, now.Variables().rows), intended))
        return failed("the changed file would not be read as intended; change it in an editor");
    // Written and renamed, so that the former file stays in its place until the new one takes it.
    if (!former.text.empty()) keeping = files.WriteBeside(kept, former.text, target);
    if (!former.text.empty() && (keeping.empty() || !files.Rename(keeping, kept)))
        return failed("can't keep the former file as " + Harmless(kept) + ": the disk may be full, or another program has it open");
    if (ReadWhole(files, path) != former.text)
        return failed("another program, an editor or the bridge, has changed " + Harmless(path) + " meanwhile; try again");
    if (!files.Rename(fresh, target)) return failed("can't replace " + Harmless(target) + ": another program may have it open");
    return {};
}

}  // namespace twr
