// SPDX-License-Identifier: MIT
// CCore: the core that every program of the suite carries. It attaches to the CoreRecord, creating and filling it when it is the
// first, and holds all operations on channels, system values and the suite's configuration.
//
// One object per process, used from one thread. No operation throws: each first tests that the record is attached and answers with
// its failure value if not.
#pragma once
#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "calibration/objects.h"
#include "core/channel_catalogue.h"
#include "core/core_record.h"
#include "core/days.h"
#include "core/record_access.h"
#include "platform/system.h"

namespace twr {

class SavedValues;

enum class Attachment {
    kCreateOrOpen,  // as every program of the suite does
    kOpenOnly,      // as a guest, which joins a record that other processes hold but never creates one
};

class CCore {
public:
    // Attaches. If the record can't be created or can't be mapped, the desktop is asked to quit and View() stays null. A guest that
    // finds no record, or one without its initial values yet, stays unattached; a guest does not write the Time channel.
    explicit CCore(const CoreServices& services, Attachment attachment = Attachment::kCreateOrOpen);

    // Releases the record, which is removed with its last holder. Nothing is written back.
    virtual ~CCore();

    CCore(const CCore&) = delete;
    CCore& operator=(const CCore&) = delete;

    // The attached record; nullptr if there is none.
    CoreRecord* View() const { return view_; }

    bool QuitRequested() const;

    // Whether another process, which made the record, still fills it: it did when this one joined, has not finished since, and has
    // not had a second for it, far more than it takes.
    bool IsBeingFilled();

    // Whether no other program finds the record any more, since its name has been taken from it. A look costs a call of the system.
    bool RecordIsLost() const { return mapping_ && mapping_->IsLost(); }

    // Whether a record, if a program holds one, can be found.
    static bool RecordHasName(const CoreServices& services);

    // Why a start would have no record; nothing if it would. Nothing is made.
    static MemoryFault FaultOfRecord(const CoreServices& services);

    // --- Publication (publish.cc) ---

    // Publishes a value, in the channel's internal unit, for a boat: stamped, wrapped, brought into range, calibrated, with the
    // channels derived from it. kNoValue clears the entry. `time` in days, 0.0 for now. True if it was stored; false for the Time
    // channel, if channel or boat has no entry, and if the channel is blocked or held.
    bool SetChannel(ChannelId channel, BoatSlot boat, double value, double time);

    // The same for the own boat, without blocking, calibration and derivation. `channel` is below kChannelCount.
    bool SetOwnChannel(ChannelId channel, double value, double time);

    // Sets the Time channel of every boat in use to the clock's time, unless IsBeingFilled(): that it is stamped shows that it is
    // filled.
    void StampTime();

    // Wraps an angle by one turn, then turns a value outside the channel's range into kNoValue.
    void NormaliseValue(ChannelId channel, double& value) const;

    // The channel's unit type: a user channel's own, or else the catalogue's. `channel` is below kChannelCount.
    [[gnu::always_inline]] std::int16_t ChannelTypeOf(ChannelId channel) const {
        // The last user channel keeps the catalogue's type.
        if (channel - kUser0 <= kUser30 - kUser0 && view_) return Load(view_->channels[channel].type);
        return ChannelCatalogue()[channel].type;
    }

    // --- Calibration (calibrate.cc) ---

    // The value with the corrections of its channel, brought back into range by one step; unchanged if the channel isn't marked as
    // calibrated, without a record, and for kNoValue. `channel` is below kChannelCount.
    double ApplyCalibration(ChannelId channel, double raw);

    // The correction of one calibration for `raw`, the value being corrected. False, with kNoValue, if there is no such
    // calibration, it is switched off, or its table gives no value.
    bool CalibrationLookup(std::size_t index, double& out, double raw);

    // This process's own calibrations, indexed like CalibrationCatalogue(). They are empty, and correct nothing, until filled.
    std::span<CalibrationObject, kCalibrationCount> Calibrations() { return calibrations_; }

    // --- System values (system_values.cc) ---

    // Stores sysValue[index] within its bounds; false if there is no such index. Index 36, the moment of the gun in days, also
    // resets the start state.
    bool SetSystemValue(std::uint32_t index, double value);

    // Stores sysInt[index] within its bounds.
    void SetSystemInt(std::uint32_t index, std::int32_t value);

    // --- Reading (read.cc) ---

    // Reads a channel of a boat: an alternating channel resolved, the damped value if asked for. A bearing becomes true when
    // `angleFlag` is false; any other value, and a bearing when it is true, goes to the user's units if `convert` is set and stays
    // in the internal unit if not. False if there is no value; `value` is kNoValue then.
    bool GetChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, bool convert) const;

