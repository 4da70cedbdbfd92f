// SPDX-License-Identifier: MIT

#include <expat.h>

#include <algorithm>
#include <deque>
#include <string_view>
#include <vector>

#include "base/wide_text.h"
#include "platform/linux/services.h"
#include "platform/linux/xml/xml.h"

namespace twr {
namespace {

constexpr std::size_t kChunk = 8192;  // bytes
constexpr std::size_t kLargestChunk = 4 << 20;
constexpr XML_Char kSeparator = '\xFF';  // of name space and local name; no text in UTF-8 holds it

// The encoding of the byte-order mark, which overrides the declaration; nullptr without one.
const XML_Char* MarkedEncoding(std::string_view document) {
    if (document.starts_with("\xEF\xBB\xBF")) return "UTF-8";
    if (document.starts_with("\xFF\xFE") || document.starts_with("\xFE\xFF")) return "UTF-16";
    return nullptr;
}

std::u16string LocalName(std::string_view name) {
    return FromUtf8(name.substr(name.rfind(kSeparator) + 1));  // without a separator from the start
}

class ExpatReader final : public XmlReader {
public:
    explicit ExpatReader(std::unique_ptr<ByteSource> source) : source_(std::move(source)) {}
    ~ExpatReader() override { XML_ParserFree(parser_); }

    bool Next(XmlElement& element) override {
        while (elements_.empty()) {
            if (ended_) return false;
            ReadChunk();
        }
        element = std::move(elements_.front());
        elements_.pop_front();
        return true;
    }

    std::optional<XmlFault> Fault() const override { return fault_; }

private:
    void Begin(std::string_view firstBytes) {
        parser_ = XML_ParserCreateNS(MarkedEncoding(firstBytes), kSeparator);
        if (!parser_) return;
        XML_SetUserData(parser_, this);
        XML_SetElementHandler(parser_, OnElement, OnElementEnd);
        XML_SetStartDoctypeDeclHandler(parser_, OnDoctype);
        XML_SetUnknownEncodingHandler(parser_, FindXmlEncoding, nullptr);
    }

    // Ends at the end of the file and at the first fault.
    void ReadChunk() {
        chunk_.resize(std::min(std::clamp(Unfinished(), kChunk, kLargestChunk), kLargestFile - read_));
        std::size_t filled = 0;
        std::size_t got = 0;
        while (filled < chunk_.size() && (got = source_->Read(chunk_.data() + filled, chunk_.size() - filled)) > 0) filled += got;
        if (!parser_) Begin({chunk_.data(), filled});
        read_ += filled;
        const std::u16string failure = FromUtf8(source_->Failure());
        const bool last = (filled < chunk_.size() && failure.empty()) || read_ == kLargestFile;
        const bool sound = parser_ && XML_Parse(parser_, chunk_.data(), static_cast<int>(filled), last) == XML_STATUS_OK;
        ended_ = !sound || last || !failure.empty();
        if (parser_ && ended_ && !(sound && last)) NoteFault(sound ? failure : std::u16string());
    }

    void NoteFault(const std::u16string& failure) {
        const std::size_t line = XML_GetCurrentLineNumber(parser_), column = XML_GetCurrentColumnNumber(parser_) + 1;
        if (!failure.empty()) return static_cast<void>(fault_ = {line, column, failure, Flaw::kReadFailed});
        const XML_Error error = XML_GetErrorCode(parser_);
        fault_ = {line, column,
                  error == XML_ERROR_ABORTED ? u"a document type declaration, or too deep"
                  : read_ == kLargestFile    ? std::u16string(kTooLarge)
                                             : FromUtf8(XML_ErrorString(error))};
    }

    // The parser keeps an unfinished piece and looks at it from its start again with each chunk. As much again is read, so that it
    // does so a few times only, but within bounds: the elements of a chunk are kept too.
    std::size_t Unfinished() const {
        const auto done = static_cast<std::size_t>(std::max<XML_Index>(0, parser_ ? XML_GetCurrentByteIndex(parser_) : 0));
        return read_ - std::min(done, read_);
    }

    static void XMLCALL OnElement(void* reader, const XML_Char* name, const XML_Char** attributes) {
        auto* const self = static_cast<ExpatReader*>(reader);
        if (++self->depth_ > kDeepestElement) return static_cast<void>(XML_StopParser(self->parser_, XML_FALSE));
        XmlElement& element = self->elements_.emplace_back();
        element.line = XML_GetCurrentLineNumber(self->parser_);
        element.name = LocalName(name);
        for (; *attributes; attributes += 2) element.attributes.push_back({LocalName(attributes[0]), FromUtf8(attributes[1])});
    }

    static void XMLCALL OnElementEnd(void* reader, const XML_Char*) { --static_cast<ExpatReader*>(reader)->depth_; }

    static void XMLCALL OnDoctype(void* reader, const XML_Char*, const XML_Char*, const XML_Char*, int) {
        XML_StopParser(static_cast<ExpatReader*>(reader)->parser_, XML_FALSE);
    }

    const std::unique_ptr<ByteSource> source_;
    XML_Parser parser_ = nullptr;
    std::deque<XmlElement> elements_;
    std::optional<XmlFault> fault_;
    std::vector<char> chunk_;
    std::size_t read_ = 0;  // bytes
    int depth_ = 0;
    bool ended_ = false;
};

class XmlFiles final : public Xml {
public:
    std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) override {
        const auto files = MakeFiles({});
        auto source = files->Open(path);
        return source ? ReadXml(std::move(source)) : UnopenedXml(*files, path);
    }

    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view path) override { return OpenXmlWriter(path); }
};

}  // namespace

std::unique_ptr<XmlReader> ReadXml(std::unique_ptr<ByteSource> document) {
    return std::make_unique<ExpatReader>(std::move(document));
}

std::unique_ptr<Xml> MakeXml() { return std::make_unique<XmlFiles>(); }

}  // namespace twr
