#include "bench_bridge.h"

#include <string>

#include "config/bridge_settings.h"

namespace twr {
namespace {

void TWR_EXPORT_CALL Read(std::int32_t variable, float* value) {
    static float step = 0.0f;
    if (InstantDeckman::changing) step = step < 1.0f ? step + 0.001f : 0.0f;
    *value = static_cast<float>(variable % 90) + step;
}

void TWR_EXPORT_CALL Show(std::uint32_t*, std::int32_t, const char*) {}

void TWR_EXPORT_CALL GetPosition(float* latitude, float* longitude) { *latitude = *longitude = 10.0f; }

class InstantLibrary : public Library {
public:
    void* Find(const char* name) const override {
        const std::string_view wanted = name;
        if (wanted == "Usr_Read") return reinterpret_cast<void*>(&Read);
        if (wanted == "Usr_GetPosition") return reinterpret_cast<void*>(&GetPosition);
        if (wanted == "Usr_SetISData" || wanted == "Usr_SetISName") return reinterpret_cast<void*>(&Show);
        return nullptr;
    }
};

}  // namespace

std::unique_ptr<Library> InstantDeckman::Load(std::u16string_view) { return std::make_unique<InstantLibrary>(); }

BenchMachine::BenchMachine(int varRows, int remoteRows) {
    std::string variables = "[variables]\n", mapping = "<halyrig>";
    for (int i = 1; i <= varRows; ++i) {
        const std::string number = std::to_string(i);
        variables += number + " V" + number + " u 1 1 1\n";
        mapping += "<var twr='" + (i < 414 ? number : "1") + "' dfw='" + number + "'/>";
    }
    for (int i = 1; i <= remoteRows; ++i) {
        mapping += "<remote remote='" + std::to_string(i) + "' twr='" + std::to_string(i < 414 ? i : 1) + "'/>";
    }
    real_.folder.Write("Deckman/Data/J_vars06.d", variables);
    real_.folder.Write("ProgramData/Tidewright/instruments/halyrig.xml", mapping + "</halyrig>");
    WriteSettings(Core().registry, {.dfwFolder = real_.folder.File("Deckman")});
}

CoreServices BenchMachine::Core() {
    const CoreServices real = real_.system->Core();
    return {real.clock, real.zone, real.memory, real.registry, real.files, real.xml, host};
}

}  // namespace twr
