// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/file_faults.h"

#include <algorithm>
#include <iterator>

namespace twr {
namespace {

std::string NameIn(std::u16string_view path) { return Harmless(path.substr(path.rfind(kPathSeparator) + 1)); }

Fault NotPermitted(std::u16string_view path, const Denial& denial) {
    const std::string which = denial.path == path ? "it" : Harmless(denial.path);
    const std::string right = std::string(denial.isFolder ? "+rx " : "+r ") + Harmless(denial.path);
    return Fault(
        Reason::kNotPermitted, {Harmless(path), which, denial.owner, denial.mode},
        denial.isOwn ? "allow it: chmod u" + right : "have " + denial.owner + " or an administrator allow it: chmod a" + right);
}

}  // namespace

Fault FaultOnTheWay(const Files& files, std::u16string_view path) {
    if (const auto denial = files.DeniedAt(path)) return NotPermitted(path, *denial);
    for (std::size_t end = path.find(kPathSeparator, 1);; end = path.find(kPathSeparator, end + 1)) {
        const std::u16string_view level = path.substr(0, end);
        if (!files.Exists(level)) {
            const std::u16string other = files.InOtherCase(level);
            return other.empty() ? Fault() : Fault(Reason::kNameInOtherCase, {Harmless(level), NameIn(other), NameIn(level)});
        }
        if (end == path.npos) return {};
    }
}

std::string PlaceInWords(std::u16string_view path, std::size_t line) {
    return Harmless(path) + (line > 0 ? ":" + std::to_string(line) : "") + ": ";
}

Fault FaultOfFinding(const Files& files, const Finding& finding, Reason reason) {
    if (finding.flaw == Flaw::kReadFailed || finding.flaw == Flaw::kStoreNotRead) {
        if (Fault fault = FaultOnTheWay(files, finding.path)) return fault;
    }
    const Advice advice = AdviceFor(finding);
    return Fault(reason, {PlaceInWords(finding.path, finding.line) + advice.what}, advice.todo);
}

bool EndsReading(Flaw flaw) {
    constexpr Flaw kEnds[] = {Flaw::kFileCut, Flaw::kReadFailed, Flaw::kNotWellFormed, Flaw::kNoVariables, Flaw::kListEnds};
    return std::ranges::find(kEnds, flaw) != std::end(kEnds);
}

}  // namespace twr
