// The desktop of Windows: message boxes, and dialogs from the executable's resources.
#pragma once
#include "platform/desktop.h"

namespace twr {

class DialogHost;

class WindowsDesktop : public Desktop {
public:
    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon) override;
    void RunDialog(const DialogTemplate& layout, Dialog& dialog) override;
    void ShowAbout(const DialogTemplate& layout, std::u16string_view text) override;
    void PostQuit() override;

private:
    DialogHost* open_ = nullptr;
    bool quit_ = false;
};

}  // namespace twr
