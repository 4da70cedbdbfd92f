// Gives the terminal back as it was when the program ends without leaving its screen: by a fault, an abort or an exit.
#pragma once
#include <string_view>

namespace twr {

// Notes how the terminal is set now, to be called before it is changed.
void NoteTerminalModes();

// From now on such an end also writes `sequence`, which takes the terminal out of the screen. Up to 255 bytes.
void ArmTerminalRestore(std::string_view sequence);
void DisarmTerminalRestore();

}  // namespace twr
