// What the readers of the user's files pass over, for whoever wants to know. A reader works the same with and without.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace twr {

enum class Flaw {
    // Any file in XML.
    kNotWellFormed,     // text: the parser's words, may be empty; nothing from there on is read
    kUnknownElement,    // text: its name
    kUnknownAttribute,  // text: its name
    kNotANumber,        // text: name="value"; the attribute counts as missing

    // The mapping.
    kChannelMissing,   // the line names none
    kNoSuchChannel,    // text: its number
    kNoSuchBoat,       // text: its number
    kVariableMissing,  // the line names none
    kNoSuchVariable,   // text: its name or number
    kRemoteMissing,    // the line names none
    kNoSuchRemote,     // text: its number
};

struct Finding {
    std::u16string path;
    std::size_t line;    // from 1; 0: the file as a whole
    std::size_t column;  // from 1; 0: the whole line
    Flaw flaw;
    std::u16string text;
};

class Findings {
public:
    virtual ~Findings() = default;

    virtual void Add(Finding finding) = 0;
};

// Where a reader reports what it passes over at one place of a file. Without findings a report is one comparison.
struct Place {
    Findings* findings = nullptr;
    std::u16string_view path = {};
    std::size_t line = 0;
    std::size_t column = 0;

    Place At(std::size_t itsLine, std::size_t itsColumn = 0) const { return {findings, path, itsLine, itsColumn}; }

    // Returns false, which is what a reader that refuses a line returns.
    bool Report(Flaw flaw, std::u16string_view text = {}) const {
        if (findings) findings->Add({std::u16string(path), line, column, flaw, std::u16string(text)});
        return false;
    }
};

}  // namespace twr
