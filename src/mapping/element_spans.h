// Where the elements of an XML document stand in its text, so that one can be changed and all else stays byte for byte.
#pragma once
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace twr {

struct ElementSpan {
    std::string_view name;  // as written, with its prefix
    std::size_t begin;      // of its start tag; places are in bytes from the start of the text
    std::size_t tagEnd;     // behind its start tag
    std::size_t endTag;     // of its end tag; tagEnd if it is written as <a/>
    std::size_t end;        // behind the whole element
};

// The elements in the order of their start tags, the root first. The text is in UTF-8, or in ASCII alone. nullopt if it has a
// document type declaration or its tags do not close each other; it may have other faults, which a reader finds.
std::optional<std::vector<ElementSpan>> FindElements(std::string_view text);

// The name without its prefix.
std::string_view LocalName(const ElementSpan& element);

}  // namespace twr
