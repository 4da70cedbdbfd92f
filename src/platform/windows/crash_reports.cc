#include "platform/crash_reports.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include "base/wide_text.h"
#include "platform/crash_line.h"
#include "platform/windows/file_time.h"
#include "platform/windows/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide.h"

namespace twr {
namespace {

constexpr std::size_t kLongestPath = 1024;
constexpr ULONG kStackForTheReport = 16 * 1024;  // bytes, when the rest is exhausted

// For the filter, which takes no memory.
struct {
    std::array<wchar_t, kLongestPath> file{}, folder{}, module{};
    std::array<char, kLongestPath> calling{};
    std::array<char, 3 * kLongestPath> modulePath{};
    volatile bool calls = false;
    LPTOP_LEVEL_EXCEPTION_FILTER former = nullptr;
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

void Tell(const EXCEPTION_RECORD& fault) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const auto name = std::ranges::find(kNames, fault.ExceptionCode, [](const auto& row) { return row.code; });
    const HMODULE module = ModuleAt(fault.ExceptionAddress);
    const auto place = reinterpret_cast<std::uintptr_t>(fault.ExceptionAddress);
    const bool hasData = fault.ExceptionCode == EXCEPTION_ACCESS_VIOLATION || fault.ExceptionCode == EXCEPTION_IN_PAGE_ERROR;
    const CrashLine line({.seconds = TicksOf(now) / 10'000'000,
                          .what = name == std::end(kNames) ? "an exception" : name->name,
                          .code = fault.ExceptionCode,
                          .data = hasData && fault.NumberParameters > 1 ? fault.ExceptionInformation[1] : place,
                          .module = PathOf(module),
                          .offset = place - reinterpret_cast<std::uintptr_t>(module),
                          .calling = crashes.calls ? crashes.calling.data() : ""});
    CreateDirectoryW(crashes.folder.data(), nullptr);
    constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const UniqueHandle file(NullIfInvalid(
        CreateFileW(crashes.file.data(), FILE_APPEND_DATA, kSharedWithAll, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)));
    DWORD written = 0;
    if (file) WriteFile(file.get(), line.Text().data(), static_cast<DWORD>(line.Text().size()), &written, nullptr);
}

// A filter set by a library may have gone with it.
LONG WINAPI OnCrash(EXCEPTION_POINTERS* crash) {
    Tell(*crash->ExceptionRecord);
    return ModuleAt(reinterpret_cast<const void*>(crashes.former)) ? crashes.former(crash) : EXCEPTION_CONTINUE_SEARCH;
}

class FilteredCrashes final : public CrashReports {
public:
    void Prepare(std::u16string_view file, std::u16string_view calling) override {
        const std::wstring path = ToWide(file);
        Set(crashes.file, path);
        Set(crashes.folder, path.substr(0, path.rfind(L'\\')));
        Set(crashes.calling, ToUtf8(calling));
        const auto former = SetUnhandledExceptionFilter(OnCrash);
        if (former != OnCrash) crashes.former = former;
        ULONG stack = kStackForTheReport;
        SetThreadStackGuarantee(&stack);
    }

    void Calling(bool calls) override { crashes.calls = calls; }
};

}  // namespace

std::unique_ptr<CrashReports> MakeCrashReports() { return std::make_unique<FilteredCrashes>(); }

}  // namespace twr
