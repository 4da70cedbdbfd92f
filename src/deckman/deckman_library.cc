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
    return JoinPath(folder, std::u16string(u"ShDfW2").append(kLibrarySuffix));
}

void DeckmanLibrary::Load(std::u16string_view folder) {
    Unload();
    library_ = libraries_.Load(PathIn(folder));
    if (!library_) return;
    Bind(fnSetISName, *library_, "Usr_SetISName");
    Bind(fnSetISData, *library_, "Usr_SetISData");
    Bind(fnRead, *library_, "Usr_Read");
    Bind(fnGetPosition, *library_, "Usr_GetPosition");
}

void DeckmanLibrary::Unload() {
    fnSetISName = fnSetISData = nullptr;
    fnRead = nullptr;
    fnGetPosition = nullptr;
    library_.reset();
}

}  // namespace twr
