/// An opened interface of a producer. It belongs to its binding, which opened it during enumeration; closing the producer's
/// system module closes it, so that it makes no call of its own when it goes.
#pragma once

#include <string>

#include "transport/live_handles.h"
#include "transport/tl_wrapper.h"

namespace GenICam::Factory {

class CInterfaceClass {
public:
    CInterfaceClass(CTLWrapper& producer, std::string id, GenTL::IF_HANDLE handle);
    ~CInterfaceClass();
    CInterfaceClass(const CInterfaceClass&) = delete;
    CInterfaceClass& operator=(const CInterfaceClass&) = delete;

    CTLWrapper& Producer() const { return producer_; }
    GenTL::IF_HANDLE Handle() const { return handle_; }
    const std::string& Id() const { return id_; }
    ModuleSlot& OwnModule() { return own_module_; }

private:
    CTLWrapper& producer_;
    std::string id_;
    GenTL::IF_HANDLE handle_;
    ModuleSlot own_module_;
    kiv::LiveHandle live_{this, kiv::HandleKind::interface};
};

}  // namespace GenICam::Factory
