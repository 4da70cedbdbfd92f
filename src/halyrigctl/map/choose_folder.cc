// SPDX-License-Identifier: MIT
// choose: Deckman's folder, as the dialog would keep it.
#include <filesystem>

#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/setup/circumstances.h"

namespace twr {

Status ChooseFolder(System& system, const std::string& folder) {
    Console& console = system.GetConsole();
    const auto refuse = [&](const std::string& why) {
        Complain(console, why + "; nothing is changed");
        return kFailed;
    };
    // A running bridge has its own choice, and keeps that when it ends.
    if (LookForBridge(system).state == NameLook::kTaken)
        return refuse(HALYRIG_PROGRAM " is running: choose the folder in its dialog, or end it first, by 'halyrigctl quit'");
    std::filesystem::path path = std::filesystem::absolute(std::filesystem::path(FromUtf8(folder))).lexically_normal();
    if (!path.has_filename()) path = path.parent_path();  // as completed by a shell, with a separator behind
    const std::u16string whole = path.u16string();
    Guest guest(system, WithoutRecord::kGoOn);
    Circumstances now(system, guest.Core(), whole);
    guest.Leave();
    if (const Fault& fault = now.Library().fault) return refuse(fault.Line());
    if (now.Variables().rows.empty()) return refuse(now.NoVariables().Line());
    if (!WriteFolder(system.Core().registry, whole))
        return refuse("the settings can't be saved; see whether the disk is full, and this user may write there");
    return Print(console, "Deckman's folder is " + Harmless(whole) + ", with " + std::to_string(now.Variables().rows.size()) +
                              " variables, from the next start on.\n'halyrigctl map suggest --apply' maps them.\n");
}

}  // namespace twr
