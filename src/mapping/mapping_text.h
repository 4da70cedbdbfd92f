// SPDX-License-Identifier: MIT
// Changes of the mapping file's text. All that is not changed stays as it is: comments, unknown elements, order, indentation and
// line ends.
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mapping/mapping_rows.h"

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

// The element as text. The variable goes by its name if Deckman's list finds it by that, since a name outlasts a new numbering;
// else by its number.
std::string VarText(const MappingVar& row, const std::vector<DeckmanVariable>& variables);
std::string RemoteText(const MappingRemote& row);

// With `added`, an element named `kind`, on a line of its own: behind the last element of that name, else at the end of the root.
// `elements` are those of the text; the first is the root.
std::string WithElement(std::string_view text, const std::vector<ElementSpan>& elements, std::string_view kind,
                        std::string_view added);

// Whether it can be taken out alone: it is not the root, and nothing but blanks is in it.
bool IsRemovable(std::string_view text, const std::vector<ElementSpan>& elements, std::size_t index);

// Without those elements, all removable, given by rising index. A line that held nothing else goes too.
std::string WithoutElements(std::string_view text, const std::vector<ElementSpan>& elements,
                            const std::vector<std::size_t>& indices);

}  // namespace twr
