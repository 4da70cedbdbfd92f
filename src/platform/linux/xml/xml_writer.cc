// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/xml/xml.h"

namespace twr {
namespace {

constexpr std::string_view kStart = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
constexpr std::size_t kEnough = 16384;  // bytes gathered before they go to the file

bool IsName(std::u16string_view name) {
    return !name.empty() && name.find_first_of(u" \t\r\n<>&\"'=/") == name.npos && ToUtf8(name).find('\0') == std::string::npos;
}

// XML has no way to write the other control characters, nor half a surrogate pair.
bool IsText(std::u16string_view text) {
    for (const char16_t c : text) {
        if ((c < u' ' && c != u'\t' && c != u'\r' && c != u'\n') || c >= 0xFFFE) return false;
    }
    return FromUtf8(ToUtf8(text)) == text;
}

std::string Escaped(std::u16string_view text) {
    std::string escaped;
    for (const char c : ToUtf8(text)) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\t':
                escaped += "&#x9;";
                break;
            case '\n':
                escaped += "&#xA;";
                break;
            case '\r':
                escaped += "&#xD;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

class XmlFileWriter final : public XmlWriter {
public:
    explicit XmlFileWriter(Descriptor file) : file_(std::move(file)), pending_(kStart) {}
    ~XmlFileWriter() override { Flush(); }

    bool StartElement(std::u16string_view name) override {
        if (!IsName(name) || (open_.empty() && rootWritten_)) return false;
        rootWritten_ = true;
        BeginLine();
        open_.push_back(ToUtf8(name));
        pending_ += '<' + open_.back();
        inTag_ = true;
        return FlushIfEnough();
    }

    bool Attribute(std::u16string_view name, std::u16string_view value) override {
        if (!inTag_ || !IsName(name) || !IsText(value)) return false;
        pending_ += ' ' + ToUtf8(name) + "=\"" + Escaped(value) + '"';
        return FlushIfEnough();
    }

    bool Comment(std::u16string_view text) override {
        if (!IsText(text) || text.find(u"--") != text.npos || text.ends_with(u'-')) return false;
        BeginLine();
        pending_ += "<!--" + ToUtf8(text) + "-->";
        return FlushIfEnough();
    }

    bool EndElement() override {
        if (open_.empty()) return false;
        const std::string name = std::move(open_.back());
        open_.pop_back();
        if (inTag_) {
            inTag_ = false;
            pending_ += " />";
        } else {
            BeginLine();
            pending_ += "</" + name + '>';
        }
        return FlushIfEnough();
    }

    bool Finish() override {
        while (!open_.empty()) EndElement();
        return Flush() && rootWritten_ && file_.Close();
    }

private:
    void BeginLine() {
        if (inTag_) pending_ += '>';
        inTag_ = false;
        pending_ += "\r\n";
        pending_.append(2 * open_.size(), ' ');
    }

    bool FlushIfEnough() { return pending_.size() < kEnough ? !failed_ : Flush(); }

    // Once a part is lost, what follows would not fit what is there.
    bool Flush() {
        failed_ = failed_ || !WriteAll(file_, pending_);
        pending_.clear();
        return !failed_;
    }

    Descriptor file_;
    std::string pending_;
    std::vector<std::string> open_;
    bool inTag_ = false;
    bool rootWritten_ = false;
    bool failed_ = false;
};

}  // namespace

std::unique_ptr<XmlWriter> OpenXmlWriter(std::u16string_view path) {
    Descriptor file = OpenPlainFile(NativePath(path), O_WRONLY | O_CREAT);
    if (!file || ftruncate(file.Get(), 0) != 0) return nullptr;
    return std::make_unique<XmlFileWriter>(std::move(file));
}

}  // namespace twr
