// SPDX-License-Identifier: MIT
// The mapping file as it is read before it is changed, and how a changed one takes its place.
#pragma once
#include <string>
#include <vector>

#include "halyrigctl/setup/circumstances.h"
#include "mapping/mapping_file.h"
#include "mapping/mapping_text.h"

namespace twr {

struct MapFile {
    std::string text;                  // the whole file; empty if there is none
    std::vector<ElementSpan> spans;    // into `text`
    std::vector<XmlElement> elements;  // one for each span
    Mapping rows;                      // as the bridge reads them
    std::string fault;                 // why it can't be changed by command, and what to do; empty if it can

    MapFile() = default;
    MapFile(const MapFile&) = delete;
};

// Fills `file`. Only sound XML in UTF-8, or in ASCII alone, whose every element is where its text says, can be changed.
void ReadMapFile(const CoreServices& services, Circumstances& now, MapFile& file);

// The text of a new file with the only row that `only` has; empty if its folder can't be written.
std::string NewMapText(const CoreServices& services, Circumstances& now, const Mapping& only);

// Puts `text` in the place of the mapping file, whose former version is kept as ".bak"; at every moment one of both is whole. The
// bridge must read `intended` from it, and the file must still be as it was read, or nothing is changed. What failed; empty if it
// is done.
std::string ReplaceMapFile(const CoreServices& services, Circumstances& now, const MapFile& former, const std::string& text,
                           const Mapping& intended);

}  // namespace twr
