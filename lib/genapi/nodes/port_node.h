/// A port of the description. The real port is connected to it; without one nothing behind it is available.
#pragma once

#include <span>

#include "GenApi/i_port.h"
#include "runtime/node.h"

namespace kiv::genapi {

class PortNode final : public Node, public GenApi::IPortConstruct, public GenApi::IChunkPort {
public:
    using Node::Node;

    EAccessMode GetAccessMode() const override { return AccessModeFromOutside(); }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }
    GenApi::INode* AsNode() noexcept override { return this; }
    void* AsInterface(GenApi::EInterfaceType type) noexcept override;

    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    void SetPortImpl(GenApi::IPort* port) override;
    GenApi::EYesNo GetSwapEndianess() override;
    gcstring GetChunkID() override;
    GenApi::EYesNo CacheChunkData() override;

    // For the registers behind the port; the map is locked.
    /// `vertex`: of the location whose bytes they are, for the log.
    void ReadBytes(std::span<uint8_t> bytes, int64_t address, uint32_t vertex = no_vertex);
    void WriteBytes(std::span<const uint8_t> bytes, int64_t address, uint32_t vertex = no_vertex);

    std::string OwnObstacle(bool forWriting) const override;
    void SetSwap(bool swap) { swap_ = swap; }

protected:
    EAccessMode SourceMode() override;

private:
    GenApi::IPort& Connected();
    void ReadFrom(GenApi::IPort& port, std::span<uint8_t> bytes, int64_t address) const;
    void WriteTo(GenApi::IPort& port, std::span<const uint8_t> bytes, int64_t address) const;

    GenApi::IPort* port_ = nullptr;  // borrowed
    bool swap_ = false;
};

}  // namespace kiv::genapi
