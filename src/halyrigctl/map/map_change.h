// SPDX-License-Identifier: MIT
// One change of the user's mapping file by command: what it needs to know, and how it ends.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "halyrigctl/map/map_file.h"
#include "halyrigctl/output/say.h"

namespace twr {

class MapChange {
public:
    explicit MapChange(System& system) : system_(system), services_(system.Core()) {}

    // Reads what is there. Not kDone, and said, if the file can't be changed by command or there is no such channel, which is named
    // as FindChannel takes it.
    Status Open();
    Status OpenFor(const std::vector<std::string>& channels);

    // From here on it is about that one of the channels; about the first at first.
    void TurnTo(std::size_t channel) { of_ = channel; }

    Circumstances& Now() { return *now_; }
    const Mapping& Rows() const { return file_.rows; }

    ChannelId Channel() const { return channels_[of_].id; }
    bool IsChannel(std::int32_t channel) const { return channel == static_cast<std::int32_t>(Channel()); }
    bool HasPlace(BoatSlot boat) const;  // for the channel

    // "channel 13 HDG of boat 2"; the own boat is not named.
    std::string ChannelOf(BoatSlot boat) const;

    // The change itself, and `done` with how the bridge is made to read it. The bridge must then read `intended`.
    Status AddVars(const Mapping& intended, std::size_t count, const std::string& done);  // the last rows of their kind
    Status AddRemote(const Mapping& intended, const std::string& done);                   // the last row of its kind
    Status Remove(const std::function<bool(const XmlElement&)>& goes, const Mapping& intended, const std::string& done,
                  const std::string& ifNone);

    void Remark(const std::string& text) { Notice(system_.GetConsole(), text); }
    Status Refuse(const std::string& why, Status status = kFailed);
    Status RefusePlace(BoatSlot boat);

private:
    Status Write(const std::string& text, const Mapping& intended, const std::string& done);
    Status ReadFile();
    bool TakeLock();

    System& system_;
    const CoreServices services_;
    std::optional<Circumstances> now_;  // since it is open
    std::unique_ptr<FileLock> lock_;    // from before the file is read until it is replaced
    MapFile file_;
    struct Named {
        ChannelId id;
        std::string shown;  // number and name
    };
    std::vector<Named> channels_;
    std::size_t of_ = 0;
};

// " of boat 2"; the own boat is not named.
std::string OfBoat(std::int32_t boat);

}  // namespace twr
