// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/replay_desk.h"

#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "halyrigctl/recordings/board_time.h"

namespace twr {
namespace {

constexpr double kLeastSpeed = 0.1, kMostSpeed = 1000.0;
constexpr double kShortStep = 10.0, kLongStep = 60.0;  // seconds

}  // namespace

void ReplayDesk::Show(const ReplayScene& scene) {
    if (!screen_) return;
    const std::string speed = speed_ == 1.0 ? "as it was" : Printed("%g times as fast", speed_);
    screen_->Draw(
        {{0, 0, "REPLAY of " + scene.file, Look::kReversed},
         {2, 0, "recorded at  " + scene.time, Look::kBold},
         {3, 0, "played       " + DurationWords(scene.seconds) + Printed(", %.0f %% of the file", scene.percent), Look::kPlain},
         {4, 0, "speed        " + (paused_ ? speed + ", paused" : speed), paused_ ? Look::kYellow : Look::kPlain},
         {6, 0, "Space pauses   Left Right 10 s   Down Up 1 min   [ ] slower, faster   q ends", Look::kFaint}});
}

bool ReplayDesk::Wait(int milliseconds) {
    if (!screen_) return console_.Wait(milliseconds);
    const auto key = screen_->Wait(milliseconds);
    if (!key) return true;
    if (*key == Key::kStop || *key == Key::kEscape || *key == U'q') return false;
    Obey(*key);
    return true;
}

void ReplayDesk::Obey(char32_t key) {
    switch (key) {
        case U' ':
            paused_ = !paused_;
            break;
        case U'[':
            speed_ = std::max(speed_ / 2, kLeastSpeed);
            break;
        case U']':
            speed_ = std::min(speed_ * 2, kMostSpeed);
            break;
        case Key::kLeft:
            step_ -= kShortStep;
            break;
        case Key::kRight:
            step_ += kShortStep;
            break;
        case Key::kDown:
            step_ -= kLongStep;
            break;
        case Key::kUp:
            step_ += kLongStep;
            break;
        default:
            break;
    }
}

double ReplayDesk::TakeStep() { return std::exchange(step_, 0.0); }

}  // namespace twr
