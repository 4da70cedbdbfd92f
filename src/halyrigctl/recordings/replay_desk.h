// SPDX-License-Identifier: MIT
// What a replay shows at a terminal, and the keys that lead it.
#pragma once
#include <memory>
#include <optional>
#include <string>

#include "platform/console.h"

namespace twr {

struct ReplayScene {
    std::string file, time;  // for people; the time is the recorded one, on board
    double seconds;          // since the start of what is played
    double percent;          // of the file that is read
};

class ReplayDesk {
public:
    ReplayDesk(Console& console, double speed) : console_(console), speed_(speed) {}

    // Takes the terminal, if there is one.
    void Open() { screen_ = console_.TakeScreen(); }
    void Close() { screen_.reset(); }
    bool IsOpen() const { return screen_ != nullptr; }

    void Show(const ReplayScene& scene);

    // Waits, and obeys a key. False once the user asks to stop.
    bool Wait(int milliseconds);

    double Speed() const { return paused_ ? 0.0 : speed_; }

    // Seconds by which the user wants to be further on, or back, since the last call.
    double TakeStep();

private:
    void Obey(char32_t key);

    Console& console_;
    std::unique_ptr<ConsoleScreen> screen_;
    double speed_;
    bool paused_ = false;
    double step_ = 0.0;
};

}  // namespace twr
