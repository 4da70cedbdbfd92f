// SPDX-License-Identifier: MIT
#include "deckman/deckman_library.h"

#include "platform/files.h"

namespace twr {
namespace {

template <class Function>
void Bind(Function& function, const Library& library, const char* name) {
    function = reinterpret_cast<Function>(library.Find(name));
}

}  // namespace

std::u16string DeckmanLibrary::PathIn(std::u16string_view folder) {
    return JoinPath(folder, std::u16string(kDeckmanLibrary).append(kLibrarySuffix));
}

void DeckmanLibrary::Load(std::u16string_view folder) {
    Unload();
    library_ = libraries_.Load(PathIn(folder));
    if (!library_) return;
    Bind(fnSetISName, *library_, kUsrSetName);
    Bind(fnSetISData, *library_, kUsrSetData);
    Bind(fnRead, *library_, kUsrRead);
    Bind(fnGetPosition, *library_, kUsrGetPosition);
}

void DeckmanLibrary::Unload() {
    fnSetISName = fnSetISData = nullptr;
    fnRead = nullptr;
    fnGetPosition = nullptr;
    library_.reset();
}

}  // namespace twr
