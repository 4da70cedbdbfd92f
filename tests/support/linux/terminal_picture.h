// What a terminal shows, made from what was written to it: as much of an xterm as a full-screen program needs.
#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace twr::testing {

struct PictureCell {
    std::string character = " ";  // UTF-8
    bool reversed = false;
};

struct PicturePlace {
    int row, column;
};

class TerminalPicture {
public:
    TerminalPicture(int rows, int columns) { Resize(rows, columns); }

    void Resize(int rows, int columns);
    void Write(std::string_view bytes);

    bool OnOwnScreen() const { return ownScreen_; }  // and not on the shell's

    std::string Row(int row) const;
    std::string All() const;  // rows end in line feeds, without the blanks at their ends
    std::string Reversed() const;

    // Where a text begins that stands within one row.
    std::optional<PicturePlace> Find(std::string_view text) const;

private:
    using Line = std::vector<PictureCell>;

    void Put(std::string character);
    void Control(char byte);
    bool Sequence(std::string_view& bytes);  // false while it is not complete
    void Act(char final, const std::string& parameters);
    void SelectModes(const std::string& parameters, bool on);
    void SelectStyle(const std::string& parameters);
    void Erase(int row, int from, int to);
    Line& Current() { return lines_[static_cast<std::size_t>(row_)]; }

    int rows_ = 0, columns_ = 0;
    std::vector<Line> lines_;
    int row_ = 0, column_ = 0;
    bool reversed_ = false;
    bool ownScreen_ = false;
    std::string pending_;  // the beginning of something
    std::string last_ = " ";
};

}  // namespace twr::testing
