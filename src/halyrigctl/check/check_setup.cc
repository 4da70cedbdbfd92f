// SPDX-License-Identifier: MIT
#include "halyrigctl/check/check_setup.h"

#include <algorithm>
#include <cmath>

#include "base/wide_text.h"
#include "core/days.h"
#include "core/record_access.h"
#include "deckman/deckman_library.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/recordings/board_time.h"
#include "halyrigctl/recordings/day_files.h"
#include "halyrigctl/setup/dry_run.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/setup/reasons.h"
#include "mapping/legacy_import.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr std::size_t kLongestQuote = 100;            // characters of a line
constexpr double kIdleAfter = 10.0 / kSecondsPerDay;  // days

// The settings whose loss may be why the folders are wrong.
bool NamesAFolder(const Finding& finding) {
    return finding.of.find(u"DfwFolder") != finding.of.npos || finding.of.find(u"DataFolder") != finding.of.npos;
}

Weight WeightOf(const Finding& finding) {
    switch (finding.flaw) {
        case Flaw::kStoreNotRead:
        case Flaw::kKeyNotRead:
        case Flaw::kOtherKey:
        case Flaw::kUnknownSetting:
            return Weight::kSettings;
        case Flaw::kForeignSetting:
            return Weight::kNote;
        default:
            return NamesAFolder(finding) ? Weight::kSettings : Weight::kConfig;
    }
}

// A bridge that can't start, can't be seen, stands still, or has a record that can't be found.
void CheckBridge(const CheckedSetup& setup, System& system) {
    const auto add = [&](const Fault& fault) { setup.Add(Weight::kBridge, {}, 0, fault); };
    if (!setup.live) {
        const MemoryFault refused = CCore::FaultOfRecord(system.Core());
        if (RecordIsLost(system)) return add(Fault(Reason::kRecordGone));
        if (!refused.what.empty()) return add(Fault(Reason::kRecordRefused, {refused.what, refused.todo}));
    }
    if (!system.Core().zone.Now()) setup.Add(Weight::kNote, {}, 0, Fault(Reason::kNoZone));
    if (Fault still = setup.now.Standstill()) return add(still);
    if (setup.now.bridge || setup.now.name.state == NameLook::kFree) return;
    const bool runs = setup.now.name.state == NameLook::kTaken;  // it needs no status to do its work
    setup.Add(runs ? Weight::kNote : Weight::kBridge, {}, 0, setup.now.WithoutBridge());
}

void CheckLibrary(const CheckedSetup& setup) {
    const std::u16string& folder = setup.now.settings.dfwFolder;
    const LibraryLook& look = setup.now.Library();
    setup.report.library = {look.fault, look.missing};
    if (look.fault) {  // lost settings are told already
        if (look.fault.reason != Reason::kSettingsNotRead) setup.Add(Weight::kLibrary, folder, 0, look.fault);
    } else if (!setup.report.given && setup.now.bridge && !setup.now.bridge->library.loaded) {
        setup.Add(Weight::kLibrary, folder, 0, Fault(Reason::kLoadsNow));
    }
    for (const std::string& function : look.missing) {
        setup.Add(function == kUsrRead ? Weight::kLibrary : Weight::kLine, folder, 0,
                  Fault(Reason::kFunctionMissing, {Harmless(folder), function, ""}));
    }
}

// Without the folder or the library the list is missing for the same reason.
void CheckVariables(const CheckedSetup& setup) {
    const DeckmanCatalogue& list = setup.now.Variables();
    const bool timer = list.timerVariableId != -1;
    setup.report.variables = {list.path, list.rows.size(), timer};
    if (list.rows.empty()) {
        if (!setup.report.library.fault) setup.Add(Weight::kVariables, {}, 0, setup.now.NoVariables());
        return;
    }
    // The lines of the mapping that this costs are told with it.
    for (const Finding& finding : setup.now.PassedOverInVariables()) {
        if (finding.path == list.path && !EndsReading(finding.flaw)) setup.Add(Weight::kLine, finding);
    }
    if (Fault cut = setup.now.ListCutShort()) {
        const auto lost = std::ranges::count(setup.now.TheMapping().faults, Flaw::kNoSuchVariable, &Finding::flaw);
        if (lost > 0)
            cut.what += ", and " + Counted(static_cast<std::size_t>(lost), "line") + " of the mapping can't be used for it";
        setup.Add(lost > 0 ? Weight::kVariables : Weight::kLine, {}, 0, cut);
    }
    if (setup.now.settings.useTimer && !timer) setup.Add(Weight::kLine, list.path, 0, Fault(Reason::kNoTimer));
}

