#pragma once

#include <string_view>

#include "GenApi/lock.h"
#include "GenApi/node_vector.h"

namespace GenApi {

class IDeviceInfo;
class IPort;

/// All nodes of one description, and the port that they reach the device through. One lock guards all of it: any thread may call
/// any node, and an operation holds the lock until it is done, transfers included.
class KIV_GENICAM_API INodeMap {
public:
    virtual ~INodeMap();

    /// Every node, those of entries and those of the implementation too, in the order of the description.
    virtual void GetNodes(NodeList_t& nodes) const = 0;
    /// Null when there is none. The name may begin with "Std::" or "Cust::".
    virtual INode* GetNode(std::string_view name) const = 0;
    virtual uint64_t GetNumNodes() const = 0;
    /// Element `index` of GetNodes(); null behind the end.
    virtual INode* GetNodeByIndex(uint64_t index) const noexcept = 0;
    virtual void InvalidateNodes() const = 0;

    /// False when the description has no port of that name. The port is borrowed; null disconnects.
    virtual bool Connect(IPort* port, std::string_view portName) const = 0;
    virtual bool Connect(IPort* port) const = 0;
    /// The name that was given to the map; that of the port which Connect() takes by default, too.
    virtual gcstring GetDeviceName() const = 0;
    /// Tells polled nodes that time has gone by; those whose time is reached are invalidated.
    virtual void Poll(int64_t elapsedMilliseconds) = 0;
    virtual CLock& GetLock() const = 0;
    /// Runs `body` as one operation: the map is locked, and the callbacks of all that changes are called once, at the end.
    template <class Body>
    void RunTogether(Body body) {
        RunOperation([](void* context) { (*static_cast<Body*>(context))(); }, &body);
    }
    virtual void RunOperation(void (*body)(void* context), void* context) = 0;
    /// Compiles every formula now. False when some are faulty; `errors` receives a line for each.
    virtual bool ParseSwissKnifes(gcstring_vector* errors = nullptr) const = 0;
    virtual IDeviceInfo* GetDeviceInfo() noexcept = 0;

protected:
    INodeMap() = default;
    INodeMap(const INodeMap&) = delete;
    INodeMap& operator=(const INodeMap&) = delete;
};

/// What the description says about the device as a whole. A node map implements it.
class KIV_GENICAM_API IDeviceInfo {
public:
    virtual ~IDeviceInfo();
    virtual gcstring GetModelName() = 0;
    virtual gcstring GetVendorName() = 0;
    virtual gcstring GetToolTip() = 0;
    virtual gcstring GetStandardNameSpace() = 0;
    /// The version of the node map engine.
    virtual void GetGenApiVersion(Version_t& version, uint16_t& build) = 0;
    virtual void GetSchemaVersion(Version_t& version) = 0;
    /// The version of the description, not of the firmware.
    virtual void GetDeviceVersion(Version_t& version) = 0;
    virtual gcstring GetProductGuid() = 0;
    virtual gcstring GetVersionGuid() = 0;

protected:
    IDeviceInfo() = default;
    IDeviceInfo(const IDeviceInfo&) = default;
    IDeviceInfo& operator=(const IDeviceInfo&) = default;
};

}  // namespace GenApi
