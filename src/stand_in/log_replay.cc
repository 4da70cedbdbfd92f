// SPDX-License-Identifier: MIT
#include "stand_in/log_replay.h"

namespace twr {
namespace {

constexpr int kLinesAtOnce = 5000;  // bounds the time that one advance takes
constexpr int kLinesToFindTime = 1000;
constexpr double kPause = 1.0;  // seconds before the log starts again, or is looked for again

}  // namespace

LogReplay::LogReplay(Files& files, std::u16string_view path) : files_(files), path_(path) { Advance(0.0); }

bool LogReplay::Open() {
    readings_.Clear();
    const bool hasClock = TellsTime();
    source_ = files_.Open(path_);
    if (!source_) return false;
    lines_.emplace(*source_, kLogLines);
    clock_.Start(hasClock);
    return true;
}

bool LogReplay::TellsTime() {
    const auto source = files_.Open(path_);
    if (!source) return false;
    BoundedLines lines(*source, kLogLines);
    for (int i = 0; i < kLinesToFindTime && lines.Next(); ++i) {
        const auto sentence = ParseSentence(lines.Line());
        if (sentence && TimeOfDayOf(*sentence)) return true;
    }
    return false;
}

void LogReplay::Close() {
    next_.reset();
    lines_.reset();
    source_.reset();
    readTime_ += kPause;
}

// Gets the next sentence and its time; false if the line has none.
bool LogReplay::Read() {
    if (!lines_->Next()) {
        Close();
        return false;
    }
    next_ = ParseSentence(lines_->Line());
    if (next_) readTime_ += clock_.Step(*next_);
    return next_.has_value();
}

void LogReplay::Play() {
    for (int budget = kLinesAtOnce; budget > 0 && readTime_ <= playTime_; --budget) {
        if (next_) {
            readings_.Take(*next_, readTime_);
            next_.reset();
        } else if (source_) {
            Read();
        } else if (!Open()) {
            readTime_ = playTime_ + kPause;
        }
    }
}

void LogReplay::Advance(double seconds) {
    if (seconds > 0.0) playTime_ += seconds;
    Play();
    moment_ = readings_.At(playTime_);
}

}  // namespace twr