void CheckLegacy(const CheckedSetup& setup) {
    Files& files = setup.services.files;
    const std::u16string folder = JoinPath(setup.report.dataFolder, u"halyrig"), vars = JoinPath(folder, u"halyrig.csv"),
                         remotes = JoinPath(folder, u"halyrigremotes.csv");
    CollectedFindings heard;
    const auto note = [&](const std::u16string& path, std::size_t rows) {
        if (!files.Exists(path)) return;
        setup.Add(Weight::kNote, path, 0, Fault(Reason::kOlderMapping, {Counted(rows, "line") + " of it"}));
    };
    const auto rows = ImportLegacyVars(files, vars, setup.now.Variables().rows, &heard);
    const auto unlisted = std::erase_if(heard.found, [&](const Finding& finding) { return setup.now.IsForLackOfList(finding); });
    note(vars, (rows ? rows->size() : 0) + unlisted);
    note(remotes, ImportLegacyRemotes(files, remotes, &heard).size());
    for (const Finding& finding : heard.found) setup.Add(Weight::kNote, finding);
}

void CheckRecording(const CheckedSetup& setup, const CoreServices& machine) {
    const BoardZone board(setup.core, machine.zone);
    const auto text = [&](std::optional<double> moment) {
        std::string shown;
        if (moment) board.Append(shown, std::floor(*moment * kSecondsPerDay) / kSecondsPerDay);
        return shown;
    };
    DaysKept days = LookAtDays(machine.files, RecordingsFolder(setup.report.dataFolder));
    // A recorder that waits for the suite, or for the disk, has written the newest file long ago, if it was this one at all.
    if (days.runs && days.until && UtcNowDays(machine.clock) - *days.until > kIdleAfter) days.since.reset();
    setup.report.recording = {days.runs, days.newest, text(days.since), text(days.until), days.room, days.isFull};
}

}  // namespace

void CheckedSetup::Add(Weight weight, const Finding& finding) const {
    Advice says = AdviceFor(finding);
    const Fault because = now.Because(finding, Reason::kNone);
    if (because.reason != Reason::kNone) return Add(weight, {}, 0, because);
    if (finding.flaw == Flaw::kNoSuchVariable) {
        std::vector<std::u16string> names;
        for (const DeckmanVariable& row : now.Variables().rows) names.push_back(row.dfwName);
        if (const auto nearest = Nearest(finding.text, names)) says.todo = "did you mean " + Harmless(*nearest) + "?";
    }
    if (!finding.of.empty()) says.what = Cut(Harmless(finding.of), kLongestQuote) + ": " + says.what;
    Add({weight, finding.path, finding.line, finding.column, WordFor(finding.flaw), std::move(says)});
}

CheckReport LookAtSetup(System& system, const std::optional<std::u16string>& folder) {
    CheckReport report;
    CollectedFindings heard;
    const CoreServices machine = system.Core();
    machine.registry.Check(heard);  // first: what it reports is not told at each reading again
    const std::size_t ofStore = heard.found.size();
    DryRun dryRun(machine, &heard);
    ReadSettings(machine.registry, &heard);
    CCore guest(machine, Attachment::kOpenOnly);
    const bool live = guest.View() != nullptr;
    CCore& core = live ? guest : dryRun.Core();
    Circumstances now(system, core, folder);
    const CheckedSetup setup{dryRun.Services(), now, core, live, dryRun.Core(), report};
    report.running = now.BridgeRuns();
    report.inForce = now.bridge.has_value();
    report.given = folder.has_value();
    report.settings = now.settings;
    report.dataFolder = now.DataFolder();
    report.dataFolderExists = machine.files.Exists(report.dataFolder);
    for (std::size_t i = 0; i < heard.found.size(); ++i) {
        const bool lost = i < ofStore && heard.found[i].flaw == Flaw::kLineNotRead;
        setup.Add(lost ? Weight::kSettings : WeightOf(heard.found[i]), heard.found[i]);
    }
    for (const char16_t* file : {u"channels.xml", u"boats.xml", u"alternate.csv"}) {
        const Fault fault = FaultOnTheWay(machine.files, now.ConfigPath(file));
        if (fault.reason == Reason::kNameInOtherCase) setup.Add(Weight::kConfig, {}, 0, fault);
    }
    CheckBridge(setup, system);
    CheckLibrary(setup);
    CheckVariables(setup);
    CheckMapping(setup);
    CheckFeeding(setup);
    CheckWhatIsOld(setup);
    CheckLegacy(setup);
    CheckRecording(setup, machine);
    report.Sort();
    return report;
}

Status Check(System& system, const CheckOptions& options) {
    const auto folder = options.folder ? std::optional(FromUtf8(*options.folder)) : std::nullopt;
    const CheckReport report = LookAtSetup(system, folder);
    const Status printed = Print(system.GetConsole(), options.json      ? CheckAsJson(report)
                                                      : options.summary ? CheckAsSummary(report)
                                                                        : CheckAsText(report));
    return report.Faults() > 0 ? kFailed : printed;
}

}  // namespace twr
