// SPDX-License-Identifier: MIT
#include "platform/windows/dialog/folder_browser.h"

#include "platform/windows/unique_handle.h"

namespace twr {
namespace {

class ComApartment {
public:
    ComApartment() : status_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
    ~ComApartment() {
        if (SUCCEEDED(status_)) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    HRESULT status_;
};

inline void FreeTaskMemory(wchar_t* text) { CoTaskMemFree(text); }

void StandOn(IFileDialog& box, const std::wstring& folder) {
    ComPtr<IShellItem> item;
    if (SUCCEEDED(SHCreateItemFromParsingName(folder.c_str(), nullptr, __uuidof(IShellItem), item.ReceiveVoid()))) {
        box.SetFolder(item.get());
    }
}

std::optional<std::wstring> ResultOf(IFileDialog& box) {
    ComPtr<IShellItem> item;
    Unique<FreeTaskMemory, wchar_t*> path;
    if (FAILED(box.GetResult(item.Receive())) || FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, path.Receive())))
        return std::nullopt;
    return path.get();
}

}  // namespace

std::optional<std::wstring> FolderBrowser::Pick(HWND owner, const std::wstring& start) {
    const ComApartment apartment;
    ComPtr<IFileDialog> box;
    if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IFileDialog), box.ReceiveVoid())) ||
        FAILED(box->SetOptions(FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR))) {
        return std::nullopt;
    }
    StandOn(*box.get(), start);
    open_ = box.get();
    const HRESULT shown = box->Show(owner);
    open_ = nullptr;
    return shown == S_OK ? ResultOf(*box.get()) : std::nullopt;
}

void FolderBrowser::Close() {
    if (open_) open_->Close(HRESULT_FROM_WIN32(ERROR_CANCELLED));
}

}  // namespace twr
