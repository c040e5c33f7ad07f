/// The node map that applications hold: the face of an engine.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "GenApi/i_node_map.h"
#include "runtime/engine.h"

namespace kiv::genapi {

class NodeMap final : public GenApi::INodeMap, public GenApi::IDeviceInfo {
public:
    /// `injected` is a second description that is merged into the first.
    NodeMap(std::string description, std::optional<std::string> injected, const std::string& deviceName);

    void GetNodes(GenApi::NodeList_t& nodes) const override;
    GenApi::INode* GetNode(std::string_view name) const override;
    uint64_t GetNumNodes() const override { return engine_.nodes.size(); }
    GenApi::INode* GetNodeByIndex(uint64_t index) const noexcept override;
    void InvalidateNodes() const override;
    bool Connect(GenApi::IPort* port, std::string_view portName) const override;
    bool Connect(GenApi::IPort* port) const override { return Connect(port, engine_.deviceName); }
    GenApi::gcstring GetDeviceName() const override { return engine_.deviceName; }
    void Poll(int64_t elapsedMilliseconds) override;
    GenApi::CLock& GetLock() const override { return engine_.lock; }
    void RunOperation(void (*body)(void*), void* context) override;
    bool ParseSwissKnifes(GenApi::gcstring_vector* errors) const override;
    GenApi::IDeviceInfo* GetDeviceInfo() noexcept override { return this; }

    GenApi::gcstring GetModelName() override { return engine_.table.info.modelName; }
    GenApi::gcstring GetVendorName() override { return engine_.table.info.vendorName; }
    GenApi::gcstring GetToolTip() override { return engine_.table.info.toolTip; }
    GenApi::gcstring GetStandardNameSpace() override { return engine_.table.info.standardNameSpace; }
    void GetGenApiVersion(GenApi::Version_t& version, uint16_t& build) override;
    void GetSchemaVersion(GenApi::Version_t& version) override;
    void GetDeviceVersion(GenApi::Version_t& version) override;
    GenApi::gcstring GetProductGuid() override { return engine_.table.info.productGuid; }
    GenApi::gcstring GetVersionGuid() override { return engine_.table.info.versionGuid; }

    const std::vector<std::string>& Faults() const { return engine_.table.faults; }

private:
    struct Polled {
        Node* node;
        int64_t time;
        int64_t elapsed = 0;
    };
    bool IsDue(Polled& polled, int64_t elapsed) const;

    mutable Engine engine_;
    std::vector<Polled> polled_;
};

}  // namespace kiv::genapi
