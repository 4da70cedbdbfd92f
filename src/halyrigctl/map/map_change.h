// SPDX-License-Identifier: MIT
// One change of the user's mapping file by command: what it needs to know, and how it ends.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "halyrigctl/map/map_file.h"
#include "halyrigctl/output/say.h"

namespace twr {

class MapChange {
public:
    explicit MapChange(System& system) : system_(system), services_(system.Core()) {}

    // Reads what is there. Not kDone, and said, if the file can't be changed by command or there is no such channel, which is named
    // as FindChannel takes it.
    Status Open();
    Status OpenFor(const std::string& channel);

    Circumstances& Now() { return *now_; }
    const Mapping& Rows() const { return file_.rows; }

    ChannelId Channel() const { return channel_; }
    bool IsChannel(std::int32_t channel) const { return channel == static_cast<std::int32_t>(channel_); }
    bool HasPlace(BoatSlot boat) const;  // for the channel

    // "channel 13 HDG of boat 2"; the own boat is not named.
    std::string ChannelOf(BoatSlot boat) const;

    // The change itself, and `done` with how the bridge is made to read it. The bridge must then read `intended`.
    Status AddVar(const Mapping& intended, const std::string& done);     // the last row of its kind
    Status AddRemote(const Mapping& intended, const std::string& done);  // likewise
    Status Remove(const std::function<bool(const XmlElement&)>& goes, const Mapping& intended, const std::string& done,
                  const std::string& ifNone);

    void Remark(const std::string& text) { Notice(system_.GetConsole(), text); }
    Status Refuse(const std::string& why, Status status = kFailed);
    Status RefusePlace(BoatSlot boat);

private:
    Status Add(const Mapping& intended, std::string_view kind, const std::string& element, const std::string& done);
    Status Write(const std::string& text, const Mapping& intended, const std::string& done);
    Status ReadFile();
    bool TakeLock();

    System& system_;
    const CoreServices services_;
    std::optional<Circumstances> now_;  // since it is open
    std::unique_ptr<FileLock> lock_;    // from before the file is read until it is replaced
    MapFile file_;
    ChannelId channel_ = kNoChannel;
    std::string shown_;  // number and name of the channel
};

// "did you mean HDG?", or `otherwise` if no name is near.
std::string Guess(std::u16string_view typed, const std::vector<std::u16string>& names, const std::string& otherwise);

// " of boat 2"; the own boat is not named.
std::string OfBoat(std::int32_t boat);

}  // namespace twr
