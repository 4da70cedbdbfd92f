// SPDX-License-Identifier: MIT
#include "platform/windows/console_screen.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <thread>

#include "base/wide_text.h"
#include "platform/held_output.h"
#include "platform/windows/unique_handle.h"

namespace twr {
namespace {

using Cells = std::vector<CHAR_INFO>;

constexpr int kMostColumns = 500, kMostRows = 200;
constexpr WORD kPlainColours = FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_BLUE;

WORD AttributesOf(Look look) {
    const char* const noColours = std::getenv("NO_COLOR");
    if (look >= Look::kGreen && noColours && *noColours) return kPlainColours;
    switch (look) {
        case Look::kBold:
            return kPlainColours | FOREGROUND_INTENSITY;
        case Look::kFaint:
            return FOREGROUND_INTENSITY;
        case Look::kReversed:
            return BACKGROUND_RED | BACKGROUND_GREEN | BACKGROUND_BLUE;
        case Look::kGreen:
            return FOREGROUND_GREEN | FOREGROUND_INTENSITY;
        case Look::kYellow:
            return FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_INTENSITY;
        case Look::kRed:
            return FOREGROUND_RED | FOREGROUND_INTENSITY;
        default:
            return kPlainColours;
    }
}

CHAR_INFO CellOf(char16_t character, WORD attributes) {
    CHAR_INFO cell{};
    cell.Char.UnicodeChar = static_cast<wchar_t>(character);
    cell.Attributes = attributes;
    return cell;
}

Cells Drawn(const std::vector<ScreenText>& texts, ConsoleSize size) {
    Cells cells(static_cast<std::size_t>(size.columns) * static_cast<std::size_t>(size.rows), CellOf(u' ', kPlainColours));
    for (const ScreenText& text : texts) {
        const WORD attributes = AttributesOf(text.look);
        int column = text.column;
        for (const char16_t character : FromUtf8(text.text)) {
            if (text.row >= size.rows || column >= size.columns) break;
            cells[static_cast<std::size_t>(text.row * size.columns + column++)] = CellOf(character, attributes);
        }
    }
    return cells;
}

bool Same(const Cells& left, const Cells& right) {
    return std::ranges::equal(left, right, [](const CHAR_INFO& a, const CHAR_INFO& b) {
        return a.Char.UnicodeChar == b.Char.UnicodeChar && a.Attributes == b.Attributes;
    });
}

char32_t KeyOfCode(WORD code) {
    static constexpr struct {
        WORD code;
        Key::Code key;
    } kKeys[] = {{VK_UP, Key::kUp},        {VK_DOWN, Key::kDown},     {VK_LEFT, Key::kLeft}, {VK_RIGHT, Key::kRight},
                 {VK_PRIOR, Key::kPageUp}, {VK_NEXT, Key::kPageDown}, {VK_HOME, Key::kHome}, {VK_END, Key::kEnd}};
    if (code >= VK_F1 && code <= VK_F12) return Key::kF1 + (code - VK_F1);
    const auto* const found = std::ranges::find(kKeys, code, [](const auto& row) { return row.code; });
    return found == std::end(kKeys) ? Key::kOther : found->key;
}

// nullopt for a key that is released, or that only modifies others.
std::optional<char32_t> KeyOf(const INPUT_RECORD& event) {
    if (event.EventType == WINDOW_BUFFER_SIZE_EVENT) return Key::kRedraw;
    if (event.EventType != KEY_EVENT || !event.Event.KeyEvent.bKeyDown) return std::nullopt;
    const KEY_EVENT_RECORD& key = event.Event.KeyEvent;
    if (key.uChar.UnicodeChar != 0) return static_cast<char32_t>(key.uChar.UnicodeChar);
    const char32_t special = KeyOfCode(key.wVirtualKeyCode);
    return special == Key::kOther ? std::nullopt : std::optional(special);
}

// A selection with the mouse holds up all output to a console. So each picture is written by a thread of its own, and the next one
// waits until that has ended.
class WindowsScreen final : public ConsoleScreen {
public:
    WindowsScreen(HANDLE input, HANDLE output, HANDLE stop, DWORD formerMode, UniqueHandle buffer)
        : input_(input),
          output_(output),
          stop_(stop),
          formerMode_(formerMode),
          buffer_(std::make_shared<const UniqueHandle>(std::move(buffer))) {
        // No line input and no echo, but still Ctrl-C and the selection with the mouse.
        constexpr DWORD kLineInput = ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT;
        SetConsoleMode(input_, (formerMode_ & ~kLineInput) | ENABLE_PROCESSED_INPUT | ENABLE_WINDOW_INPUT);
        constexpr CONSOLE_CURSOR_INFO kHidden{1, FALSE};
        SetConsoleCursorInfo(buffer_->get(), &kHidden);
        SetConsoleActiveScreenBuffer(buffer_->get());
    }
    ~WindowsScreen() override {
        SetConsoleMode(input_, formerMode_);
        RunShortWrite([output = output_, buffer = buffer_] {
            return SetConsoleActiveScreenBuffer(output) ? Output::kWritten : Output::kRefused;
        });
        LeaveWriter();
    }
    WindowsScreen(const WindowsScreen&) = delete;
    WindowsScreen& operator=(const WindowsScreen&) = delete;

