// SPDX-License-Identifier: MIT
#include <algorithm>

#include "base/wide_text.h"
#include "platform/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/xml/xml.h"

namespace twr {
namespace {

std::string Contents(ByteSource& source) {
    std::string bytes;
    char part[16384];
    while (const std::size_t got = source.Read(part, std::min(sizeof part, kLargestFile - bytes.size()))) bytes.append(part, got);
    return bytes;
}

// Appended to the document. Wine's reader runs for ever, or ends the program, if a document ends too early; this turns open
// comments, values and anything else into a fault, and yields no element.
constexpr std::string_view kFault = "\"'-->]]>?></>                ";

// XmlLite finds every fault by itself on Windows; Wine's misses some.
class LiteReader : public XmlReader {
public:
    // `end` is where the document ends, or has a fault that shows in its characters if it is not `whole`.
    LiteReader(ComPtr<IXmlReader> reader, XmlFault end, bool whole)
        : reader_(std::move(reader)), end_(std::move(end)), whole_(whole) {}

    bool Next(XmlElement& element) override {
        XmlNodeType node = XmlNodeType_None;
        while (!ended_) {
            ended_ = reader_->Read(&node) != S_OK || (node == XmlNodeType_Element && !TakeElement(element));
            if (node == XmlNodeType_EndElement) --depth_;
            if (!ended_ && node == XmlNodeType_Element) return true;
        }
        return false;
    }

    // What is appended to a sound document is always a fault, but behind its end.
    std::optional<XmlFault> Fault() const override {
        if (!ended_) return std::nullopt;
        const XmlFault at = Position();
        const bool before = at.line < end_.line || (at.line == end_.line && at.column < end_.column);
        if (before) return at;
        return whole_ && found_ && depth_ == 0 ? std::nullopt : std::optional(end_);
    }

private:
    XmlFault Position() const {
        UINT line = 0, column = 0;
        reader_->GetLineNumber(&line);
        reader_->GetLinePosition(&column);
        return {line, column, {}};
    }

    // False if the element has a prefix without a name space or an attribute twice.
    bool TakeElement(XmlElement& element) {
        found_ = true;
        if (!reader_->IsEmptyElement()) ++depth_;
        element.line = Position().line;
        element.attributes.clear();
        qualifiedNames_.clear();
        if (!TakeName(element.name)) return false;
        for (HRESULT more = reader_->MoveToFirstAttribute(); more == S_OK; more = reader_->MoveToNextAttribute()) {
            if (!reader_->IsDefault() && !TakeAttribute(element)) return false;
        }
        return true;
    }

    bool TakeAttribute(XmlElement& element) {
        const std::u16string qualified = Get(&IXmlReader::GetQualifiedName);
        if (std::ranges::find(qualifiedNames_, qualified) != qualifiedNames_.end()) return false;
        qualifiedNames_.push_back(qualified);
        if (qualified == u"xmlns" || qualified.starts_with(u"xmlns:")) return true;
        XmlAttribute& attribute = element.attributes.emplace_back();
        attribute.value = Get(&IXmlReader::GetValue);
        return TakeName(attribute.name);
    }

    bool TakeName(std::u16string& name) {
        name = Get(&IXmlReader::GetLocalName);
        const bool prefixed = name != Get(&IXmlReader::GetQualifiedName);
        return !name.empty() && (!prefixed || !Get(&IXmlReader::GetNamespaceUri).empty());
    }

    std::u16string Get(HRESULT (WINAPI IXmlReader::*part)(const wchar_t**, UINT*)) {
        const wchar_t* text = nullptr;
        UINT length = 0;
        if (FAILED((reader_.get()->*part)(&text, &length))) return {};
        return {text, text + length};
    }

    ComPtr<IXmlReader> reader_;
    const XmlFault end_;
    const bool whole_;
    int depth_ = 0;
    bool found_ = false;                          // an element
    std::vector<std::u16string> qualifiedNames_;  // of the attributes of the element at hand
    bool ended_ = false;
};

// The place behind a text.
XmlFault EndOf(std::u16string_view text) {
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, u'\n'));
    return {lines + 1, text.size() - (text.rfind(u'\n') + 1) + 1, {}};  // the last line starts at 0 if it is the only one
}

// XmlLite knows other encodings than UTF-8 and UTF-16 on some machines only, and Wine's fails in UTF-16 beyond some thousand
// characters; so it always gets UTF-8. The mark is for Wine's, which otherwise rejects blanks before the first element.
std::unique_ptr<XmlReader> OpenXmlReader(std::u16string_view path) {
    const auto files = MakeFiles({});
    const auto source = files->Open(path);
    if (!source) return UnopenedXml(*files, path);
    const std::string bytes = Contents(*source);
    const std::u16string text = DecodeXml(bytes);
    const std::u16string_view sound = WellFormedPrefix(text);
    const std::string document = "\xEF\xBB\xBF" + ToUtf8(WithShortComments(sound)).append(kFault);
    const ComPtr<IStream> stream(
        SHCreateMemStream(reinterpret_cast<const BYTE*>(document.data()), static_cast<UINT>(document.size())));
    ComPtr<IXmlReader> reader;
    if (!stream || FAILED(CreateXmlReader(__uuidof(IXmlReader), reader.ReceiveVoid(), nullptr)) ||
        FAILED(reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit)) ||
        FAILED(reader->SetInput(stream.get()))) {
        return nullptr;
    }
    reader->SetProperty(XmlReaderProperty_MaxElementDepth, kDeepestElement);  // in place of its 256
    XmlFault end = EndOf(sound);
    if (bytes.size() == kLargestFile) end.text = kTooLarge;
    if (const std::string failure = source->Failure(); !failure.empty()) {
        end.text = FromUtf8(failure);
        end.flaw = Flaw::kReadFailed;
    }
    const bool whole = sound.size() == text.size() && end.flaw != Flaw::kReadFailed;
    return std::make_unique<LiteReader>(std::move(reader), std::move(end), whole);
}

class WindowsXml final : public Xml {
public:
    std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) override { return OpenXmlReader(path); }
    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view path) override { return OpenXmlWriter(path); }
};

}  // namespace

std::unique_ptr<Xml> MakeXml() { return std::make_unique<WindowsXml>(); }

}  // namespace twr
