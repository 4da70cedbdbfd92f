#include "support/stub_deckman.h"

#include <cstdint>

#include "platform/paths.h"

namespace twr::testing {
namespace {

StubDeckman* stub = nullptr;

void TWR_EXPORT_CALL Read(std::int32_t variable, float* value) {
    stub->reads.push_back(variable);
    *value = stub->variables[variable];
}

void TWR_EXPORT_CALL GetPosition(float* latitude, float* longitude) {
    ++stub->positions;
    *latitude = stub->latitude;
    *longitude = stub->longitude;
}

void TWR_EXPORT_CALL SetData(std::uint32_t*, std::int32_t remote, const char* text) {
    stub->sent.push_back(std::to_string(remote) + "=" + text);
}

void TWR_EXPORT_CALL SetName(std::uint32_t*, std::int32_t remote, const char* text) {
    stub->sent.push_back(std::to_string(remote) + "#" + text);
}

class StubLibrary : public Library {
public:
    StubLibrary() { ++stub->loaded; }
    ~StubLibrary() override { --stub->loaded; }

    void* Find(const char* name) const override {
        static const std::map<std::string, void*> functions = {{"Usr_Read", reinterpret_cast<void*>(&Read)},
                                                               {"Usr_GetPosition", reinterpret_cast<void*>(&GetPosition)},
                                                               {"Usr_SetISData", reinterpret_cast<void*>(&SetData)},
                                                               {"Usr_SetISName", reinterpret_cast<void*>(&SetName)}};
        return stub->missing.contains(name) ? nullptr : functions.at(name);
    }
};

}  // namespace

StubDeckman::StubDeckman() { stub = this; }
StubDeckman::~StubDeckman() { stub = nullptr; }

void StubDeckman::Install(std::u16string_view folder) {
    installed_.insert(JoinPath(folder, std::u16string(u"ShDfW2").append(kLibrarySuffix)));
}

std::unique_ptr<Library> StubDeckman::Load(std::u16string_view path) {
    return installed_.contains(std::u16string(path)) ? std::make_unique<StubLibrary>() : nullptr;
}

}  // namespace twr::testing