    ConsoleSize Size() override {
        CONSOLE_SCREEN_BUFFER_INFO info;
        if (!GetConsoleScreenBufferInfo(buffer_->get(), &info)) return {80, 24};
        return {std::clamp(info.srWindow.Right - info.srWindow.Left + 1, 1, kMostColumns),
                std::clamp(info.srWindow.Bottom - info.srWindow.Top + 1, 1, kMostRows)};
    }

    void Draw(const std::vector<ScreenText>& texts) override {
        wanted_ = texts;
        Show();
    }

    std::optional<char32_t> Wait(int milliseconds) override {
        using Steady = std::chrono::steady_clock;
        for (const auto end = Steady::now() + std::chrono::milliseconds(milliseconds);;) {
            Show();
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Steady::now()).count();
            const HANDLE events[] = {stop_, input_};
            switch (WaitForMultipleObjects(2, events, FALSE, static_cast<DWORD>(std::max<decltype(left)>(0, left)))) {
                case WAIT_OBJECT_0:
                    return Key::kStop;
                case WAIT_OBJECT_0 + 1:
                    if (const auto key = ReadKey()) return key;
                    break;
                case WAIT_TIMEOUT:
                    return std::nullopt;
                default:
                    return Key::kStop;  // the console is gone
            }
        }
    }

private:
    std::optional<char32_t> ReadKey() {
        INPUT_RECORD event{};
        DWORD count = 0;
        if (!ReadConsoleInputW(input_, &event, 1, &count)) return Key::kStop;
        const auto key = count == 1 ? KeyOf(event) : std::nullopt;
        if (key == Key::kRedraw) shown_.clear();
        return key;
    }

    void Show() {
        if (!wanted_ || IsWriting()) return;
        const ConsoleSize size = Size();
        const Cells cells = Drawn(*wanted_, size);
        wanted_.reset();
        if (Same(cells, shown_)) return;
        shown_ = cells;
        std::packaged_task<void()> write([cells, size, buffer = buffer_] {
            const COORD whole{static_cast<SHORT>(size.columns), static_cast<SHORT>(size.rows)};
            CONSOLE_SCREEN_BUFFER_INFO info{};
            GetConsoleScreenBufferInfo(buffer->get(), &info);
            SMALL_RECT window{info.srWindow.Left, info.srWindow.Top, static_cast<SHORT>(info.srWindow.Left + size.columns - 1),
                              static_cast<SHORT>(info.srWindow.Top + size.rows - 1)};
            WriteConsoleOutputW(buffer->get(), cells.data(), whole, {0, 0}, &window);
        });
        if (writer_) writer_->join();
        written_ = write.get_future();
        writer_ = std::make_unique<std::thread>(std::move(write));
    }

    bool IsWriting() const { return written_.valid() && written_.wait_for(std::chrono::seconds(0)) != std::future_status::ready; }

    // The console may hold the writer up without limit. It is not detached; see held_output.cc.
    void LeaveWriter() {
        if (writer_ && !IsWriting()) return writer_->join();
        static_cast<void>(writer_.release());
    }

    const HANDLE input_, output_, stop_;
    const DWORD formerMode_;
    const std::shared_ptr<const UniqueHandle> buffer_;  // its writer may outlive the object
    std::optional<std::vector<ScreenText>> wanted_;     // not written yet
    Cells shown_;
    std::future<void> written_;
    std::unique_ptr<std::thread> writer_;
};

}  // namespace

std::unique_ptr<ConsoleScreen> MakeConsoleScreen(HANDLE input, HANDLE output, HANDLE stop) {
    DWORD inputMode = 0, outputMode = 0;
    if (!GetConsoleMode(input, &inputMode) || !GetConsoleMode(output, &outputMode)) return nullptr;
    UniqueHandle buffer(NullIfInvalid(CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                                nullptr, CONSOLE_TEXTMODE_BUFFER, nullptr)));
    if (!buffer) return nullptr;
    return std::make_unique<WindowsScreen>(input, output, stop, inputMode, std::move(buffer));
}

}  // namespace twr
