#include "transport/interface.h"

#include "transport/open_devices.h"
#include "transport/open_interfaces.h"

namespace GenICam::Factory {

CInterfaceClass::CInterfaceClass(CTLWrapper& producer, std::string id, GenTL::IF_HANDLE handle)
    : producer_(producer), id_(std::move(id)), handle_(handle) {
    open_interfaces().Enter(*this);
}

CInterfaceClass::~CInterfaceClass() {
    open_devices().RemoveAllOf(handle_);
    open_interfaces().Remove(*this);
}

}  // namespace GenICam::Factory
