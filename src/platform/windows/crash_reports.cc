// SPDX-License-Identifier: MIT
#include "platform/windows/crash_reports.h"

#include <signal.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <string>

#include "base/wide_text.h"
#include "platform/crash_line.h"
#include "platform/crash_reports.h"
#include "platform/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

constexpr std::size_t kLongestPath = 1024;
constexpr ULONG kStackForTheReport = 16 * 1024;  // bytes, when the rest is exhausted

// Where a library was that has been freed.
struct Unloaded {
    std::uintptr_t begin = 0, size = 0;
    std::array<char, kLongestPath> path{};
};

// For the filter, which takes no memory.
struct {
    volatile bool told = false;
    std::array<wchar_t, kLongestPath> file{}, folder{}, module{};
    std::array<char, kLongestPath> calling{};
    std::array<char, 3 * kLongestPath> modulePath{};
    volatile bool calls = false;
    LPTOP_LEVEL_EXCEPTION_FILTER former = nullptr;
    std::array<Unloaded, 8> unloaded{};  // the last ones
    std::size_t unloadings = 0;
} crashes;

template <class Char, std::size_t kSize>
void Set(std::array<Char, kSize>& text, const std::basic_string<Char>& from) {
    text[from.copy(text.data(), kSize - 1)] = Char{};
}

constexpr struct {
    DWORD code;
    std::string_view name;
} kNames[] = {{EXCEPTION_ACCESS_VIOLATION, "an access violation"},      {EXCEPTION_IN_PAGE_ERROR, "a page that can't be read"},
              {EXCEPTION_STACK_OVERFLOW, "an exhausted stack"},         {EXCEPTION_ILLEGAL_INSTRUCTION, "an illegal instruction"},
              {EXCEPTION_PRIV_INSTRUCTION, "a privileged instruction"}, {EXCEPTION_INT_DIVIDE_BY_ZERO, "a division by zero"}};

HMODULE ModuleAt(const void* address) {
    HMODULE module = nullptr;
    constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    return address && GetModuleHandleExW(kByAddress, static_cast<const wchar_t*>(address), &module) ? module : nullptr;
}

std::string_view PathOf(HMODULE module) {
    const DWORD length = module ? GetModuleFileNameW(module, crashes.module.data(), kLongestPath) : 0;
    const int size = WideCharToMultiByte(CP_UTF8, 0, crashes.module.data(), static_cast<int>(length), crashes.modulePath.data(),
                                         static_cast<int>(crashes.modulePath.size()), nullptr, nullptr);
    return {crashes.modulePath.data(), static_cast<std::size_t>(size)};
}

void Place(Crash& crash, const void* address) {
    const HMODULE module = ModuleAt(address);
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    crash.module = PathOf(module);
    crash.offset = place - reinterpret_cast<std::uintptr_t>(module);
    if (module) return;
    const auto at = std::ranges::find_if(crashes.unloaded, [&](const Unloaded& row) { return place - row.begin < row.size; });
    if (at == crashes.unloaded.end()) return;
    crash.module = at->path.data();
    crash.offset = place - at->begin;
    crash.unloaded = true;
}

void Tell(Crash crash) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    crash.seconds = TicksOf(now) / 10'000'000;
    if (crashes.calls) crash.calling = crashes.calling.data();
    const CrashLine line(crash);
    CreateDirectoryW(crashes.folder.data(), nullptr);
    constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const UniqueHandle file(NullIfInvalid(
        CreateFileW(crashes.file.data(), FILE_APPEND_DATA, kSharedWithAll, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)));
    DWORD written = 0;
    if (file) WriteFile(file.get(), line.Text().data(), static_cast<DWORD>(line.Text().size()), &written, nullptr);
}

void TellException(const EXCEPTION_RECORD& fault) {
    const auto name = std::ranges::find(kNames, fault.ExceptionCode, [](const auto& row) { return row.code; });
    const bool hasData = fault.ExceptionCode == EXCEPTION_ACCESS_VIOLATION || fault.ExceptionCode == EXCEPTION_IN_PAGE_ERROR;
    Crash crash{.what = name == std::end(kNames) ? "an exception" : name->name, .code = fault.ExceptionCode};
    crash.data = hasData && fault.NumberParameters > 1 ? fault.ExceptionInformation[1]
                                                       : reinterpret_cast<std::uintptr_t>(fault.ExceptionAddress);
    Place(crash, fault.ExceptionAddress);
    Tell(crash);
}

// On return the run time ends the process.
void OnAbort(int) {
    if (crashes.told) Tell({.what = "abort"});
}

// Each run time has its own signals; the one that a library has linked in is out of reach.
void HandleAborts() {
    using Signal = decltype(&signal);
    for (const wchar_t* name : {L"msvcrt.dll", L"ucrtbase.dll", L"msvcr120.dll", L"msvcr110.dll", L"msvcr100.dll", L"msvcr90.dll",
                                L"msvcr80.dll", L"msvcr71.dll"}) {
        const HMODULE runTime = GetModuleHandleW(name);
        void* const found = runTime ? reinterpret_cast<void*>(GetProcAddress(runTime, "signal")) : nullptr;
        const auto set = reinterpret_cast<Signal>(found);
        const auto former = set ? set(SIGABRT, OnAbort) : SIG_DFL;
        if (former != SIG_DFL && former != OnAbort) set(SIGABRT, former);
    }
}

bool MarkExits() {
    return std::atexit([] {
               if (!crashes.told) return;
               Tell({.what = "a call of exit", .fault = false});
               TerminateProcess(GetCurrentProcess(), 1);
           }) == 0;
}

// A filter set by a library may have gone with it.
LONG WINAPI OnCrash(EXCEPTION_POINTERS* crash) {
    TellException(*crash->ExceptionRecord);
    return ModuleAt(reinterpret_cast<const void*>(crashes.former)) ? crashes.former(crash) : EXCEPTION_CONTINUE_SEARCH;
}

class FilteredCrashes final : public CrashReports {
public:
    ~FilteredCrashes() override { crashes.told = false; }

    void Prepare(std::u16string_view file, std::u16string_view calling) override {
        const std::wstring path = ToWide(file);
        Set(crashes.file, path);
        Set(crashes.folder, path.substr(0, path.rfind(L'\\')));
        Set(crashes.calling, ToUtf8(calling));
        const auto former = SetUnhandledExceptionFilter(OnCrash);
        if (former != OnCrash) crashes.former = former;
        ULONG stack = kStackForTheReport;
        SetThreadStackGuarantee(&stack);
        HandleAborts();
        crashes.told = true;
        [[maybe_unused]] static const bool once = MarkExits();
    }

    void Calling(bool calls) override { crashes.calls = calls; }
};

}  // namespace

void NoteUnloading(HMODULE library) {
    Unloaded& row = crashes.unloaded[crashes.unloadings++ % crashes.unloaded.size()];
    const auto* const begin = reinterpret_cast<const BYTE*>(library);
    const auto& header = *reinterpret_cast<const IMAGE_DOS_HEADER*>(begin);
    row.size = 0;
    row.begin = reinterpret_cast<std::uintptr_t>(begin);
    Set(row.path, std::string(PathOf(library)));
    row.size = reinterpret_cast<const IMAGE_NT_HEADERS*>(begin + header.e_lfanew)->OptionalHeader.SizeOfImage;
}

std::unique_ptr<CrashReports> MakeCrashReports() { return std::make_unique<FilteredCrashes>(); }

}  // namespace twr
