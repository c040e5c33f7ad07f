/// The process-wide table of opened interfaces, by the producer's IF_HANDLE. Guarded by the library's section.
#pragma once

#include <map>

#include "transport/interface.h"

namespace GenICam::Factory {

class OpenInterfaces {
public:
    void Enter(CInterfaceClass& opened);
    void Remove(const CInterfaceClass& closed);
    /// Null when no opened interface has that handle.
    CInterfaceClass* Find(GenTL::IF_HANDLE handle) const;
    void Clear();

private:
    std::map<GenTL::IF_HANDLE, CInterfaceClass*> by_handle_;
};

OpenInterfaces& open_interfaces();

}  // namespace GenICam::Factory
