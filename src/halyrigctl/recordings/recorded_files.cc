// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/recorded_files.h"

#include <algorithm>

#include "base/wide_text.h"
#include "halyrigctl/output/say.h"
#include "streams/recording.h"

namespace twr {
namespace {

class Counted final : public ByteSource {
public:
    Counted(std::unique_ptr<ByteSource> source, std::shared_ptr<std::uint64_t> count)
        : source_(std::move(source)), count_(std::move(count)) {}

    std::size_t Read(char* to, std::size_t room) override {
        const std::size_t got = source_->Read(to, room);
        *count_ += got;
        return got;
    }
    std::string Failure() const override { return source_->Failure(); }

private:
    const std::unique_ptr<ByteSource> source_;
    const std::shared_ptr<std::uint64_t> count_;
};

}  // namespace

std::unique_ptr<RecordedSource> OpenRecorded(Files& files, RecordedFile& file, const std::function<bool()>& goOn) {
    const auto open = [&]() -> std::unique_ptr<UnpackingSource> {
        auto bytes = files.Open(file.path);
        if (!bytes) return nullptr;
        file.read = std::make_shared<std::uint64_t>(0);
        return std::make_unique<UnpackingSource>(std::make_unique<Counted>(std::move(bytes), file.read), goOn);
    };
    auto lookedAt = open(), read = open();
    if (!lookedAt || !read) {
        file.fault = "can't be read; give the path of a recording.";
        return nullptr;
    }
    file.form = FormOf(*lookedAt);
    if (file.form.kind == RecordedForm::kRecording) return std::make_unique<RecordingReader>(std::move(read));
    if (file.form.kind == RecordedForm::kLog) return std::make_unique<NmeaLog>(std::move(read), file.form);
    const std::string fault = lookedAt->Fault();
    file.fault =
        "line 1: " + (fault.empty() ? "it is neither a recording, nor are there sentences of NMEA 0183 below it." : fault + ".");
    return nullptr;
}

RecordedFiles::RecordedFiles(Files& files, const std::vector<std::string>& paths, std::function<bool()> goOn)
    : files_(files), goOn_(std::move(goOn)) {
    for (const std::string& path : paths) {
        RecordedFile file{FromUtf8(path)};
        const auto source = OpenRecorded(files_, file, goOn_);
        const auto first = source ? source->Next() : std::nullopt;
        if (first) file.start = first->time;
        all_.push_back(std::move(file));
    }
    std::ranges::stable_sort(all_, {}, [](const RecordedFile& file) { return file.start.value_or(0.0); });
}

void RecordedFiles::Rewind() {
    at_ = 0;
    source_.reset();
}

std::optional<Recorded> RecordedFiles::Next() {
    for (; at_ < all_.size(); ++at_) {
        RecordedFile& file = all_[at_];
        if (!source_) {
            source_ = OpenRecorded(files_, file, goOn_);
            begins_ = true;
        }
        if (!source_) continue;
        if (auto next = source_->Next()) {
            if (std::exchange(begins_, false)) next->seam = Seam::kStart;
            return next;
        }
        file.fault = source_->Fault();
        file.torn = source_->IsTorn();
        if (source_->Tally()) file.tally = *source_->Tally();
        source_.reset();
    }
    return std::nullopt;
}

std::string RecordedFiles::Fault() const {
    for (const RecordedFile& file : all_) {
        if (!file.fault.empty()) return Harmless(file.path) + " " + Harmless(FromUtf8(file.fault));
    }
    return {};
}

}  // namespace twr
