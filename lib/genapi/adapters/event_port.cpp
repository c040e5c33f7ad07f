#include "GenApi/event_port.h"

#include <cstring>
#include <string>

#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenICam/exceptions.h"
#include "adapters/hex_id.h"

namespace GenApi {

CEventPort::CEventPort(INode* node) {
    if (node) AttachNode(node);
}

CEventPort::CEventPort(const CEventPort& other)
    : IPort(other), eventId_(other.eventId_), idNumber_(other.idNumber_), data_(other.data_), attached_(other.attached_) {}

CEventPort& CEventPort::operator=(const CEventPort& other) {
    if (this == &other) return *this;
    DetachNode();
    eventId_ = other.eventId_;
    idNumber_ = other.idNumber_;
    data_ = other.data_;
    attached_ = other.attached_;
    return *this;
}

CEventPort::~CEventPort() {
    try {
        DetachNode();
    } catch (...) {  // of a callback that heard of the change; nobody is left to be told
    }
}

bool CEventPort::AttachNode(INode* node) {
    DetachNode();
    auto* port = dynamic_cast<IPortConstruct*>(node);
    if (!port) return false;
    std::vector<uint8_t> id = kiv::genapi::id_bytes(node->GetEventID());
    if (id.empty()) return false;
    node_ = node;
    port_ = port;
    idNumber_ = kiv::genapi::id_number(id);
    eventId_ = std::move(id);
    port->SetPortImpl(this);
    return true;
}

void CEventPort::DetachNode() {
    if (!node_) return;
    // Not under the lock: callbacks that ask to be called outside of it must be.
    port_->SetPortImpl(nullptr);
    node_ = nullptr;
    port_ = nullptr;
    ResetEventDataBuffer();
}

bool CEventPort::CheckEventID(const uint8_t* id, int length) const {
    if (!id || length <= 0) return false;
    return kiv::genapi::is_same_id(eventId_, {id, static_cast<size_t>(length)});
}

void CEventPort::StoreEvent(const uint8_t* data, int64_t length) {
    if (length < 0 || (!data && length > 0)) throw GenICam::InvalidArgumentException("An event without its data.");
    data_.assign(data, data + length);
    attached_ = true;
}

void CEventPort::AttachEvent(const uint8_t* data, int64_t length) {
    if (!node_) return StoreEvent(data, length);
    {
        const AutoLock lock(GetLock());
        StoreEvent(data, length);
    }
    InvalidateNode();
}

void CEventPort::DetachEvent() {
    if (!node_) return ResetEventDataBuffer();
    {
        const AutoLock lock(GetLock());
        ResetEventDataBuffer();
    }
    InvalidateNode();
}

EAccessMode CEventPort::GetAccessMode() const { return attached_ ? RO : NA; }

EInterfaceType CEventPort::GetPrincipalInterfaceType() const { return intfIPort; }

void CEventPort::Read(void* buffer, int64_t address, int64_t length) {
    if (!attached_) throw GenICam::AccessException("No message of this event has been delivered yet.");
    const auto size = static_cast<int64_t>(data_.size());
    if (address < 0 || length < 0 || length > size || address > size - length)
        throw GenICam::OutOfRangeException("The event's message of " + std::to_string(size) + " bytes has no " +
                                           std::to_string(length) + " bytes at address " + std::to_string(address) + ".");
    if (length > 0) std::memcpy(buffer, data_.data() + address, static_cast<size_t>(length));
}

void CEventPort::Write(const void*, int64_t, int64_t) {
    throw GenICam::AccessException("The data of an event cannot be written.");
}

void CEventPort::InvalidateNode() {
    if (node_) node_->InvalidateNode();
}

CLock& CEventPort::GetLock() const {
    if (!node_) throw GenICam::LogicalErrorException("The event port is attached to no node.");
    return node_->GetNodeMap()->GetLock();
}

}  // namespace GenApi
