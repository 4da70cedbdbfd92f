#include "halyrigctl/map/map_file.h"

#include <algorithm>

#include "base/wide_text.h"
#include "halyrigctl/finding_words.h"
#include "halyrigctl/say.h"
#include "mapping/mapping_text.h"
#include "platform/paths.h"

namespace twr {
namespace {

constexpr const char* kSaveAsUtf8 = "open it in an editor and save it as UTF-8";

std::string Contents(Files& files, std::u16string_view path) {
    std::string bytes;
    char chunk[16384];
    const auto source = files.Open(path);
    while (const std::size_t got = source && bytes.size() <= kLargestFile ? source->Read(chunk, sizeof chunk) : 0)
        bytes.append(chunk, got);
    return bytes;
}

// On the disk before it takes another's place: a power cut leaves the old or the new one.
bool WriteWhole(Files& files, std::u16string_view path, std::string_view text) {
    const auto writer = files.Create(path);
    return writer && writer->Write(text) && writer->Flush();
}

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
    if (!reader) return "it can't be read";
    for (XmlElement element; reader->Next(element);) elements.push_back(element);
    const auto fault = reader->Fault();
    if (!fault) return {};
    return "line " + std::to_string(fault->line) + ", column " + std::to_string(fault->column) + ": " +
           Words({{}, fault->line, fault->column, Flaw::kNotWellFormed, fault->text, {}});
}

bool Agree(const std::vector<ElementSpan>& spans, const std::vector<XmlElement>& elements) {
    return std::ranges::equal(spans, elements, [](const ElementSpan& span, const XmlElement& element) {
        return FromUtf8(LocalName(span)) == element.name;
    });
}

std::string FaultOf(const CoreServices& services, std::u16string_view path, MapFile& file) {
    if (file.text.empty()) return services.files.Exists(path) ? "it is empty or can't be read; remove it" : "";
    if (std::string fault = EncodingFault(file.text); !fault.empty()) return fault;
    if (std::string fault = ReadElements(services.xml, path, file.elements); !fault.empty()) return fault;
    auto spans = FindElements(file.text);
    if (!spans || !Agree(*spans, file.elements)) return "its elements are not where they seem to be; change it in an editor";
    file.spans = std::move(*spans);
    return {};
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

void ReadMapFile(const CoreServices& services, const MappingInForce& inForce, MapFile& file) {
    file.text = Contents(services.files, inForce.path);
    file.fault = FaultOf(services, inForce.path, file);
    file.rows = LoadMapping(services.xml, inForce.path, inForce.variables.rows);
}

std::string NewMapText(const CoreServices& services, const MappingInForce& inForce, const Mapping& only) {
    const std::u16string fresh = inForce.path + u".new";
    services.files.MakeFolder(inForce.dataFolder);
    services.files.MakeFolder(InstrumentsFolder(inForce));
    services.files.Remove(fresh);
    std::string text = SaveMapping(services.files, services.xml, fresh, only) ? Contents(services.files, fresh) : "";
    services.files.Remove(fresh);
    // The bridge writes the variable's number.
    const auto spans = FindElements(text);
    if (only.varRows.empty() || !spans || spans->size() != 2) return text;
    const ElementSpan& var = spans->back();
    return text.replace(var.begin, var.end - var.begin, VarText(only.varRows.front(), inForce.variables.rows));
}

std::string ReplaceMapFile(const CoreServices& services, const MappingInForce& inForce, const std::string& text,
                           const Mapping& intended) {
    Files& files = services.files;
    const std::u16string& path = inForce.path;
    const std::u16string fresh = path + u".new", kept = path + u".bak", keeping = path + u".bak.new";
    const auto failed = [&](const std::string& what) {
        files.Remove(fresh);
        files.Remove(keeping);
        return what + "; nothing is changed";
    };
    files.Remove(fresh);
    if (text.empty() || !WriteWhole(files, fresh, text))
        return failed("can't write " + Harmless(fresh) + ": the disk may be full, or the folder can't be written");
    if (!IsSame(LoadMapping(services.xml, fresh, inForce.variables.rows), intended))
        return failed("the changed file would not be read as intended; change it in an editor");
    // Copied and renamed, so that the former file stays in its place until the new one takes it.
    if (files.Exists(path) && (!files.Copy(path, keeping) || !files.Rename(keeping, kept)))
        return failed("can't keep the former file as " + Harmless(kept) + ": the disk may be full, or another program has it open");
    if (!files.Rename(fresh, path)) return failed("can't replace " + Harmless(path) + ": another program may have it open");
    return {};
}

}  // namespace twr
