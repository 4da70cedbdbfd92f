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

#include "calibration/calibration_catalogue.h"
#include "calibration/object.h"
#include "core/channel_catalogue.h"
#include "core/core_record.h"
#include "core/days.h"
#include "core/record_access.h"
#include "platform/system.h"

namespace twr {

enum class Attachment {
    kCreateOrOpen,  // as every program of the suite does
    kOpenOnly,      // as a guest, who joins a record that others hold but never creates one
};

class CCore {
public:
    // Attaches. When the record can be neither created nor mapped, the desktop is asked to quit and View() stays null. A guest who
    // finds no record, or one without its initial values yet, stays unattached; he leaves the Time channel alone.
    explicit CCore(const CoreServices& services, Attachment attachment = Attachment::kCreateOrOpen);

    // Lets go of the record, which vanishes with its last holder. Nothing is written back.
    virtual ~CCore();

    CCore(const CCore&) = delete;
    CCore& operator=(const CCore&) = delete;

    // The attached record; nullptr when there is none.
    CoreRecord* View() const { return view_; }

    bool QuitRequested() const;

    // --- Publication (publish.cc) ---

    // Publishes a value, in the channel's internal unit, for a boat: stamped, wrapped, brought into range, calibrated, with the
    // channels derived from it. kNoValue clears the entry. `time` in days, 0.0 for now. True when it was stored; false for the
    // Time channel, when channel or boat has no entry, and when the channel is blocked or held.
    bool SetChannel(ChannelId channel, BoatSlot boat, double value, double time);

    // The same for the own boat, without blocking, calibration and derivation. `channel` is below kChannelCount.
    bool SetOwnChannel(ChannelId channel, double value, double time);

    // Brings the Time channel of every boat in use up to the clock.
    void StampTime();

    // Wraps an angle by one turn, then turns a value outside the channel's range into kNoValue.
    void NormaliseValue(ChannelId channel, double& value) const;

    // The channel's unit type: a user channel's own, any other's by the catalogue. `channel` is below kChannelCount.
    std::int16_t ChannelTypeOf(ChannelId channel) const {
        // The last user channel keeps the catalogue's type.
        if (channel - kUser0 <= kUser30 - kUser0 && view_) return Load(view_->channels[channel].type);
        return ChannelCatalogue()[channel].type;
    }

    // --- Calibration (calibrate.cc) ---

    // The value with the corrections of its channel, brought back into range by one step; unchanged when the channel isn't marked
    // as calibrated, without a record, and for kNoValue. `channel` is below kChannelCount.
    double ApplyCalibration(ChannelId channel, double raw);

    // The correction that one calibration finds for `raw`, the value being corrected. False, with kNoValue, without such a
    // calibration, when it is switched off, and when its table gives nothing.
    bool CalibrationLookup(std::size_t index, double& out, double raw);

    // This process's own calibrations, indexed like CalibrationCatalogue(). They are empty, and correct nothing, until filled.
    std::span<CalibrationObject, kCalibrationCount> Calibrations() { return calibrations_; }

    // --- System values (system_values.cc) ---

    // Stores sysValue[index] within its bounds; false without such an index. Index 36, the moment of the gun in days, also resets
    // the start state.
    bool SetSystemValue(std::uint32_t index, double value);

    // Stores sysInt[index] within its bounds.
    void SetSystemInt(std::uint32_t index, std::int32_t value);

    // --- Reading (read.cc) ---

    // Reads a channel of a boat: the alternating channel resolved, the damped value if asked. A bearing becomes true when
    // `angleFlag` is false; any other value, and a bearing when it is true, goes to the user's units if `convert` is set and stays
    // in the internal unit if not. False when there is no value; `value` is kNoValue then.
    bool GetChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, bool convert) const;

