#include "transport/open_interfaces.h"

#include <memory>

#include "transport/lock.h"

namespace GenICam::Factory {

void OpenInterfaces::Enter(CInterfaceClass& opened) {
    GEV::CAutoLock lock(GEV::library_section());
    by_handle_[opened.Handle()] = &opened;
}

void OpenInterfaces::Remove(const CInterfaceClass& closed) {
    GEV::CAutoLock lock(GEV::library_section());
    auto found = by_handle_.find(closed.Handle());
    // Two producers may use the same number for their handles: the later one took the place.
    if (found != by_handle_.end() && found->second == &closed) by_handle_.erase(found);
}

CInterfaceClass* OpenInterfaces::Find(GenTL::IF_HANDLE handle) const {
    GEV::CAutoLock lock(GEV::library_section());
    auto found = by_handle_.find(handle);
    return found == by_handle_.end() ? nullptr : found->second;
}

void OpenInterfaces::Clear() {
    GEV::CAutoLock lock(GEV::library_section());
    by_handle_.clear();
}

OpenInterfaces& open_interfaces() {
    // Never destroyed: a program's own statics may close what they opened when the process exits.
    static OpenInterfaces& table = *std::make_unique<OpenInterfaces>().release();
    return table;
}

}  // namespace GenICam::Factory
