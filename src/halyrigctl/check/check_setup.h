// The set-up as the bridge finds it, looked at part by part. Nothing is written and no record made.
#pragma once
#include <optional>
#include <string>

#include "core/core.h"
#include "halyrigctl/check/check_report.h"
#include "halyrigctl/setup/circumstances.h"

namespace twr {

// What the parts are looked at with, and where their findings go.
struct CheckedSetup {
    CoreServices services;
    Circumstances& now;
    CCore& core;     // attached to the record in force, or else to that which a start would make
    bool live;       // the former
    CCore& renewed;  // attached to the record that a start would make
    CheckReport& report;

    void Add(CheckFinding finding) const { report.findings.push_back(std::move(finding)); }
    void Add(Weight weight, const Finding& finding) const;
    void Add(Weight weight, const std::u16string& path, std::size_t line, const Fault& fault) const {
        Add({.weight = weight, .path = path, .line = line, .flaw = WordFor(fault.reason), .says = fault});
    }
};

// `folder`: the Dfw folder to be looked at, in place of the one in force or saved. `pulse`: what was seen of the bridge's ticks
// before; without it, whether the bridge ticks is waited for.
CheckReport LookAtSetup(System& system, const std::optional<std::u16string>& folder, const BridgePulse& pulse = {});

// Each adds what it finds to the report.
void CheckMapping(const CheckedSetup& setup);    // check_mapping.cc
void CheckFeeding(const CheckedSetup& setup);    // check_feeding.cc
void CheckWhatIsOld(const CheckedSetup& setup);  // check_what_is_old.cc

}  // namespace twr
