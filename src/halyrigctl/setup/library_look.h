// SPDX-License-Identifier: MIT
// Whether the library in a Dfw folder can be used.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "halyrigctl/setup/reasons.h"
#include "platform/files.h"
#include "platform/library.h"

namespace twr {

struct LibraryLook {
    Fault fault = {};                       // why the bridge can't load it; none if it can
    std::vector<std::string> missing = {};  // the functions for the bridge that it lacks, while there is no fault

    bool Lacks(std::string_view name) const;
};

// Reads the library's header first, and loads it only if that is right: the system would show a box for a wrong one.
LibraryLook LookAtLibrary(Files& files, Libraries& libraries, std::u16string_view dfwFolder);

}  // namespace twr
