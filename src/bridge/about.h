// The About box: the program's name and version.
#pragma once
#include <string>

#include "platform/desktop.h"

namespace twr {

inline constexpr int kAboutCommand = 16;
inline constexpr std::u16string_view kAboutItem = u"&About Halyrig32...";

inline constexpr ControlTemplate kAboutControls[] = {
    {1, ControlKind::kDefaultButton, u"OK", {138, 66, 48, 18}},
    {-1, ControlKind::kLabel, u"Halyrig32", {12, 12, 174, 42}},
};
inline constexpr DialogTemplate kAboutTemplate = {100, u"About Halyrig32", 197, 93, kAboutControls};

// Three numbers separated by points, and the fourth if it is not 0; empty if the program has no version.
std::u16string GetVersionText(const Executable& executable);

// The text of the box.
std::u16string AboutText(const Executable& executable);

}  // namespace twr
