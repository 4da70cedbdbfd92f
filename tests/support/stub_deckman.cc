#include "support/stub_deckman.h"

#include <cstdint>

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
        if (stub->missing.contains(name)) return nullptr;
        if (std::string(name) == "Usr_Read") return reinterpret_cast<void*>(&Read);
        if (std::string(name) == "Usr_GetPosition") return reinterpret_cast<void*>(&GetPosition);
        if (std::string(name) == "Usr_SetISData") return reinterpret_cast<void*>(&SetData);
        if (std::string(name) == "Usr_SetISName") return reinterpret_cast<void*>(&SetName);
        return nullptr;
    }
};

}  // namespace

StubDeckman::StubDeckman() { stub = this; }
StubDeckman::~StubDeckman() { stub = nullptr; }

std::unique_ptr<Library> StubDeckman::Load(std::u16string_view path) {
    return installed.contains(std::u16string(path)) ? std::make_unique<StubLibrary>() : nullptr;
}

}  // namespace twr::testing
