// SPDX-License-Identifier: MIT
// Owners of Windows handles.
#pragma once

#include <utility>

#include "platform/windows/win32.h"

namespace twr {

// A value that `kRelease` releases; zero for none.
template <auto kRelease, class Value = HANDLE>
class Unique {
public:
    Unique() = default;
    explicit Unique(Value value) : value_(value) {}
    Unique(Unique&& other) noexcept : value_(std::exchange(other.value_, Value{})) {}
    Unique& operator=(Unique&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Unique() {
        if (value_) kRelease(value_);
    }

    Value get() const { return value_; }
    explicit operator bool() const { return value_ != Value{}; }

    // Where a call stores a value for this owner, which must have none.
    Value* Receive() { return &value_; }

private:
    Value value_{};
};

inline void CloseKernelHandle(HANDLE handle) { CloseHandle(handle); }
inline void CloseKey(HKEY key) { RegCloseKey(key); }
inline void ReleaseLibrary(HMODULE module) { FreeLibrary(module); }
inline void Unmap(void* view) { UnmapViewOfFile(view); }
inline void CloseFind(HANDLE find) { FindClose(find); }

using UniqueHandle = Unique<CloseKernelHandle>;
using UniqueKey = Unique<CloseKey, HKEY>;
using UniqueModule = Unique<ReleaseLibrary, HMODULE>;
using UniqueView = Unique<Unmap, void*>;
using UniqueFind = Unique<CloseFind>;

// For the calls whose failure value is INVALID_HANDLE_VALUE.
inline HANDLE NullIfInvalid(HANDLE handle) { return handle == INVALID_HANDLE_VALUE ? nullptr : handle; }

// An owner for a COM interface.
inline void ReleaseInterface(IUnknown* object) { object->Release(); }

template <class Interface>
class ComPtr : public Unique<ReleaseInterface, Interface*> {
public:
    using Unique<ReleaseInterface, Interface*>::Unique;

    Interface* operator->() const { return this->get(); }

    // For calls that return any interface through an untyped pointer.
    void** ReceiveVoid() { return reinterpret_cast<void**>(this->Receive()); }
};

}  // namespace twr
