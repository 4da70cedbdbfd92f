#include "bridge/application.h"

#include "bridge/controls.h"
#include "bridge/main_dialog.h"

namespace twr {

bool CHalyrig32App::InitInstance() {
    if (!system_.GetInstance().Claim(u"Halyrig")) {
        system_.GetInstance().RaiseOther(kProgramName);
        return false;
    }
    system_.Core().desktop.ExpectDialog();
    CHalyrig32Dlg dialog(system_);
    system_.Core().desktop.RunDialog(kMainTemplate, dialog);
    return false;
}

}  // namespace twr
