// SPDX-License-Identifier: MIT
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"
#include "platform/windows/xml/xml.h"

namespace twr {
namespace {

class LiteWriter : public XmlWriter {
public:
    LiteWriter(ComPtr<IStream> stream, ComPtr<IXmlWriter> writer) : stream_(std::move(stream)), writer_(std::move(writer)) {}

    bool StartElement(std::u16string_view name) override {
        return SUCCEEDED(writer_->WriteStartElement(nullptr, ToWide(name).c_str(), nullptr));
    }
    bool Attribute(std::u16string_view name, std::u16string_view value) override {
        return SUCCEEDED(writer_->WriteAttributeString(nullptr, ToWide(name).c_str(), nullptr, ToWide(value).c_str()));
    }
    bool Comment(std::u16string_view text) override { return SUCCEEDED(writer_->WriteComment(ToWide(text).c_str())); }
    bool EndElement() override { return SUCCEEDED(writer_->WriteEndElement()); }
    bool Finish() override {
        return SUCCEEDED(writer_->WriteEndDocument()) && SUCCEEDED(writer_->Flush()) && SUCCEEDED(stream_->Commit(STGC_DEFAULT));
    }

private:
    ComPtr<IStream> stream_;
    ComPtr<IXmlWriter> writer_;
};

bool WriteMark(IStream& stream) {
    constexpr BYTE kMark[] = {0xEF, 0xBB, 0xBF};
    ULONG written = 0;
    return SUCCEEDED(stream.Write(kMark, sizeof kMark, &written)) && written == sizeof kMark;
}

}  // namespace

std::unique_ptr<XmlWriter> OpenXmlWriter(std::u16string_view path) {
    ComPtr<IStream> stream;
    ComPtr<IXmlWriter> writer;
    // Not every XmlLite puts a mark before UTF-8, so its own is off.
    if (FAILED(SHCreateStreamOnFileW(ToWide(path).c_str(), STGM_CREATE | STGM_WRITE, stream.Receive())) ||
        !WriteMark(*stream.get()) || FAILED(CreateXmlWriter(__uuidof(IXmlWriter), writer.ReceiveVoid(), nullptr)) ||
        FAILED(writer->SetOutput(stream.get())) || FAILED(writer->SetProperty(XmlWriterProperty_Indent, TRUE)) ||
        FAILED(writer->SetProperty(XmlWriterProperty_ByteOrderMark, FALSE)) ||
        FAILED(writer->WriteStartDocument(XmlStandalone_Omit))) {
        return nullptr;
    }
    return std::make_unique<LiteWriter>(std::move(stream), std::move(writer));
}

}  // namespace twr
