// An owner for a COM interface.
#pragma once

#include "platform/windows/unique_handle.h"

namespace twr {

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
