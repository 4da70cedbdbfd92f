#include "platform/held_output.h"

#include <chrono>
#include <future>
#include <memory>
#include <thread>

namespace twr {
namespace {

constexpr auto kBetweenQuestions = std::chrono::milliseconds(100);
constexpr int kQuestionsInASecond = 10;

}  // namespace

Output RunWrite(std::function<bool()> write, const std::function<bool()>& goOn) {
    std::packaged_task<bool()> task(std::move(write));
    std::future<bool> taken = task.get_future();
    // Never detached: MinGW-w64's threads are lost, or crash, if that comes before they have begun.
    auto writer = std::make_unique<std::thread>(std::move(task));
    while (taken.wait_for(kBetweenQuestions) != std::future_status::ready) {
        if (!goOn()) {
            static_cast<void>(writer.release());
            return Output::kGivenUp;
        }
    }
    writer->join();
    return taken.get() ? Output::kWritten : Output::kRefused;
}

void RunShortWrite(std::function<bool()> write) {
    RunWrite(std::move(write), [left = kQuestionsInASecond]() mutable { return --left > 0; });
}

}  // namespace twr
