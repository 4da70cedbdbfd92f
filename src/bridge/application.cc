// SPDX-License-Identifier: MIT
#include "bridge/application.h"

#include "base/wide_text.h"
#include "bridge/controls.h"
#include "bridge/main_dialog.h"

namespace twr {
namespace {

// The request stays in the record for as long as a program holds it, and the dialog ends on its first tick.
constexpr std::u16string_view kLate =
    u"The suite has been asked to close (by halyrigctl quit or one of its programs), and a program still holds its record. Wait "
    u"until "
    u"all of them have ended, or end them, then start Halyrig again.";

}  // namespace

bool CHalyrig32App::InitInstance() {
    Desktop& desktop = system_.Core().desktop;
    if (!system_.GetInstance().Claim(kBridgeName)) {
        system_.GetInstance().RaiseOther(kProgramName);
        if (RecordIsLost(system_)) desktop.Remark(FromUtf8(std::string(kRecordLost) + "; " + kRecordLostToDo), kProgramName);
        return false;
    }
    desktop.ExpectDialog();
    CHalyrig32Dlg dialog(system_);
    const bool lateForTheSuite = dialog.QuitRequested();
    desktop.RunDialog(kMainTemplate, dialog);
    if (lateForTheSuite && dialog.QuitRequested()) desktop.Remark(kLate, kProgramName);
    return false;
}

}  // namespace twr
