#include "halyrigctl/setup/finding_words.h"

#include <iterator>

namespace twr {
namespace {

// {} stands for the finding's text.
struct FlawWords {
    Flaw flaw;
    std::string_view word, what, todo;
};

constexpr FlawWords kWords[] = {
    {Flaw::kByteOrderMark, "byte-order-mark", "the byte-order mark at the start of the file spoils this line",
     "save the file without one, as ANSI or plain UTF-8"},
    {Flaw::kLineNotRead, "line-not-read", "the line can't be read", "write it as {}"},
    {Flaw::kLineCut, "line-cut", "the line is longer than 1 MiB, and only its start is read", "shorten it"},
    {Flaw::kFileCut, "file-cut", "the file is larger than 64 MiB, and nothing behind this line is read", "shorten it"},
    {Flaw::kReadFailed, "read-failed", "reading it fails ({}), and nothing from here on is used",
     "see whether the disk is sound and this user may read the file"},
    {Flaw::kNotWellFormed, "not-well-formed", "from here on it is not XML, and nothing behind is read{}", "mend the line"},
    {Flaw::kOtherRoot, "other-root", "the file begins with another element, and nothing of it is read", "begin it with <{}>"},
    {Flaw::kUnknownElement, "unknown-element", "there is no element {}", "check how it is spelled"},
    {Flaw::kUnknownAttribute, "unknown-attribute", "there is no attribute {}", "check how it is spelled"},
    {Flaw::kEmptyAttribute, "empty-attribute", "{} is empty and counts as missing", "give it a value, or leave it out"},
    {Flaw::kNotANumber, "not-a-number", "{} is not a number", "write a number"},
    {Flaw::kOutOfRange, "out-of-range", "{} is out of range", "choose another number"},
    {Flaw::kChannelMissing, "channel-missing", "it names no channel", "give its number as twr"},
    {Flaw::kNoSuchChannel, "no-such-channel", "there is no channel {}", "'halyrigctl channels' lists them, 1 to 413"},
    {Flaw::kNoSuchBoat, "no-such-boat", "there is no boat {}", "the boats are 0 to 99"},
    {Flaw::kVariableMissing, "variable-missing", "it names no variable of Deckman", "give its name as dfw"},
    {Flaw::kNoSuchVariable, "no-such-variable", "Deckman's list has no variable {}", "capitals count"},
    {Flaw::kRemoteMissing, "remote-missing", "it names no remote", "give its number as remote"},
    {Flaw::kNoSuchRemote, "no-such-remote", "there is no remote {}", "they count from 1"},
    {Flaw::kIdMissing, "id-missing", "it has no id, so it has no effect", "give the id first"},
    {Flaw::kIdNotFirst, "id-not-first", "{} stands before id and has no effect", "put id first"},
    {Flaw::kNoDecimals, "no-decimals", "prec has no effect, since the channel's values have no decimals", "leave it out"},
    {Flaw::kNoSuchType, "no-such-type", "there is no type {}, and it counts as a plain number", "see the types in channels.md"},
    {Flaw::kNotDampable, "not-dampable", "damp has no effect, since the channel can't be damped", "leave it out"},
    {Flaw::kNotUsersChannel, "not-a-user-channel", "{} has no effect here", "use one of the user channels, 172 to 203"},
    {Flaw::kCut, "cut", "the name is too long and is cut to {}", "choose one of at most 31 characters"},
    {Flaw::kSemicolons, "semicolons", "the line has semicolons in the place of commas and is not read",
     "save the file with commas: {}"},
    {Flaw::kNoSuchRow, "no-such-row", "there is no row {}", "the rows are 0 to 9, for channels 117 to 126"},
    {Flaw::kNoVariables, "no-variables", "it has no line [variables], so it names none", "restore Deckman's own file"},
    {Flaw::kListEnds, "list-ends", "Deckman's list is read only up to here: the line has no six columns, or its number falls",
     "mend the line"},
    {Flaw::kStoreNotRead, "settings-not-read", "the settings can't be read: {}", "give this user a plain file to read"},
    {Flaw::kKeyNotRead, "key-not-read", "the key can't be read, nor anything below it", "end it with ]"},
    {Flaw::kOtherKey, "other-key", "this key and all below it are not read", "write it as [{}]"},
    {Flaw::kValueNotRead, "value-not-read", "the value can't be read", "write \"name\"=\"text\" or \"name\"=dword:00000001"},
    {Flaw::kNotAText, "not-a-text", "the value is not read: it is not a text of at most 511 characters", "save it as a text"},
    {Flaw::kNotADword, "not-a-dword", "the value is not read: it is not a DWORD", "save it as a DWORD"},
    {Flaw::kTextNotANumber, "text-not-a-number", "\"{}\" is not a number and is not used", "write a number in the quotation marks"},
    {Flaw::kBounded, "bounded", "the number is out of bounds, and {} is used", "choose another number"},
    {Flaw::kNoSuchFolder, "no-such-folder", "the folder {} does not exist and is not used", "make it, or name another"},
    {Flaw::kUnknownSetting, "unknown-setting", "there is no setting of this name", "check how it is spelled"},
    {Flaw::kForeignSetting, "foreign-setting", "the bridge does not read it",
     "check how it is spelled, unless it is another program's"},
};

constexpr bool AllHaveWords() {
    for (std::size_t i = 0; i < std::size(kWords); ++i) {
        if (kWords[i].flaw != static_cast<Flaw>(i)) return false;
    }
    return std::size(kWords) == kFlawCount;
}
static_assert(AllHaveWords(), "in the order of the flaws");

const FlawWords& WordsOf(Flaw flaw) { return kWords[static_cast<std::size_t>(flaw)]; }

std::string Filled(std::string_view pattern, const std::string& text) {
    std::string filled(pattern);
    if (const auto at = filled.find("{}"); at != filled.npos) filled.replace(at, 2, text);
    return filled;
}

}  // namespace

Advice AdviceFor(const Finding& finding) {
    const FlawWords& words = WordsOf(finding.flaw);
    std::string text = Harmless(finding.text);
    if (finding.flaw == Flaw::kNotWellFormed && !text.empty()) text = " (" + text + ")";
    const bool number = !text.empty() && text.front() >= '0' && text.front() <= '9';
    if (finding.flaw == Flaw::kNoSuchVariable && number)
        return {Filled(words.what, text), "its numbers may have changed; use names"};
    return {Filled(words.what, text), Filled(words.todo, text)};
}

bool ComplainOfUnread(Console& console, const std::vector<Finding>& findings) {
    bool any = false;
    for (const Finding& finding : findings) {
        if (finding.flaw != Flaw::kReadFailed) continue;
        any = true;
        Complain(console,
                 Harmless(finding.path) + (finding.line > 0 ? ":" + std::to_string(finding.line) : "") + ": " + Words(finding));
    }
    return any;
}

std::string_view WordFor(Flaw flaw) { return WordsOf(flaw).word; }

}  // namespace twr
