// SPDX-License-Identifier: MIT
// Access to Deckman: its library ShDfW2 and the four functions taken from it.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/library.h"

namespace twr {

inline constexpr std::u16string_view kDeckmanLibrary = u"ShDfW2";  // its file, without the system's suffix
inline constexpr const char *kUsrRead = "Usr_Read", *kUsrGetPosition = "Usr_GetPosition", *kUsrSetData = "Usr_SetISData",
                            *kUsrSetName = "Usr_SetISName";

// Writes the variable's current value.
using UsrRead = void(TWR_EXPORT_CALL*)(std::int32_t variable, float* value);
// Writes the position in degrees, north and east positive.
using UsrGetPosition = void(TWR_EXPORT_CALL*)(float* latitude, float* longitude);
// Shows a text of at most 15 characters and a zero on a remote, counted from 1. The word is not used.
using UsrSetText = void(TWR_EXPORT_CALL*)(std::uint32_t* word, std::int32_t remote, const char* text);

class DeckmanLibrary {
public:
    static std::u16string PathIn(std::u16string_view folder);

    explicit DeckmanLibrary(Libraries& libraries) : libraries_(libraries) {}

    // Frees the library in use and loads the one in `folder`. Functions that it lacks are null; all are if it can't be loaded.
    void Load(std::u16string_view folder);
    void Unload();

    explicit operator bool() const { return library_ != nullptr; }

    UsrSetText fnSetISName = nullptr;
    UsrSetText fnSetISData = nullptr;
    UsrRead fnRead = nullptr;
    UsrGetPosition fnGetPosition = nullptr;

private:
    Libraries& libraries_;
    std::unique_ptr<Library> library_;
};

}  // namespace twr
