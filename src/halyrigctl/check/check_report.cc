// SPDX-License-Identifier: MIT
#include "halyrigctl/check/check_report.h"

#include <algorithm>

#include "base/wide_text.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/reasons.h"

namespace twr {
namespace {

constexpr std::size_t kInSummary = 3;  // findings

std::string Digits(std::size_t number) { return std::to_string(number); }

bool Stops(const CheckFinding& finding) {
    return finding.weight == Weight::kBridge || (finding.weight >= Weight::kLibrary && finding.weight <= Weight::kMapping);
}

// One cause for many lines of a file.
bool IsSameCause(const CheckFinding& left, const CheckFinding& right) {
    const bool isShared = left.flaw == WordFor(Flaw::kSemicolons) || left.flaw == WordFor(Reason::kBoxAndUnitDiffer) ||
                          (left.flaw == WordFor(Flaw::kLineNotRead) && left.weight == Weight::kSettings);
    return isShared && right.flaw == left.flaw && right.path == left.path && right.says.todo == left.says.todo;
}

bool IsNote(const CheckFinding& finding) { return finding.weight == Weight::kNote; }

const char* StatusWord(const CheckReport& report) {
    return report.Faults() == 0 ? "well" : std::ranges::any_of(report.findings, Stops) ? "nothing-comes" : "passed-over";
}

std::string Verdict(const CheckReport& report) {
    const std::string bridge = report.running ? "" : " (" HALYRIG_PROGRAM " is not running)";
    if (report.Faults() == 0) {
        const auto& mapping = report.mapping;
        return "All is well: " + Digits(mapping.used) + " of " + Digits(mapping.lines) + " variables mapped, " +
               Counted(mapping.remotes, "remote") + bridge;
    }
    const std::string faults = Counted(report.Faults(), "fault");
    if (std::ranges::any_of(report.findings, Stops))
        return "Nothing can come from Deckman; " + faults + ", the cause first" + bridge;
    return faults + "; all that is not named here is used" + bridge;
}

std::string AsLine(const CheckFinding& finding) {
    std::string place = Harmless(finding.path);
    for (const std::size_t number : {finding.line, finding.column}) {
        if (number > 0) place += ":" + Digits(number);
    }
    return (IsNote(finding) ? "note: " : "") + place + (place.empty() ? "" : ": ") + finding.says.Line() + "\n";
}

std::string OnOff(bool on) { return on ? "on" : "off"; }

std::string Missing(const std::vector<std::string>& functions) {
    std::string text;
    for (const std::string& function : functions) text += (text.empty() ? "" : ", ") + function;
    return text;
}

std::string Gibibytes(std::uint64_t bytes) {
    constexpr std::uint64_t kTenths = (1ULL << 30) / 10;
    return Digits(bytes / kTenths / 10) + "." + Digits(bytes / kTenths % 10) + " GiB";
}

std::string RecordingText(const CheckReport::RecordingPart& recording) {
    if (!recording.room) return "none; 'halyrigctl record' makes one";
    const auto& [running, file, since, until, left, full] = recording;
    const std::string runs = !since.empty()  ? "runs since " + since
                             : until.empty() ? "runs"
                                             : "runs, but nothing is written since " + until;
    const std::string last = file.empty()    ? "none yet"
                             : since.empty() ? "none now"
                                             : "none now; the last from " + since + " to " + until;
    const std::string room = ", " + Gibibytes(*left) + " left" + (full ? ", too little for a recording" : "");
    return (running ? runs : last) + (file.empty() ? "" : ", " + Harmless(file)) + room;
}

std::string Table(const CheckReport& report) {
    std::string table;
    const auto row = [&](const char* name, const std::string& what) { table += Padded(name, 13) + what + "\n"; };
    const Settings& boxes = report.settings;
    const std::string from = report.inForce ? " (in force)" : " (saved)";
    const auto& [path, count, timer] = report.variables;
    const auto& library = report.library;
    row("Dfw folder", Harmless(boxes.dfwFolder) + (report.given ? "" : from));
    row("library", library.fault ? "can't be used" : library.missing.empty() ? "can be used" : "lacks " + Missing(library.missing));
    row("variables", path.empty() ? "none" : Harmless(path) + ": " + Digits(count) + (timer ? " and TIMER" : ", no TIMER"));
    row("boxes", "depth in feet " + OnOff(boxes.depthInFeet) + ", names " + OnOff(boxes.sendNames) + ", TIMER " +
                     OnOff(boxes.useTimer) + ", degrees true " + OnOff(boxes.degreesTrue) + from);
    row("data folder", Harmless(report.dataFolder) + (report.dataFolderExists ? "" : ", which will be made"));
    const auto& mapping = report.mapping;
    row("mapping", !mapping.exists ? "none"
                                   : Harmless(mapping.path) + ": " + Digits(mapping.used) + " of " +
                                         Counted(mapping.lines, "variable") + ", " + Counted(mapping.remotes, "remote"));
    row("recording", RecordingText(report.recording));
    return table;
}

Json FindingAsJson(const CheckFinding& finding) {
    return {{"file", TextOrNull(finding.path)},
            {"line", Told(finding.line > 0, finding.line)},
            {"column", Told(finding.column > 0, finding.column)},
            {"flaw", finding.flaw},
            {"note", IsNote(finding)},
            {"text", finding.says.what},
            {"toDo", Told(!finding.says.todo.empty(), finding.says.todo)}};
}

}  // namespace

std::string Counted(std::size_t number, const std::string& what) { return Digits(number) + " " + what + (number == 1 ? "" : "s"); }

void CheckReport::Sort() {
    for (auto first = findings.begin(); first != findings.end(); ++first) {
        const auto others =
            std::remove_if(first + 1, findings.end(), [&](const CheckFinding& other) { return IsSameCause(*first, other); });
        const auto count = static_cast<std::size_t>(findings.end() - others);
        if (count > 0) first->says.what += " (and " + Counted(count, "line") + " more)";
        findings.erase(others, findings.end());
    }
    std::ranges::stable_sort(findings, {}, &CheckFinding::weight);
}

std::size_t CheckReport::Faults() const {
    return findings.size() - static_cast<std::size_t>(std::ranges::count_if(findings, IsNote));
}

std::string CheckAsText(const CheckReport& report) {
    std::string text = Verdict(report) + "\n";
    for (const CheckFinding& finding : report.findings) text += AsLine(finding);
    return text + "\n" + Table(report);
}

std::string CheckAsSummary(const CheckReport& report) {
    std::string text = Verdict(report) + "\n";
    std::size_t shown = 0;
    for (; shown < std::min(report.Faults(), kInSummary); ++shown) text += AsLine(report.findings[shown]);
    return text + (shown < report.Faults() ? "'halyrigctl check' shows all\n" : "");
}

std::string CheckAsJson(const CheckReport& report) {
    Json findings = Json::array();
    for (const CheckFinding& finding : report.findings) findings.push_back(FindingAsJson(finding));
    const Settings& boxes = report.settings;
    const auto& [fault, missing] = report.library;
    const auto& variables = report.variables;
    const auto& mapping = report.mapping;
    const auto& recording = report.recording;
    return JsonLine({{"status", StatusWord(report)},
                     {"running", report.running},
                     {"folder", TextOrNull(boxes.dfwFolder)},
                     {"dataFolder", TextOrNull(report.dataFolder)},
                     {"library", {{"usable", !fault}, {"fault", Told(bool(fault), fault.what)}, {"missing", missing}}},
                     {"variables", {{"file", TextOrNull(variables.path)}, {"count", variables.count}, {"timer", variables.timer}}},
                     {"boxes",
                      {{"depthInFeet", boxes.depthInFeet},
                       {"sendNames", boxes.sendNames},
                       {"useTimer", boxes.useTimer},
                       {"degreesTrue", boxes.degreesTrue}}},
                     {"mapping",
                      {{"file", TextOrNull(mapping.path)},
                       {"exists", mapping.exists},
                       {"vars", mapping.lines},
                       {"varsUsed", mapping.used},
                       {"remotes", mapping.remotes}}},
                     {"recording",
                      {{"running", recording.running},
                       {"file", TextOrNull(recording.file)},
                       {"since", Told(!recording.since.empty(), recording.since)},
                       {"until", Told(!recording.until.empty(), recording.until)},
                       {"room", Told(recording.room.has_value(), recording.room.value_or(0))}}},
                     {"findings", findings}}) +
           "\n";
}

}  // namespace twr
