// SPDX-License-Identifier: MIT
// Writes a recording in a thread of its own, so that whoever looks at the record never waits for the disk.
#pragma once
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "streams/recording.h"

namespace twr {

class RecordingQueue {
public:
    // 30 seconds of every channel of a boat at ten publications a second take 16 MB.
    static constexpr std::size_t kRoom = 32 << 20;  // bytes

    // What has become of the recording; paths and the fault as RecordingWriter tells them.
    struct State {
        std::u16string path, lost;
        std::string fault;
        int begun = 0;      // files
        double kept = 0.0;  // what was put up to then is on the disk; days, UTC
    };

    // The thread takes the signals that its maker does not block.
    RecordingQueue(Files& files, const RecordingOptions& options);

    // Gives up what is not written yet. A thread that the disk holds up ends with the process, and uses `files` no more.
    ~RecordingQueue();

    RecordingQueue(const RecordingQueue&) = delete;
    RecordingQueue& operator=(const RecordingQueue&) = delete;

    // False while what waits for the disk fills the room.
    bool HasRoom() const;

    // As those of RecordingWriter, but what goes wrong is told by Now(). To be called several times a second.
    void Put(std::string_view lines, RecordingMoment now);
    void Begin(RecordingMoment now);

    State Now() const;

    // After the last Put: whether all is written, and the file closed, or will never be, within so many milliseconds.
    bool Finish(int milliseconds);

private:
    struct Shared;
    const std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

}  // namespace twr
