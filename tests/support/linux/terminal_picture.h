// What a terminal shows, made from what was written to it.
#pragma once
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct VTerm;
struct VTermScreen;

namespace twr::testing {

struct PicturePlace {
    int row, column;
};

class TerminalPicture {
public:
    TerminalPicture(int rows, int columns);
    ~TerminalPicture();
    TerminalPicture(const TerminalPicture&) = delete;
    TerminalPicture& operator=(const TerminalPicture&) = delete;

    void Resize(int rows, int columns);
    void Write(std::string_view bytes);

    bool OnOwnScreen() const { return ownScreen_; }  // and not on the shell's

    std::string All() const;       // UTF-8, rows end in line feeds
    std::string Reversed() const;  // the characters shown reversed

    // Where a text within one row begins.
    std::optional<PicturePlace> Find(std::string_view text) const;

private:
    struct Cell {
        std::string character;
        bool reversed;
    };

    Cell CellAt(int row, int column) const;
    std::string Row(int row, bool onlyReversed) const;

    int rows_, columns_;
    VTerm* const terminal_;
    VTermScreen* const screen_;
    bool ownScreen_ = false;
};

}  // namespace twr::testing
