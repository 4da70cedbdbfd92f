// CCore: the core that every program of the suite carries. It attaches to the CoreRecord, creating and filling it when it is the
// first, and holds all operations on channels, system values and the suite's configuration.
//
// One object per process, used from one thread. No operation throws: each first tests that the record is attached and answers with
// its failure value if not.
#pragma once
#include <memory>
#include <string>
#include <string_view>

#include "core/channel_catalogue.h"
#include "core/core_record.h"
#include "core/no_value.h"
#include "platform/system.h"

namespace twr {

enum class Attachment {
    kCreateOrOpen,  // as every program of the suite does
    kOpenOnly,      // as a guest, who joins a record that others hold but never creates one
};

class CCore {
public:
    // Attaches. When the record can be neither created nor mapped, the desktop is asked to quit and View() stays null. A guest who
    // finds no record stays unattached, and leaves the Time channel alone.
    explicit CCore(const CoreServices& services, Attachment attachment = Attachment::kCreateOrOpen);

    // Lets go of the record, which vanishes with its last holder. Nothing is written back.
    virtual ~CCore();

    CCore(const CCore&) = delete;
    CCore& operator=(const CCore&) = delete;

    // The attached record; nullptr when there is none.
    CoreRecord* View() const { return view_; }

    bool QuitRequested() const;

    // --- Publication (publish.cc) ---

    // Publishes a value, in the channel's internal unit, for a boat: stamped, wrapped, brought into range, with the channels
    // derived from it. kNoValue clears the entry. `time` in days, 0.0 for now. True when it was stored; false when channel or boat
    // has no entry, or the channel is blocked or held.
    bool SetChannel(ChannelId channel, BoatSlot boat, double value, double time);

    // The same for the own boat, without blocking, calibration and derivation. `channel` is below kChannelCount.
    bool SetOwnChannel(ChannelId channel, double value, double time);

    // Brings the Time channel of every boat in use up to the clock.
    void StampTime();

    // Wraps an angle by one turn, then turns a value outside the channel's range into kNoValue.
    void NormaliseValue(ChannelId channel, double& value) const;

    // The channel's unit type: a user channel's own, any other's by the catalogue. `channel` is below kChannelCount.
    std::int16_t ChannelTypeOf(ChannelId channel) const;

    // --- System values (system_values.cc) ---

    // Stores sysValue[index] within its bounds; false without such an index. Index 36, the moment of the gun in days, also resets
    // the start state.
    bool SetSystemValue(std::uint32_t index, double value);

    // Stores sysInt[index] within its bounds.
    void SetSystemInt(std::uint32_t index, std::int32_t value);

    // --- Data folders (config/data_folders.cc) ---

    // The data folder, or a subfolder of it, created when missing. Empty without a record.
    std::u16string GetDataFolder(std::u16string_view subfolder);

    // The stored database path, or the default one in its subfolder, which is created. Empty without a record.
    std::u16string GetDatabasePath();

    // Empties a stored database path whose extension is not ".db".
    void CheckDatabasePath();

    // The default path of the marks file.
    std::u16string GetMarksPath();

    // Stores a path that is not empty, cut to its field.
    void SetMarksPath(std::u16string_view path);

    // The folder for data that all users share; empty when it can't be told.
    std::u16string GetProgramDataFolder() const;

private:
    void Attach();
    void AttachAsGuest();
    void LoadSavedSettings();
    void LoadSavedPaths();
    void LoadSavedValues();

    void StampTime(double now);
    void Derive(ChannelId channel, BoatSlot boat, double& value, double time, double now);
    void DeriveRate(ChannelId channel, ChannelId rateChannel, BoatSlot boat, double value, double time);
    void StoreDerived(ChannelId channel, BoatSlot boat, double value, double time);

    CoreServices services_;
    double gunMark_ = 0.0;
    std::unique_ptr<SharedBlock> mapping_;  // null when creation failed
    CoreRecord* view_ = nullptr;
};

}  // namespace twr