    // The same in the user's units, and only a value that is not older than `maxAge` days; kNoValue selects the channel's own
    // limit.
    bool GetFreshChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, double maxAge) const;

    // The age in seconds beyond which a channel of a boat is stale; 0 or less for never. Only the low 16 bits of a boat's own age
    // limit are used, signed, so 32768 to 65536 mean never.
    std::int16_t StaleSeconds(ChannelId channel, BoatSlot boat) const;

    // Converts a magnetic bearing to true by that boat's variation, or else the own boat's; kNoValue if both are unknown.
    double ApplyVariation(double value, BoatSlot boat) const;

    // Turns a value from the channel's internal unit into the user's. `variation`, in degrees, is used for bearings shown true;
    // kNoValue selects the own boat's.
    double ToDisplayUnits(ChannelId channel, double value, double variation) const;

    // --- Alternating channels (alternates.cc) ---

    // The channel that an alternating channel stands for now, by the state of the own boat; any other channel gives itself.
    // kNoChannel if there is none. If `recurse` is set, a result that is alternating itself is resolved once more; that result can
    // still be alternating.
    ChannelId ResolveAlternate(ChannelId channel, bool recurse) const;
    // The channel whose value is read for it: an alternating one that stands for others is followed as far as reading does.
    ChannelId SourceOf(ChannelId channel) const { return ResolveAlternate(ResolveAlternate(channel, true), true); }

    // --- Data folders (config/data_folders.cc) ---

    // The data folder, or a subfolder of it, created if missing. Empty without a record. While the record names none, it is the
    // default, which is stored, unless IsBeingFilled(): the creator may be about to name another.
    std::u16string GetDataFolder(std::u16string_view subfolder);

    // The path of a file in a subfolder of the data folder; empty, which is no file's path, while there is no data folder.
    std::u16string GetDataFile(std::u16string_view subfolder, std::u16string_view name);

    // The stored database path, or the default one in its subfolder, which is created. Empty without a record.
    std::u16string GetDatabasePath();

    // Empties a stored database path whose extension is not ".db".
    void CheckDatabasePath();

    // The default path of the marks file.
    std::u16string GetMarksPath();

    // Stores a path that is not empty, cut to its field.
    void SetMarksPath(std::u16string_view path);

    // The folder for data that all users share; empty if it is unknown.
    std::u16string GetProgramDataFolder() const;

    // --- Texts (text/) ---

    // The text of a value in the user's units; "- -" for kNoValue, without such a channel, and without a record.
    std::u16string ChannelText(ChannelId channel, double value) const;

    // The printf format of the channel's plain numbers; empty without such a channel or a record.
    std::string ChannelFormat(ChannelId channel) const;

    // A channel's short name: the user's if there is one. Empty without such a channel.
    std::u16string ChannelName(ChannelId channel) const;

    // A channel's name for a remote: at most 8 characters in upper case.
    std::u16string RemoteLabel(ChannelId channel) const;

    // Converts a time in UTC days to days in the zone in which times of day are shown: the machine's, or UTC by the user's choice,
    // without a record, or if the zone is unknown.
    double ToDisplayTime(double day) const;

    // Date and time of day in the zone shown. Empty if the zone is unknown.
    std::u16string TimeText(double day) const;

    // Reports a fatal failure: shows the message until the user closes it, then appends it to the log of the day. A failure to
    // write the log is ignored.
    void WriteSystemLog(std::u16string_view message);

    // --- Configuration files (config/), read when the record is created ---

    // Each first sets its part of the record to its defaults, then reads the file as far as possible. True if the file exists and
    // its first element is the right one, whatever follows.
    bool LoadBoatsFile();     // boats.xml: names, MMSIs and colours of the boats
    bool LoadChannelsFile();  // channels.xml: log marks, damping, decimals, and the user channels

    // alternate.csv: what the alternating channels stand for.
    void LoadAlternatesFile();

private:
    void Attach();
    void AttachAsGuest();
    void LoadSavedSettings();
    void LoadSavedPaths(SavedValues& saved);
    void LoadSavedValues(SavedValues& saved);

    // The own boat's value of a channel, or of the one it stands for; kNoValue if there is none.
    double LiveValue(ChannelId channel) const;

    double StampTime(std::int64_t ticks);  // the ticks in days
    // Publishes the channels derived from a value, and returns the value to store.
    double Derived(ChannelId channel, BoatSlot boat, double value, double time, double now);
    void DeriveRate(ChannelId channel, ChannelId rateChannel, BoatSlot boat, double value, double time);
    void StoreDerived(ChannelId channel, BoatSlot boat, double value, double time);

    CoreServices services_;
    std::array<CalibrationObject, kCalibrationCount> calibrations_;
    std::int64_t ticks_ = 0;  // the last that were stamped
    double days_ = DaysFromTicks(0);
    double gunMark_ = 0.0;
    std::unique_ptr<SharedBlock> mapping_;  // null if creation failed
    CoreRecord* view_ = nullptr;
    const double attachedAt_;   // days
    bool beingFilled_ = false;  // as last seen
};

}  // namespace twr
