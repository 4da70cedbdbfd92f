#include <cstdio>

#include "platform/linux/services.h"

namespace twr {
namespace {

class BuiltExecutable final : public Executable {
public:
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override {
        unsigned major = 0, minor = 0, patch = 0;
        if (std::sscanf(HALYRIG_VERSION, "%u.%u.%u", &major, &minor, &patch) != 3) return std::nullopt;
        return std::array<std::uint16_t, 4>{static_cast<std::uint16_t>(major), static_cast<std::uint16_t>(minor),
                                            static_cast<std::uint16_t>(patch), 0};
    }
};

}  // namespace

std::unique_ptr<Executable> MakeExecutable() { return std::make_unique<BuiltExecutable>(); }

}  // namespace twr
