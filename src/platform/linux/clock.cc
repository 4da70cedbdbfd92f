#include "platform/clock.h"

#include <ctime>

#include "platform/linux/services.h"

namespace twr {
namespace {

class SystemClock final : public Clock {
public:
    std::int64_t Ticks() const override {
        timespec now;
        clock_gettime(CLOCK_REALTIME, &now);
        return std::int64_t{now.tv_sec} * 10'000'000 + static_cast<std::uint32_t>(now.tv_nsec) / 100;
    }
};

}  // namespace

std::unique_ptr<Clock> MakeClock() { return std::make_unique<SystemClock>(); }

}  // namespace twr
