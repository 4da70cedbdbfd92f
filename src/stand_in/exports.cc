// SPDX-License-Identifier: MIT
// The library's four functions. All calls of a process come from one thread.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "platform/library.h"
#include "platform/system.h"
#include "stand_in/stand_in.h"

namespace {

// Made at the first call and gone when the library is freed.
class Running {
public:
    static twr::StandIn& Get() {
        static Running running;
        return running.standIn_;
    }

private:
    static twr::StandInServices ServicesOf(twr::System& system) {
        const twr::CoreServices core = system.Core();
        return {core.clock, core.files, core.memory};
    }

    static const char kAddressInLibrary;

    std::unique_ptr<twr::System> system_ = twr::MakeSystem(twr::UserRoots());
    twr::StandIn standIn_{ServicesOf(*system_), twr::ModuleFolder(&kAddressInLibrary)};
};

const char Running::kAddressInLibrary = 0;

// A text of the caller: 16 bytes, possibly without a zero.
std::string_view TextOf(const char* text) { return {text, strnlen(text, twr::kDisplayTextRoom)}; }

}  // namespace

#define TWR_EXPORT extern "C" __attribute__((visibility("default")))

TWR_EXPORT void TWR_EXPORT_CALL Usr_Read(std::int32_t variable, float* value) {
    if (value) *value = Running::Get().Read(variable);
}

TWR_EXPORT void TWR_EXPORT_CALL Usr_GetPosition(float* latitude, float* longitude) {
    float spare = 0.0F;
    Running::Get().Position(latitude ? *latitude : spare, longitude ? *longitude : spare);
}

TWR_EXPORT void TWR_EXPORT_CALL Usr_SetISData(std::uint32_t* /*word*/, std::int32_t remote, const char* text) {
    if (text) Running::Get().Displays().ShowValue(remote, TextOf(text));
}

TWR_EXPORT void TWR_EXPORT_CALL Usr_SetISName(std::uint32_t* /*word*/, std::int32_t remote, const char* text) {
    if (text) Running::Get().Displays().ShowName(remote, TextOf(text));
}
