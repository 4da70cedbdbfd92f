// SPDX-License-Identifier: MIT
// What the readers of the user's files pass over, for whoever wants to know. A reader works the same with and without.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace twr {

enum class Flaw {
    // Any file.
    kByteOrderMark,  // it spoils the first line
    kLineNotRead,    // text: the form of a line that is read
    kLineCut,        // it is longer than kLongestLine
    kFileCut,        // it is larger than kLargestFile; nothing behind this line is read
    kReadFailed,     // text: the system's words; nothing from there on is read

    // Any file in XML.
    kNotWellFormed,     // text: the parser's words, may be empty; nothing from there on is read
    kOtherRoot,         // text: the root that it must have; nothing is read
    kUnknownElement,    // text: its name
    kUnknownAttribute,  // text: its name
    kEmptyAttribute,    // text: its name
    kNotANumber,        // text: name="value"; the mapping takes it as missing, a configuration file as 0
    kOutOfRange,        // text: name="value"; it is not used, or only its low bits are
    kChannelMissing,    // the line names none
    kNoSuchChannel,     // text: its number
    kNoSuchBoat,        // text: its number

    // The mapping, and those of older installations.
    kVariableMissing,  // the line names none
    kNoSuchVariable,   // text: its name or number
    kRemoteMissing,    // the line names none
    kNoSuchRemote,     // text: its number

    // The configuration files.
    kIdMissing,        // the element has no effect
    kIdNotFirst,       // text: the name of an attribute before it, which has no effect
    kNoDecimals,       // prec on a channel whose texts have a form of their own
    kNoSuchType,       // text: its number; it counts as a plain number
    kNotDampable,      // damp on such a channel
    kNotUsersChannel,  // text: the name of an attribute that only user channels have
    kCut,              // text: as much as fits
    kSemicolons,       // in the place of commas
    kNoSuchRow,        // text: its number

    // Deckman's list of variables.
    kNoVariables,  // it has no section of them
    kListEnds,     // nothing from this line on is read

    // The registry, whose lines are those of its file, if it has one.
    kStoreNotRead,    // text: why; nothing of it is
    kKeyNotRead,      // nothing below it is
    kOtherKey,        // text: the root with which it must begin; nothing below it is read
    kValueNotRead,    // it isn't written as a value
    kNotAText,        // of another type, or too long
    kNotADword,       // of another type
    kTextNotANumber,  // text: the text
    kBounded,         // text: the number in force instead
    kNoSuchFolder,    // text: its path
    kUnknownSetting,  // no program has a value of this name here
    kForeignSetting,  // the bridge does not read it
};

inline constexpr std::size_t kFlawCount = static_cast<std::size_t>(Flaw::kForeignSetting) + 1;

struct Finding {
    std::u16string path;
    std::size_t line;    // from 1; 0: the file as a whole
    std::size_t column;  // from 1; 0: the whole line
    Flaw flaw;
    std::u16string text;
    std::u16string of = {};  // what it is about, as it stands in the file: an element, a line, a value; may be empty
};

class Findings {
public:
    virtual ~Findings() = default;

    virtual void Add(Finding finding) = 0;
};

class CollectedFindings : public Findings {
public:
    void Add(Finding finding) override { found.push_back(std::move(finding)); }

    std::vector<Finding> found;
};

// Where a reader reports what it passes over at one place of a file. Without findings a report is one comparison.
struct Place {
    Findings* findings = nullptr;
    std::u16string_view path = {};
    std::size_t line = 0;
    std::size_t column = 0;
    std::u16string_view of = {};

    Place At(std::size_t itsLine, std::size_t itsColumn = 0) const { return {findings, path, itsLine, itsColumn, {}}; }
    Place Of(std::u16string_view spelled) const { return {findings, path, line, column, spelled}; }

    // Returns false, which is what a reader that refuses a line returns.
    bool Report(Flaw flaw, std::u16string_view text = {}) const {
        if (findings) findings->Add({std::u16string(path), line, column, flaw, std::u16string(text), std::u16string(of)});
        return false;
    }
};

}  // namespace twr
