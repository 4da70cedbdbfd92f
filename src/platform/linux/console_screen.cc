// SPDX-License-Identifier: MIT
#include "platform/console_screen.h"

#include <utility>

#include "platform/linux/services.h"
#include "platform/linux/standard_error.h"
#include "platform/linux/terminal/session.h"

namespace twr {
namespace {

class CursesScreen final : public ConsoleScreen {
public:
    ConsoleSize Size() override {
        TerminalScreen* const screen = session_.Screen();
        const CellSize size = screen ? screen->Size() : CellSize{24, 80};
        return {size.columns, size.rows};
    }

    void Draw(const std::vector<ScreenText>& texts) override {
        texts_ = texts;
        dirty_ = true;
        Show();
    }

    std::optional<char32_t> Wait(int milliseconds) override {
        using Steady = std::chrono::steady_clock;
        for (const auto end = Steady::now() + std::chrono::milliseconds(milliseconds);;) {
            const TerminalSession::Event event = session_.Take();
            if (event == TerminalSession::Event::kClose) return Key::kStop;
            if (event == TerminalSession::Event::kSpoilt) {
                dirty_ = true;
                return Key::kRedraw;
            }
            if (const auto key = session_.Read()) return key;
            Show();
            if (Steady::now() >= end) return std::nullopt;
            session_.WaitUntil(end, dirty_);
        }
    }

private:
    void Show() {
        if (!dirty_ || session_.Busy()) return;
        TerminalScreen* const screen = session_.Screen();
        if (!screen) return;
        screen->Show(texts_);
        dirty_ = false;
    }

    const ToldLater later_;
    TerminalSession session_;
    std::vector<ScreenText> texts_;
    bool dirty_ = false;  // they are not shown yet
};

}  // namespace

std::unique_ptr<ConsoleScreen> MakeConsoleScreen() {
    IgnoreBrokenPipes();
    return std::make_unique<CursesScreen>();
}

}  // namespace twr
