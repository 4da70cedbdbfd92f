// SPDX-License-Identifier: MIT
// A dialog as a window of the desktop, laid out by a template among the executable's resources.
#pragma once

#include <memory>
#include <vector>

#include "platform/dialog.h"
#include "platform/windows/dialog/folder_field.h"
#include "platform/windows/win32.h"

namespace twr {

class DialogHost : public DialogWindow {
public:
    DialogHost(const DialogTemplate& layout, Dialog& dialog) : layout_(layout), dialog_(dialog) {}
    ~DialogHost() override { Destroy(); }
    DialogHost(const DialogHost&) = delete;
    DialogHost& operator=(const DialogHost&) = delete;

    void Open();     // makes the window, hidden, and raises OnInit
    void Run();      // shows the window until it has ended
    void Destroy();  // raises OnDestroy; the window is gone afterwards

    HWND Window() const { return window_; }
    bool Ended() const { return ended_; }

    bool Checked(int control) const override;
    void SetChecked(int control, bool checked) override;
    std::u16string Text(int control) const override;
    void SetText(int control, std::u16string_view text) override;
    void AddMenuItem(int command, std::u16string_view text) override;
    std::uintptr_t StartTimer(std::uintptr_t id, unsigned milliseconds) override;
    void StopTimer(std::uintptr_t id) override;
    void PostClose() override;
    void End(DialogResult result) override;

private:
    static INT_PTR CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR Handle(UINT message, WPARAM wParam);
    void Init();
    void OnCommand(int control, int code);
    bool OnSystemCommand(int command);
    void PaintIcon();
    void CloseBoxes();

    const DialogTemplate& layout_;
    Dialog& dialog_;
    HWND window_ = nullptr;
    HICON icon_ = nullptr;
    std::vector<std::unique_ptr<FolderField>> folderFields_;
    std::vector<int> menuCommands_;
    bool ended_ = false;
};

}  // namespace twr
