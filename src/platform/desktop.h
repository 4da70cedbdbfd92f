// SPDX-License-Identifier: MIT
// The user's desktop: message boxes, the running of a dialog, and the one instance of a program.
#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dialog.h"

namespace twr {

enum class BoxButtons { kOk, kYesNo };
enum class BoxIcon { kNone, kQuestion, kStop };
enum class BoxAnswer { kNone, kOk, kYes, kNo };

class Desktop {
public:
    virtual ~Desktop() = default;

    // Shows a box and waits for its answer, while the timer of an open dialog goes on. kNone if no user can answer.
    virtual BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon) = 0;

    // Writes a message that matters at a command line but is not worth a window to standard error, while no dialog is open. Does
    // nothing on a desktop with windows.
    virtual void Remark(std::u16string_view /*text*/, std::u16string_view /*caption*/) {}

    // Announces that a dialog is about to run. From now on a signal that asks the program to end waits for the dialog, and closes
    // it.
    virtual void ExpectDialog() {}

    // Shows the dialog until it has ended. After PostQuit it opens and ends at once.
    virtual void RunDialog(const DialogTemplate& layout, Dialog& dialog) = 0;

    // Shows a text with an OK button on top of the open dialog, laid out as `layout`, until the user closes it.
    virtual void ShowAbout(const DialogTemplate& layout, std::u16string_view text) = 0;

    // Ends the loop of the dialog that runs or is to run next, without asking.
    virtual void PostQuit() = 0;
};

// What a look at a program's name shows.
struct NameLook {
    enum State { kFree, kTaken, kUnknown };
    State state = kFree;
    std::string why = {};  // it is unknown, and what to do: UTF-8
};

class Instance {
public:
    virtual ~Instance() = default;

    // Takes the name for the life of the process. False if another process has it; true also if that is unknown.
    virtual bool Claim(std::u16string_view name) = 0;

    // Whether any process has it. Takes and changes nothing.
    virtual NameLook Look(std::u16string_view name) const = 0;

    // Brings forward the window with this caption that another process shows.
    virtual void RaiseOther(std::u16string_view caption) = 0;
};

// The running program's file.
class Executable {
public:
    virtual ~Executable() = default;

    // The four numbers of its version; nullopt if it has none.
    virtual std::optional<std::array<std::uint16_t, 4>> FileVersion() const = 0;

    // The folders where a stand-in for Deckman's library may be that came with it.
    virtual std::vector<std::u16string> StandInFolders() const { return {}; }
};

}  // namespace twr
