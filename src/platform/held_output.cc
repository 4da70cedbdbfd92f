// SPDX-License-Identifier: MIT
#include "platform/held_output.h"

#include <chrono>
#include <future>
#include <thread>
#include <vector>

namespace twr {
namespace {

constexpr auto kBetweenQuestions = std::chrono::milliseconds(100);
constexpr int kQuestionsInASecond = 10;

// They end with the process. None is detached: MinGW-w64's threads are lost, or crash, if that comes before they have begun.
std::vector<std::thread>& Abandoned() {
    static auto& threads = *new std::vector<std::thread>;
    return threads;
}

}  // namespace

Output RunWrite(std::function<Output()> write, const std::function<bool()>& goOn) {
    std::packaged_task<Output()> task(std::move(write));
    std::future<Output> taken = task.get_future();
    std::thread writer(std::move(task));
    while (taken.wait_for(kBetweenQuestions) != std::future_status::ready) {
        if (!goOn()) {
            Abandoned().push_back(std::move(writer));
            return Output::kGivenUp;
        }
    }
    writer.join();
    return taken.get();
}

void RunShortWrite(std::function<Output()> write) {
    RunWrite(std::move(write), [left = kQuestionsInASecond]() mutable { return --left > 0; });
}

}  // namespace twr
