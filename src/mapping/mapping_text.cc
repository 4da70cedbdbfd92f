// SPDX-License-Identifier: MIT
#include "mapping/mapping_text.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/numbers.h"
#include "base/wide_text.h"

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

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kWhiteSpace = " \t\r\n";
constexpr std::string_view kStep = "  ";  // of indentation

// A name of Deckman's list as an attribute's value. Its bytes beyond ASCII stand as references, which fit any encoding.
std::string Escaped(std::u16string_view name) {
    std::string escaped;
    for (const char16_t c : name) {
        if (c > 0x7E || c == u'&' || c == u'<' || c == u'>' || c == u'"') {
            escaped += "&#" + std::to_string(static_cast<unsigned>(c)) + ';';
        } else {
            escaped += static_cast<char>(c);
        }
    }
    return escaped;
}

bool IsFoundByName(const MappingVar& row, const std::vector<DeckmanVariable>& variables) {
    if (ScanInt(row.dfwName) || std::ranges::any_of(row.dfwName, [](char16_t c) { return c < u' '; })) return false;
    const auto first = std::ranges::find(variables, row.dfwName, &DeckmanVariable::dfwName);
    return first != variables.end() && first->dfwId == row.dfwId;
}

std::string BoatText(std::int32_t boat) { return boat == 0 ? "" : " boat=\"" + std::to_string(boat) + '"'; }

std::size_t LineBegin(std::string_view text, std::size_t at) { return at == 0 ? 0 : text.rfind('\n', at - 1) + 1; }

bool IsOnly(std::string_view text, std::string_view characters) { return text.find_first_not_of(characters) == text.npos; }

// What stands before a place on its line, if that is only blanks.
std::optional<std::string_view> IndentOf(std::string_view text, std::size_t at) {
    const std::size_t begin = LineBegin(text, at);
    const std::string_view before = text.substr(begin, at - begin);
    return IsOnly(before, kBlanks) ? std::optional(before) : std::nullopt;
}

std::string LineEndOf(std::string_view text) {
    const std::size_t first = text.find('\n');
    return first != text.npos && first > 0 && text[first - 1] == '\r' ? "\r\n" : "\n";
}

// Behind the blanks and comments that follow on the same line; `at` if anything else follows there.
std::size_t BehindComments(std::string_view text, std::size_t at) {
    std::size_t place = at;
    for (;;) {
        place = std::min(text.find_first_not_of(kBlanks, place), text.size());
        const std::string_view rest = text.substr(place);
        if (rest.empty() || rest.front() == '\n' || rest.front() == '\r') return place;
        const std::size_t close = rest.starts_with("<!--") ? rest.find("-->", 4) : rest.npos;
        if (close == rest.npos || rest.find('\n') < close) return at;
        place += close + 3;
    }
}

std::string Spliced(std::string_view text, std::size_t begin, std::size_t end, const std::string& with) {
    return std::string(text.substr(0, begin)) + with + std::string(text.substr(end));
}

std::string AddedBehind(std::string_view text, const ElementSpan& last, std::string_view added) {
    const auto indent = IndentOf(text, last.begin);
    if (!indent) return Spliced(text, last.end, last.end, std::string(added));
    const std::size_t place = BehindComments(text, last.end);
    return Spliced(text, place, place, LineEndOf(text) + std::string(*indent) + std::string(added));
}

// The indentation of what is in the root.
std::string InnerIndent(std::string_view text, const std::vector<ElementSpan>& elements, std::string_view rootIndent) {
    const auto first = elements.size() > 1 ? IndentOf(text, elements[1].begin) : std::nullopt;
    return first ? std::string(*first) : std::string(rootIndent).append(kStep);
}

std::string AddedInRoot(std::string_view text, const std::vector<ElementSpan>& elements, std::string_view added) {
    const ElementSpan& root = elements.front();
    const std::string rootIndent(IndentOf(text, root.begin).value_or(""));
    const std::string lineEnd = LineEndOf(text);
    const std::string line = InnerIndent(text, elements, rootIndent) + std::string(added) + lineEnd;
    if (root.endTag == root.tagEnd && text[root.tagEnd - 2] == '/') {
        const std::size_t slash = text.find_last_not_of(kWhiteSpace, root.tagEnd - 3) + 1;
        return Spliced(text, slash, root.tagEnd, ">" + lineEnd + line + rootIndent + "</" + std::string(root.name) + ">");
    }
    const auto indent = IndentOf(text, root.endTag);
    if (!indent) return Spliced(text, root.endTag, root.endTag, lineEnd + line + rootIndent);
    const std::size_t place = root.endTag - indent->size();
    return Spliced(text, place, place, line);
}

// With the line around it, if nothing else is on that.
std::string Without(std::string_view text, const ElementSpan& element) {
    const auto indent = IndentOf(text, element.begin);
    const std::size_t behind = text.find_first_not_of(kBlanks, element.end);
    const std::string_view rest = text.substr(std::min(behind, text.size()));
    const std::size_t lineEnd = rest.starts_with("\n") ? 1 : rest.starts_with("\r\n") ? 2 : 0;
    if (!indent || lineEnd == 0) return Spliced(text, element.begin, element.end, "");
    return Spliced(text, element.begin - indent->size(), behind + lineEnd, "");
}

}  // namespace

std::optional<std::vector<ElementSpan>> FindElements(std::string_view text) {
    SpanFinder finder(text);
    if (!finder.Find()) return std::nullopt;
    return std::move(finder.found);
}

std::string_view LocalName(const ElementSpan& element) { return element.name.substr(element.name.rfind(':') + 1); }

std::string VarText(const MappingVar& row, const std::vector<DeckmanVariable>& variables) {
    const std::string variable = IsFoundByName(row, variables) ? Escaped(row.dfwName) : std::to_string(row.dfwId);
    return "<var twr=\"" + std::to_string(row.channel) + "\" dfw=\"" + variable + '"' + BoatText(row.boat) + " />";
}

std::string RemoteText(const MappingRemote& row) {
    return "<remote remote=\"" + std::to_string(row.remote) + "\" twr=\"" + std::to_string(row.channel) + "\" damp=\"" +
           (row.damp ? "true" : "false") + '"' + BoatText(row.boat) + " />";
}

std::string WithElement(std::string_view text, const std::vector<ElementSpan>& elements, std::string_view kind,
                        std::string_view added) {
    for (std::size_t i = elements.size(); i-- > 1;) {
        if (EqualsIgnoringCase(FromBytes(LocalName(elements[i])), FromBytes(kind))) return AddedBehind(text, elements[i], added);
    }
    return AddedInRoot(text, elements, added);
}

bool IsRemovable(std::string_view text, const std::vector<ElementSpan>& elements, std::size_t index) {
    const ElementSpan& element = elements[index];
    return index > 0 && IsOnly(text.substr(element.tagEnd, element.endTag - element.tagEnd), kWhiteSpace);
}

std::string WithoutElements(std::string_view text, const std::vector<ElementSpan>& elements,
                            const std::vector<std::size_t>& indices) {
    std::string left(text);
    for (std::size_t i = indices.size(); i-- > 0;) left = Without(left, elements[indices[i]]);  // from the back: places stay valid
    return left;
}

}  // namespace twr
