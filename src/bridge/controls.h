// SPDX-License-Identifier: MIT
// The dialogs of the bridge: their controls, captions and places, which must match the resources of the Windows program, and the
// text of the About box.
#pragma once
#include <string>

#include "deckman/deckman_library.h"
#include "platform/desktop.h"
#include "platform/dialog.h"

namespace twr {

inline constexpr std::u16string_view kProgramName = u"Halyrig32";

inline constexpr int kCloseButton = 1;
inline constexpr int kFolderField = 1000;
inline constexpr int kDepthCheck = 1001;
inline constexpr int kTrueCheck = 1002;
inline constexpr int kTimerCheck = 1003;
inline constexpr int kNamesCheck = 1004;
inline constexpr int kFolderLabel = 1005;
inline constexpr int kImportButton = 1006;

inline constexpr ControlTemplate kMainControls[] = {
    {kCloseButton, ControlKind::kDefaultButton, u"Close", {216, 162, 48, 18}},
    {kDepthCheck, ControlKind::kCheckBox, u"Depth in feet from Dfw", {18, 18, 89, 10}},
    {kNamesCheck, ControlKind::kCheckBox, u"Send names to remote channels", {18, 42, 118, 10}},
    {kTimerCheck, ControlKind::kCheckBox, u"Use Dfw 'TIMER' channel to set Twr timer", {18, 66, 147, 10}},
    {kTrueCheck, ControlKind::kCheckBox, u"Heading, twd and cog in degrees true", {18, 90, 137, 10}},
    {kFolderLabel, ControlKind::kLabel, u"Dfw folder:", {18, 114, 42, 8}},
    {kFolderField, ControlKind::kFolderField, u"", {18, 126, 246, 14}, kDeckmanLibrary},
    {kImportButton, ControlKind::kPushButton, u"Import", {18, 162, 48, 18}},
};

inline constexpr DialogTemplate kMainTemplate = {102, kProgramName, 281, 195, kMainControls};

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
