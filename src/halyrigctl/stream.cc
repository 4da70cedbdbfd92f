#include "halyrigctl/streamer.h"

namespace twr {
namespace {

class StandardOutput : public Outlet {
public:
    StandardOutput(Console& console, Streamer& streamer) : console_(console), streamer_(streamer) {}

    bool Put(std::string_view bytes) override {
        if (!bytes.empty()) last_ = console_.Write(bytes, [&] { return streamer_.GoOn(); });
        return last_ == Output::kWritten;
    }
    Output Last() const { return last_; }

private:
    Console& console_;
    Streamer& streamer_;
    Output last_ = Output::kWritten;
};

}  // namespace

Status Stream(System& system, const StreamOptions& options) {
    Streamer streamer(system, options);
    StandardOutput output(system.GetConsole(), streamer);
    const Status status = streamer.Run(output);
    return status == kDone ? StatusOf(system.GetConsole(), output.Last()) : status;
}

}  // namespace twr
