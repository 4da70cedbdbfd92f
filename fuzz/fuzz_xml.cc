// SPDX-License-Identifier: MIT
#include <algorithm>
#include <iterator>
#include <string>

#include "base/wide_text.h"
#include "kept_core.h"
#include "mapping/mapping_file.h"
#include "mapping/mapping_text.h"
#include "platform/linux/xml/xml.h"

namespace {

// Bytes in memory.
class Bytes : public twr::ByteSource {
public:
    explicit Bytes(std::string_view bytes) : rest_(bytes) {}
    std::size_t Read(char* to, std::size_t room) override {
        const std::size_t count = rest_.copy(to, room);
        rest_.remove_prefix(count);
        return count;
    }

private:
    std::string_view rest_;
};

// The one XML file of this machine, whatever path is asked for.
class OneFile : public twr::Xml {
public:
    explicit OneFile(std::string_view itsDocument = {}) : document(itsDocument) {}

    std::unique_ptr<twr::XmlReader> OpenReader(std::u16string_view) override {
        return twr::ReadXml(std::make_unique<Bytes>(document));
    }
    std::unique_ptr<twr::XmlWriter> OpenWriter(std::u16string_view) override { return nullptr; }

    std::string_view document;
};

// How a document may begin, so that not every attribute must be found behind the right root and the right element, and which files
// it is then read as.
struct Beginning {
    const char* text;
    bool mapping, boats, channels;
};
constexpr Beginning kBeginnings[] = {{"", true, true, true},
                                     {"<boats><boat id=\"1\" ", false, true, false},
                                     {"<channels><channel id=\"172\" ", false, false, true},
                                     {"<halyrig><var ", true, false, false},
                                     {"<halyrig><remote ", true, false, false}};

std::vector<std::u16string> NamesIn(twr::Xml& xml, bool& sound) {
    std::vector<std::u16string> names;
    const auto reader = xml.OpenReader(u"");
    for (twr::XmlElement element; reader->Next(element);) names.push_back(element.name);
    sound = !reader->Fault();
    return names;
}

// Where a sound document in ASCII has its elements is found without a parser, and a line added there is read.
void CheckElementsAreFound(const std::string& document) {
    if (std::ranges::any_of(document, [](char c) { return c <= 0; }) || document.find("encoding") != document.npos) return;
    OneFile xml(document);
    bool sound = false;
    const auto names = NamesIn(xml, sound);
    if (!sound) return;
    const auto spans = twr::FindElements(document);
    const auto agrees = [](const twr::ElementSpan& span, const std::u16string& name) {
        return twr::FromUtf8(twr::LocalName(span)) == name;
    };
    if (!spans || !std::ranges::equal(*spans, names, agrees)) __builtin_trap();
    for (const char* kind : {"var", "remote"}) {
        const std::string withOne = twr::WithElement(document, *spans, kind, "<added/>");
        OneFile longer(withOne);
        const auto now = NamesIn(longer, sound);
        if (!sound || now.size() != names.size() + 1) __builtin_trap();
    }
    for (std::size_t i = 0; i < spans->size(); ++i) {
        if (!twr::IsRemovable(document, *spans, i)) continue;
        const std::string withoutOne = twr::WithoutElements(document, *spans, {i});
        OneFile shorter(withoutOne);
        const auto now = NamesIn(shorter, sound);
        if (!sound || now.size() != names.size() - 1) __builtin_trap();
    }
}

void ReadMapping(twr::Xml& xml, twr::Findings& heard) {
    std::vector<twr::DeckmanVariable> catalogue(1);
    catalogue[0].dfwId = 1;
    catalogue[0].dfwName = u"BSP";
    const twr::Mapping mapping = twr::LoadMapping(xml, u"", catalogue, &heard);
    const auto check = [](const auto& row) {
        if (row.channel < 0 || row.channel > 413 || row.boat < 0 || row.boat > 99) __builtin_trap();
    };
    for (const twr::MappingVar& row : mapping.varRows) check(row);
    for (const twr::MappingRemote& row : mapping.remoteRows) check(row);
}

void ReadBoats(twr::CCore& core) {
    core.LoadBoatsFile();
    for (const twr::BoatRow& boat : core.View()->boats) {
        if (boat.name[31] != 0 || boat.colour > 0xFFFFFF) __builtin_trap();
    }
}

// A user channel's type and decimals are whatever the file says, and its text must still be had.
void ReadChannels(twr::testing::KeptCore& kept) {
    kept.core.LoadChannelsFile();
    for (twr::ChannelId channel = twr::kUser0; channel <= twr::kUser31; ++channel) {
        const twr::ChannelRow& row = kept.core.View()->channels[channel];
        if (kept.IsPristine(&row, sizeof row)) continue;
        if (row.prec > 255 || row.userName[31] != 0 || row.userShortName[15] != 0) __builtin_trap();
        kept.core.ChannelText(channel, -123.456);
        kept.core.RemoteLabel(channel);
    }
}

}  // namespace

// The mapping file, and the boats and channels of a new record. The first byte chooses the beginning.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static OneFile xml;
    static twr::testing::KeptCore kept(&xml);
    kept.Reset();
    if (size == 0) return 0;
    const Beginning& beginning = kBeginnings[*data % std::size(kBeginnings)];
    const std::string document = beginning.text + std::string(reinterpret_cast<const char*>(data) + 1, size - 1);
    CheckElementsAreFound(document);
    xml.document = document;
    if (beginning.mapping) ReadMapping(xml, kept.heard);
    if (beginning.boats) ReadBoats(kept.core);
    if (beginning.channels) ReadChannels(kept);
    return 0;
}
