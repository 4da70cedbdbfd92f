// SPDX-License-Identifier: MIT
// A Deckman library controlled by a test: its variables can be set, its calls are recorded.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/library.h"

namespace twr::testing {

// Only one at a time: the library's functions take no object.
class StubDeckman : public Libraries {
public:
    StubDeckman() { stub_ = this; }
    ~StubDeckman() override { stub_ = nullptr; }

    // Puts a library there.
    void Install(std::u16string_view folder) {
        installed_.insert(JoinPath(folder, std::u16string(u"ShDfW2").append(kLibrarySuffix)));
    }
    std::unique_ptr<Library> Load(std::u16string_view path) override {
        onLoad(path);
        return installed_.contains(std::u16string(path)) ? std::make_unique<StubLibrary>() : nullptr;
    }

    std::set<std::string> missing;  // exports that it lacks
    std::map<int, float> variables;
    float latitude = 0.0f, longitude = 0.0f;
    std::function<void(std::u16string_view path)> onLoad = [](auto) {};
    std::function<void()> onRead = [] {};  // inside of each reading, as a library that runs a loop of messages

    std::vector<int> reads;         // variable numbers, in order
    int positions = 0;              // calls for the position
    std::vector<std::string> sent;  // texts to remotes: "number=text", names as "number#text"
    int loaded = 0;                 // libraries now loaded

private:
    struct StubLibrary : Library {
        StubLibrary() { ++stub_->loaded; }
        ~StubLibrary() override { --stub_->loaded; }
        void* Find(const char* name) const override {
            static const std::map<std::string, void*> functions = {{"Usr_Read", reinterpret_cast<void*>(&Read)},
                                                                   {"Usr_GetPosition", reinterpret_cast<void*>(&GetPosition)},
                                                                   {"Usr_SetISData", reinterpret_cast<void*>(&SetData)},
                                                                   {"Usr_SetISName", reinterpret_cast<void*>(&SetName)}};
            return stub_->missing.contains(name) ? nullptr : functions.at(name);
        }
    };

    static void TWR_EXPORT_CALL Read(std::int32_t variable, float* value) {
        stub_->reads.push_back(variable);
        stub_->onRead();
        *value = stub_->variables[variable];
    }
    static void TWR_EXPORT_CALL GetPosition(float* north, float* east) {
        ++stub_->positions;
        *north = stub_->latitude;
        *east = stub_->longitude;
    }
    static void TWR_EXPORT_CALL SetData(std::uint32_t*, std::int32_t remote, const char* text) {
        stub_->sent.push_back(std::to_string(remote) + "=" + text);
    }
    static void TWR_EXPORT_CALL SetName(std::uint32_t*, std::int32_t remote, const char* text) {
        stub_->sent.push_back(std::to_string(remote) + "#" + text);
    }

    inline static StubDeckman* stub_ = nullptr;
    std::set<std::u16string> installed_;  // paths at which a library is found
};

}  // namespace twr::testing
