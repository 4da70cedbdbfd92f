// SPDX-License-Identifier: MIT
// Files and settings that are newer than what is in force.
#include <cstring>

#include "base/wide_text.h"
#include "config/saved_settings.h"
#include "core/record_access.h"
#include "halyrigctl/check/check_setup.h"
#include "platform/files.h"

namespace twr {
namespace {

// What differs between the record in force and the one that a start would make: the first, in words; empty if nothing does.
class Difference {
public:
    Difference(const CoreRecord& inForce, const CoreRecord& renewed) : old_(inForce), new_(renewed) {}

    std::string OfChannels() const {
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            const ChannelRow &a = old_.channels[channel], &b = new_.channels[channel];
            if (!Same(a.log, b.log) || !Same(a.damp, b.damp) || !Same(a.prec, b.prec) || !Same(a.type, b.type) ||
                FieldText(a.userName) != FieldText(b.userName) || FieldText(a.userShortName) != FieldText(b.userShortName)) {
                return "channel " + std::to_string(channel);
            }
        }
        return {};
    }

    std::string OfBoats() const {
        for (BoatSlot slot = 0; slot < kBoatCount; ++slot) {
            const BoatRow &a = old_.boats[slot], &b = new_.boats[slot];
            if (!Same(a.mmsi, b.mmsi) || !Same(a.colour, b.colour) || FieldText(a.name) != FieldText(b.name))
                return "boat " + std::to_string(slot);
        }
        return {};
    }

    std::string OfAlternates() const {
        for (std::size_t row = 0; row < kAlternateCount; ++row) {
            for (std::size_t slot = 0; slot < kAlternateSlots; ++slot) {
                if (!Same(old_.alternates[row].slot[slot], new_.alternates[row].slot[slot])) return "row " + std::to_string(row);
            }
        }
        return {};
    }

    std::string OfSettings() const {
        for (std::size_t i = 0; i < kSavedValues; ++i) {
            if (!Same(old_.sysValue[i], new_.sysValue[i])) return "Sys_v" + std::to_string(i);
        }
        for (std::size_t i = 0; i < kSavedFlags; ++i) {
            if (!Same(old_.sysFlag[i], new_.sysFlag[i])) return "Sys_b" + std::to_string(i);
        }
        for (std::size_t i = 0; i < kSavedInts; ++i) {
            if (!Same(old_.sysInt[i], new_.sysInt[i])) return "Sys_i" + std::to_string(i);
        }
        if (!SameFolder()) return "DataFolder";
        if (FieldText(old_.databasePath) != FieldText(new_.databasePath)) return "Database2";
        return FieldText(old_.marksXmlPath) != FieldText(new_.marksXmlPath) ? "MarksXml" : "";
    }

    bool SameFolder() const { return FieldText(old_.dataFolder) == FieldText(new_.dataFolder); }

private:
    template <class Number>
    static bool Same(const Number& left, const Number& right) {
        return Load(left) == Load(right);
    }

    const CoreRecord& old_;
    const CoreRecord& new_;
};

void AddOld(const CheckedSetup& setup, const std::u16string& path, const std::string& first) {
    if (!first.empty()) setup.Add(Weight::kOld, path, 0, Fault(Reason::kNotInForce, {first}));
}

void CheckRecord(const CheckedSetup& setup) {
    const Difference difference(*setup.core.View(), *setup.renewed.View());
    AddOld(setup, setup.services.registry.PlaceOf(kSavedSettingsKey, {}).path, difference.OfSettings());
    if (!difference.SameFolder()) return;
    const std::u16string folder = JoinPath(setup.report.dataFolder, u"config");
    AddOld(setup, JoinPath(folder, u"channels.xml"), difference.OfChannels());
    AddOld(setup, JoinPath(folder, u"boats.xml"), difference.OfBoats());
    AddOld(setup, JoinPath(folder, u"alternate.csv"), difference.OfAlternates());
}

// The files that the bridge reads again whenever the Dfw folder is chosen.
void CheckRead(const CheckedSetup& setup, const std::u16string& path, double readAt) {
    const auto changed = setup.services.files.ChangedAt(path);
    if (path.empty() || !changed || DaysFromTicks(*changed) <= readAt) return;
    setup.Add(Weight::kOld, path, 0, Fault(Reason::kChangedSinceRead));
}

}  // namespace

void CheckWhatIsOld(const CheckedSetup& setup) {
    if (setup.live) CheckRecord(setup);
    if (!setup.now.bridge) return;
    const double readAt = setup.now.bridge->mapping.readAt;
    CheckRead(setup, setup.now.TheMapping().path, readAt);
    if (!setup.report.given) CheckRead(setup, setup.now.Variables().path, readAt);
}

}  // namespace twr
