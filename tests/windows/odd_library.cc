// SPDX-License-Identifier: MIT
// A library in Deckman's place that runs a loop of messages in each reading, and crashes in it if the environment says so.
#include <cstdint>

#include "platform/windows/win32.h"

#define ODD_EXPORT extern "C" __declspec(dllexport) void TWR_EXPORT_CALL

ODD_EXPORT Usr_Read(std::int32_t variable, float* value) {
    static float readings = 0;
    const volatile std::uintptr_t nowhere = 16;
    MSG message;
    for (const DWORD start = GetTickCount(); GetTickCount() - start < 50; Sleep(1)) {
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    *value = static_cast<float>(variable % 2) + (readings += 0.001f);
    if (GetEnvironmentVariableW(L"HALYRIG_TEST_CRASH", nullptr, 0) != 0) *value += *reinterpret_cast<volatile float*>(nowhere);
}
ODD_EXPORT Usr_SetISData(std::uint32_t*, std::int32_t, const char*) {}
ODD_EXPORT Usr_SetISName(std::uint32_t*, std::int32_t, const char*) {}
