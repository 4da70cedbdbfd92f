#include "support/linux/terminal_picture.h"

#include <algorithm>
#include <cstdlib>

namespace twr::testing {
namespace {

// The numbers between semicolons; `missing` for an empty one.
std::vector<int> Numbers(const std::string& parameters, int missing) {
    std::vector<int> numbers;
    for (std::size_t begin = 0; begin <= parameters.size();) {
        const std::size_t end = std::min(parameters.find(';', begin), parameters.size());
        numbers.push_back(end > begin ? std::atoi(parameters.c_str() + begin) : missing);
        begin = end + 1;
    }
    return numbers;
}

std::size_t LengthOfCharacter(unsigned char first) { return first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4; }

}  // namespace

void TerminalPicture::Resize(int rows, int columns) {
    rows_ = rows;
    columns_ = columns;
    lines_.resize(static_cast<std::size_t>(rows));
    for (Line& line : lines_) line.resize(static_cast<std::size_t>(columns));
    row_ = std::min(row_, rows - 1);
    column_ = std::min(column_, columns - 1);
}

void TerminalPicture::Write(std::string_view written) {
    const std::string all = pending_ + std::string(written);
    std::string_view bytes = all;
    while (!bytes.empty()) {
        const char first = bytes[0];
        if (first == '\033') {
            if (!Sequence(bytes)) break;
            continue;
        }
        const std::size_t length = LengthOfCharacter(static_cast<unsigned char>(first));
        if (bytes.size() < length) break;
        if (static_cast<unsigned char>(first) < ' ') {
            Control(first);
        } else {
            Put(std::string(bytes.substr(0, length)));
        }
        bytes.remove_prefix(length);
    }
    pending_ = bytes;
}

void TerminalPicture::Control(char byte) {
    if (byte == '\r') column_ = 0;
    if (byte == '\n') row_ = std::min(row_ + 1, rows_ - 1);
    if (byte == '\b') column_ = std::max(column_ - 1, 0);
}

bool TerminalPicture::Sequence(std::string_view& bytes) {
    if (bytes.size() < 2) return false;
    if (bytes[1] != '[') {
        const std::size_t length = bytes[1] == '(' || bytes[1] == ')' ? 3 : 2;
        if (bytes.size() < length) return false;
        bytes.remove_prefix(length);
        return true;
    }
    const auto* const final = std::ranges::find_if(bytes.substr(2), [](char c) { return c >= '@' && c <= '~'; });
    if (final == bytes.end()) return false;
    const auto length = static_cast<std::size_t>(final - bytes.begin()) + 1;
    Act(*final, std::string(bytes.substr(2, length - 3)));
    bytes.remove_prefix(length);
    return true;
}

void TerminalPicture::Act(char final, const std::string& parameters) {
    if (final == 'm') return SelectStyle(parameters);
    if (parameters.starts_with('?')) return SelectModes(parameters.substr(1), final == 'h');
    const auto numbers = Numbers(parameters, 0);
    const int count = std::max(1, numbers[0]);
    const auto at = [this] { return Current().begin() + column_; };
    switch (final) {
        case 'H':
            row_ = count - 1;
            column_ = numbers.size() > 1 ? std::max(1, numbers[1]) - 1 : 0;
            break;
        case 'G':
            column_ = count - 1;
            break;
        case 'd':
            row_ = count - 1;
            break;
        case 'A':
            row_ -= count;
            break;
        case 'B':
            row_ += count;
            break;
        case 'C':
            column_ += count;
            break;
        case 'D':
            column_ -= count;
            break;
        case 'J':
            if (numbers[0] == 2) Erase(row_, 0, columns_);
            if (numbers[0] == 2) std::ranges::for_each(lines_, [](Line& line) { std::ranges::fill(line, PictureCell{}); });
            if (numbers[0] == 0) Erase(row_, column_, columns_);
            for (int below = row_ + 1; numbers[0] == 0 && below < rows_; ++below) Erase(below, 0, columns_);
            break;
        case 'K':
            Erase(row_, numbers[0] == 0 ? column_ : 0, numbers[0] == 1 ? column_ + 1 : columns_);
            break;
        case 'X':
            Erase(row_, column_, std::min(columns_, column_ + count));
            break;
        case 'P':
            Current().erase(at(), at() + std::min(count, columns_ - column_));
            break;
        case '@':
            Current().insert(at(), static_cast<std::size_t>(count), PictureCell{});
            break;
        case 'b':
            for (int i = 0; i < count; ++i) Put(last_);
            break;
        default:
            break;
    }
    Resize(rows_, columns_);
    row_ = std::max(0, row_);
    column_ = std::max(0, column_);
}

void TerminalPicture::SelectModes(const std::string& parameters, bool on) {
    for (const int mode : Numbers(parameters, 0)) {
        if (mode == 1049) ownScreen_ = on;
    }
}

void TerminalPicture::SelectStyle(const std::string& parameters) {
    for (const int style : Numbers(parameters, 0)) {
        if (style == 0 || style == 27) reversed_ = false;
        if (style == 7) reversed_ = true;
    }
}

void TerminalPicture::Put(std::string character) {
    last_ = character;
    if (column_ >= columns_) {
        column_ = 0;
        row_ = std::min(row_ + 1, rows_ - 1);
    }
    Current()[static_cast<std::size_t>(column_++)] = {std::move(character), reversed_};
}

void TerminalPicture::Erase(int row, int from, int to) {
    Line& line = lines_[static_cast<std::size_t>(row)];
    std::fill(line.begin() + from, line.begin() + to, PictureCell{});
}

std::string TerminalPicture::Row(int row) const {
    std::string text;
    for (const PictureCell& cell : lines_[static_cast<std::size_t>(row)]) text += cell.character;
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string TerminalPicture::All() const {
    std::string text;
    for (int row = 0; row < rows_; ++row) text += Row(row) + '\n';
    return text;
}

std::string TerminalPicture::Reversed() const {
    std::string text;
    for (const Line& line : lines_) {
        for (const PictureCell& cell : line) text += cell.reversed ? cell.character : "";
    }
    return text;
}

std::optional<PicturePlace> TerminalPicture::Find(std::string_view text) const {
    for (int row = 0; row < rows_; ++row) {
        const Line& line = lines_[static_cast<std::size_t>(row)];
        std::string tail;
        for (int column = columns_ - 1; column >= 0; --column) {
            tail.insert(0, line[static_cast<std::size_t>(column)].character);
            if (tail.starts_with(text)) return PicturePlace{row, column};
        }
    }
    return std::nullopt;
}

}  // namespace twr::testing