    // The same in the user's units, and only a value that is not older than `maxAge` days; kNoValue asks for the channel's own
    // limit.
    bool GetFreshChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, double maxAge) const;

    // The age in seconds past which a channel of a boat counts as gone; 0 or less for never. A boat's own age limit counts by
    // its low 16 bits, signed, so one of 32768 to 65536 means never.
    std::int16_t StaleSeconds(ChannelId channel, BoatSlot boat) const;

    // Makes a magnetic bearing true, by the boat's own variation or else that of the own boat; kNoValue without either.
    double ApplyVariation(double value, BoatSlot boat) const;

    // Turns a value from the channel's internal unit into the user's. `variation` in degrees serves bearings that are shown true;
    // kNoValue asks for that of the own boat.
    double ToDisplayUnits(ChannelId channel, double value, double variation) const;

    // --- Alternating channels (alternates.cc) ---

    // The channel that an alternating one stands for at this moment, by the state of the own boat; any other channel is itself.
    // kNoChannel when there is none. An alternating channel that stands for another one is followed for one step if `recurse` is
    // set, so the answer can be an alternating channel still.
    ChannelId ResolveAlternate(ChannelId channel, bool recurse) const;

    // --- Data folders (config/data_folders.cc) ---

    // The data folder, or a subfolder of it, created when missing. Empty without a record. While the record names none, it is the
    // default. The record's creator stores that at once; who has joined stores it only when a second has gone by since, for the
    // creator may be about to name another.
    std::u16string GetDataFolder(std::u16string_view subfolder);

    // Whether this is the data folder that the record names. Takes no memory.
    bool DataFolderIs(std::u16string_view folder) const;

    // The path of a file in a subfolder of the data folder; empty, which no file has, while there is no data folder.
    std::u16string GetDataFile(std::u16string_view subfolder, std::u16string_view name);

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

    // --- Texts (text/) ---

    // The text of a value that stands in the user's units; "- -" for kNoValue, for no channel, and without a record.
    std::u16string ChannelText(ChannelId channel, double value) const;

    // The printf format of the channel's plain numbers; empty without such a channel or a record.
    std::string ChannelFormat(ChannelId channel) const;

    // A channel's short name: the user's where there is one. Empty for no channel.
    std::u16string ChannelName(ChannelId channel) const;

    // A channel's name for a remote: at most 8 characters in upper case.
    std::u16string RemoteLabel(ChannelId channel) const;

    // A moment in UTC days as days in the zone that times of day are shown in: the machine's, or UTC by the user's choice, without
    // a record, or when the zone can't be told.
    double ToDisplayTime(double day) const;

    // Date and time of day in the zone shown. Empty when the zone can't be told.
    std::u16string TimeText(double day) const;

    // The report of last resort: shows the message, returns when the user has closed it, and appends it to the log of the day,
    // silently if that can't be written.
    void WriteSystemLog(std::u16string_view message);

    // --- Configuration files (config/), read when the record is created ---

    // Each first sets its part of the record to its defaults, then takes what the file says, as far as it can be read. True when
    // the file is there and its first element is the right one, whatever follows.
    bool LoadBoatsFile();     // boats.xml: names, MMSIs and colours of the boats
    bool LoadChannelsFile();  // channels.xml: log marks, damping, decimals, and the user channels

    // alternate.csv: what the alternating channels stand for.
    void LoadAlternatesFile();

private:
    void Attach();
    void AttachAsGuest();
    void LoadSavedSettings();
    void LoadSavedPaths();
    void LoadSavedValues();

    bool MayNameDataFolder() const;

    // The own boat's value of a channel, or of what it stands for; kNoValue when there is none.
    double LiveValue(ChannelId channel) const;

    double Now();  // days, by one reading of the clock
    void StampTime(double now);
    // Publishes what follows from a value, and gives the value as it is to be stored.
    double Derived(ChannelId channel, BoatSlot boat, double value, double time, double now);
    void DeriveRate(ChannelId channel, ChannelId rateChannel, BoatSlot boat, double value, double time);
    void StoreDerived(ChannelId channel, BoatSlot boat, double value, double time);

    CoreServices services_;
    std::array<CalibrationObject, kCalibrationCount> calibrations_;
    std::int64_t ticks_ = 0;  // the last reading of Now()
    double days_ = DaysFromTicks(0);
    double gunMark_ = 0.0;
    std::unique_ptr<SharedBlock> mapping_;  // null when creation failed
    CoreRecord* view_ = nullptr;
    const double attachedAt_;  // days
};

}  // namespace twr
