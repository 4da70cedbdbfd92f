#include "mapping/element_spans.h"

#include <utility>

namespace twr {
namespace {

class SpanFinder {
public:
    explicit SpanFinder(std::string_view text) : text_(text) {}

    bool Find() {
        while ((at_ = text_.find('<', at_)) != text_.npos) {
            if (!Step()) return false;
        }
        return open_.empty();
    }

    std::vector<ElementSpan> found;

private:
    bool Step() {
        if (Begins("<!--")) return SkipTo("-->", 4);
        if (Begins("<![CDATA[")) return SkipTo("]]>", 9);
        if (Begins("<?")) return SkipTo("?>", 2);
        if (Begins("<!")) return false;
        return Begins("</") ? CloseElement() : OpenElement();
    }

    bool Begins(std::string_view mark) const { return text_.substr(at_).starts_with(mark); }

    // Skips to behind `end`, which comes no earlier than `offset` bytes from here.
    bool SkipTo(std::string_view end, std::size_t offset) {
        const std::size_t place = text_.find(end, at_ + offset);
        at_ = place + end.size();
        return place != text_.npos;
    }

    bool OpenElement() {
        const std::size_t close = TagClose();
        if (close == text_.npos) return false;
        const bool closed = text_[close - 1] == '/';
        const std::size_t nameEnd = text_.find_first_of(" \t\r\n/>", at_);
        found.push_back({text_.substr(at_ + 1, nameEnd - at_ - 1), at_, close + 1, close + 1, close + 1});
        if (!closed) open_.push_back(found.size() - 1);
        at_ = close + 1;
        return true;
    }

    bool CloseElement() {
        if (open_.empty()) return false;
        ElementSpan& element = found[open_.back()];
        open_.pop_back();
        element.endTag = at_;
        if (!SkipTo(">", 2)) return false;
        element.end = at_;
        return true;
    }

    // The '>' of the start tag here; one within quotes is part of a value.
    std::size_t TagClose() const {
        std::size_t place = at_;
        while ((place = text_.find_first_of("\"'>", place)) != text_.npos && text_[place] != '>') {
            place = text_.find(text_[place], place + 1);
            if (place == text_.npos) return place;
            ++place;
        }
        return place;
    }

    const std::string_view text_;
    std::size_t at_ = 0;
    std::vector<std::size_t> open_;
};

}  // namespace

std::optional<std::vector<ElementSpan>> FindElements(std::string_view text) {
    SpanFinder finder(text);
    if (!finder.Find()) return std::nullopt;
    return std::move(finder.found);
}

std::string_view LocalName(const ElementSpan& element) { return element.name.substr(element.name.rfind(':') + 1); }

}  // namespace twr
