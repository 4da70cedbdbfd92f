// SPDX-License-Identifier: MIT
// A dialog that records the events from its host, and acts on them as a test asks.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "platform/dialog.h"

namespace twr::testing {

class ScriptedDialog : public Dialog {
public:
    std::function<void()> onInit, onTimer, onButton, onMenu, onOk, onCancel;

    std::vector<std::string> events;  // in their order, timer ticks left out
    int ticks = 0;
    DialogWindow* window = nullptr;

    void OnInit(DialogWindow& opened) override {
        window = &opened;
        Note("init", onInit);
    }
    void OnTimer(std::uintptr_t) override {
        ++ticks;
        if (onTimer) onTimer();
    }
    void OnTextChange(int control) override { Note("text " + std::to_string(control), {}); }
    void OnButton(int control) override { Note("button " + std::to_string(control), onButton); }
    void OnMenu(int command) override { Note("menu " + std::to_string(command), onMenu); }
    void OnOk() override { Note("ok", onOk); }
    void OnCancel() override { Note("cancel", onCancel); }
    void OnDestroy() override { Note("destroy", {}); }

private:
    void Note(std::string event, const std::function<void()>& action) {
        events.push_back(std::move(event));
        if (action) action();
    }
};

}  // namespace twr::testing
