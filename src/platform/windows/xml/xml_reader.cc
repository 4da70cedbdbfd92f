#include <xmllite.h>

#include <algorithm>

#include "base/wide_text.h"
#include "platform/windows/services.h"
#include "platform/windows/xml/com_ptr.h"
#include "platform/windows/xml/well_formed.h"
#include "platform/windows/xml/xml_encoding.h"
#include "platform/windows/xml/xml_writer.h"

namespace twr {
namespace {

std::string Contents(ByteSource& source) {
    std::string bytes;
    char part[16384];
    while (bytes.size() < kLargestFile) {
        const std::size_t got = source.Read(part, sizeof part);
        if (got == 0) break;
        bytes.append(part, got);
    }
    return bytes;
}

// Appended to the document. Wine's reader runs for ever, or ends the program, if a document ends too early; this turns open
// comments, values and anything else into a fault, and yields no element.
constexpr std::string_view kFault = "\"'-->]]>?></>                ";

// XmlLite finds every fault by itself on Windows; Wine's misses some.
class LiteReader : public XmlReader {
public:
    explicit LiteReader(ComPtr<IXmlReader> reader) : reader_(std::move(reader)) {}

    bool Next(XmlElement& element) override {
        XmlNodeType node = XmlNodeType_None;
        while (!ended_) {
            ended_ = reader_->Read(&node) != S_OK || (node == XmlNodeType_Element && !TakeElement(element));
            if (!ended_ && node == XmlNodeType_Element) return true;
        }
        return false;
    }

private:
    // False if the element has a prefix without a name space or an attribute twice.
    bool TakeElement(XmlElement& element) {
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
    std::vector<std::u16string> qualifiedNames_;  // of the attributes of the element at hand
    bool ended_ = false;
};

// XmlLite knows other encodings than UTF-8 and UTF-16 on some machines only, and Wine's fails in UTF-16 beyond some thousand
// characters; so it always gets UTF-8. The mark is for Wine's, which otherwise rejects blanks before the first element.
std::unique_ptr<XmlReader> OpenXmlReader(std::u16string_view path) {
    const auto source = MakeFiles({})->Open(path);
    if (!source) return nullptr;
    const std::string document = "\xEF\xBB\xBF" + ToUtf8(WellFormedPrefix(DecodeXml(Contents(*source)))).append(kFault);
    const ComPtr<IStream> stream(
        SHCreateMemStream(reinterpret_cast<const BYTE*>(document.data()), static_cast<UINT>(document.size())));
    ComPtr<IXmlReader> reader;
    if (!stream || FAILED(CreateXmlReader(__uuidof(IXmlReader), reader.ReceiveVoid(), nullptr)) ||
        FAILED(reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit)) ||
        FAILED(reader->SetInput(stream.get()))) {
        return nullptr;
    }
    reader->SetProperty(XmlReaderProperty_MaxElementDepth, kDeepestElement);  // in place of its 256
    return std::make_unique<LiteReader>(std::move(reader));
}

class WindowsXml final : public Xml {
public:
    std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) override { return OpenXmlReader(path); }
    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view path) override { return OpenXmlWriter(path); }
};

}  // namespace

std::unique_ptr<Xml> MakeXml() { return std::make_unique<WindowsXml>(); }

}  // namespace twr
