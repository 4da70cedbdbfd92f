// SPDX-License-Identifier: MIT
#include "streams/recording_queue.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace twr {
namespace {

struct QueuedLook {
    std::string lines;
    RecordingMoment moment;
    bool begins = false;  // makes the file
};

// They end with the process. None is detached: MinGW-w64's threads are lost, or crash, if that comes before they have begun.
std::vector<std::thread>& Abandoned() {
    static auto& threads = *new std::vector<std::thread>;
    return threads;
}

}  // namespace

struct RecordingQueue::Shared {
    Shared(Files& files, const RecordingOptions& options) : writer(files, options) {}
    void Queue(QueuedLook look);
    void Run();
    bool Write(const std::vector<QueuedLook>& looks);

    std::mutex mutex;  // of all but the writer, which is the thread's
    std::condition_variable changed;
    std::vector<QueuedLook> waiting;
    std::size_t bytes = 0;  // that wait
    bool ending = false;
    bool ended = false;
    State state;
    RecordingWriter writer;
};

void RecordingQueue::Shared::Queue(QueuedLook look) {
    const std::lock_guard guard(mutex);
    if (ended) return;
    // Of looks that found nothing only the last counts; but the file begins when it was begun.
    const bool hasLast = !waiting.empty() && waiting.back().lines.empty() && !waiting.back().begins;
    const bool replaces = hasLast && look.lines.empty() && !look.begins;
    if (replaces) {
        waiting.back().moment = look.moment;
    } else {
        bytes += look.lines.size() + sizeof look;
        waiting.push_back(std::move(look));
    }
    changed.notify_all();
}

// All that waits is written at once, so that a slow disk has to do its work once for all of it.
void RecordingQueue::Shared::Run() {
    std::unique_lock guard(mutex);
    for (bool goesOn = true; goesOn;) {
        changed.wait(guard, [this] { return ending || !waiting.empty(); });
        const bool last = ending;
        const std::vector<QueuedLook> looks = std::exchange(waiting, {});
        bytes = 0;
        guard.unlock();
        goesOn = Write(looks) && !last;
        if (!goesOn) writer.Close();
        guard.lock();
        state = {writer.Path(), writer.Lost(), writer.Fault(), writer.Begun(), writer.Kept()};
    }
    ended = true;
    changed.notify_all();
}

bool RecordingQueue::Shared::Write(const std::vector<QueuedLook>& looks) {
    for (const auto& [lines, moment, begins] : looks) {
        if ((begins && !writer.Begin(moment)) || !writer.Put(lines, moment)) return false;
    }
    return writer.Keep();
}

RecordingQueue::RecordingQueue(Files& files, const RecordingOptions& options)
    : shared_(std::make_shared<Shared>(files, options)), thread_([shared = shared_] { shared->Run(); }) {}

RecordingQueue::~RecordingQueue() {
    shared_->writer.GiveUp();
    if (Finish(0)) {
        thread_.join();
    } else {
        Abandoned().push_back(std::move(thread_));
    }
}

bool RecordingQueue::HasRoom() const {
    const std::lock_guard guard(shared_->mutex);
    return shared_->bytes < kRoom;
}

void RecordingQueue::Put(std::string_view lines, RecordingMoment now) { shared_->Queue({std::string(lines), now}); }

void RecordingQueue::Begin(RecordingMoment now) { shared_->Queue({{}, now, true}); }

RecordingQueue::State RecordingQueue::Now() const {
    const std::lock_guard guard(shared_->mutex);
    return shared_->state;
}

bool RecordingQueue::Finish(int milliseconds) {
    std::unique_lock guard(shared_->mutex);
    shared_->ending = true;
    shared_->changed.notify_all();
    return shared_->changed.wait_for(guard, std::chrono::milliseconds(milliseconds), [this] { return shared_->ended; });
}

}  // namespace twr
