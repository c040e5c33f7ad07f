#include "nodes/port_node.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "link/number_text.h"

namespace kiv::genapi {

using namespace GenApi;

namespace {

constexpr int64_t quadlet = 4;

/// The whole quadlets around [address, address + length): where they begin, how many bytes they have.
struct Around {
    int64_t address;
    size_t size;
    size_t lead;

    Around(int64_t from, size_t length) {
        const auto rest = ((from % quadlet) + quadlet) % quadlet;
        lead = static_cast<size_t>(rest);
        address = static_cast<int64_t>(static_cast<uint64_t>(from) - static_cast<uint64_t>(rest));
        size = (lead + length + quadlet - 1) / quadlet * quadlet;
    }
};

void swap_quadlets(std::vector<uint8_t>& bytes) {
    for (auto at = bytes.begin(); at != bytes.end(); at += quadlet) std::reverse(at, at + quadlet);
}

std::vector<uint8_t> read_swapped(IPort& port, const Around& around) {
    std::vector<uint8_t> bytes(around.size);
    port.Read(bytes.data(), around.address, static_cast<int64_t>(bytes.size()));
    swap_quadlets(bytes);
    return bytes;
}

}  // namespace

void* PortNode::AsInterface(EInterfaceType type) noexcept {
    switch (type) {
        case intfIBase:
            return static_cast<IBase*>(static_cast<INode*>(this));
        case intfIPort:
            return static_cast<IPort*>(this);
        default:
            return nullptr;
    }
}

EAccessMode PortNode::SourceMode() { return port_ ? port_->GetAccessMode() : NA; }

std::string PortNode::OwnObstacle(bool forWriting) const {
    if (!port_) return "is not connected to a device.";
    const auto mode = port_->GetAccessMode();
    if (forWriting ? IsWritable(mode) : IsReadable(mode)) return {};
    return "has a device of the access mode " + EAccessModeClass::ToString(mode).str() + ".";
}

IPort& PortNode::Connected() {
    if (!port_) throw GenICam::AccessException("The port is not connected to a device.", Place());
    return *port_;
}

void PortNode::ReadBytes(std::span<uint8_t> bytes, int64_t address, uint32_t vertex) {
    auto& port = Connected();
    if (bytes.empty()) return;
    ReadFrom(port, bytes, address);
    if (log_wanted(log::Level::debug)) [[unlikely]]
        log_transfer(*this, "read", vertex, address, bytes);
}

void PortNode::ReadFrom(IPort& port, std::span<uint8_t> bytes, int64_t address) const {
    if (!swap_) return port.Read(bytes.data(), address, static_cast<int64_t>(bytes.size()));
    const Around around(address, bytes.size());
    const auto whole = read_swapped(port, around);
    std::memcpy(bytes.data(), whole.data() + around.lead, bytes.size());
}

void PortNode::WriteBytes(std::span<const uint8_t> bytes, int64_t address, uint32_t vertex) {
    auto& port = Connected();
    if (bytes.empty()) return;
    if (log_wanted(log::Level::debug)) [[unlikely]]
        log_transfer(*this, "write", vertex, address, bytes);
    WriteTo(port, bytes, address);
}

void PortNode::WriteTo(IPort& port, std::span<const uint8_t> bytes, int64_t address) const {
    if (!swap_) return port.Write(bytes.data(), address, static_cast<int64_t>(bytes.size()));
    const Around around(address, bytes.size());
    auto whole = around.size == bytes.size() ? std::vector<uint8_t>(around.size) : read_swapped(port, around);
    std::memcpy(whole.data() + around.lead, bytes.data(), bytes.size());
    swap_quadlets(whole);
    port.Write(whole.data(), around.address, static_cast<int64_t>(whole.size()));
}

namespace {

void require_buffer(const Node& node, const void* buffer, int64_t length, const char* operation) {
    if (length < 0 || (!buffer && length > 0))
        throw GenICam::InvalidArgumentException(length < 0 ? "The length is negative." : "The buffer is a null pointer.",
                                                {node.Name(), operation});
}

}  // namespace

void PortNode::Read(void* buffer, int64_t address, int64_t length) {
    RunRead("Read", false, [&] {
        require_buffer(*this, buffer, length, "Read");
        ReadBytes({static_cast<uint8_t*>(buffer), static_cast<size_t>(length)}, address);
    });
}

void PortNode::Write(const void* buffer, int64_t address, int64_t length) {
    RunWrite("Write", [&] {
        require_buffer(*this, buffer, length, "Write");
        WriteBytes({static_cast<const uint8_t*>(buffer), static_cast<size_t>(length)}, address);
        engine_.Outdated(Index());  // whatever shows these bytes
    });
}

void PortNode::SetPortImpl(IPort* port) {
    Run("SetPortImpl", [&] {
        port_ = port;
        engine_.Outdated(Index());
    });
}

EYesNo PortNode::GetSwapEndianess() { return swap_ ? Yes : No; }

gcstring PortNode::GetChunkID() {
    if (const auto* id = Find(Tag::ChunkID)) return id->Text();
    auto* source = Target(Tag::pChunkID);
    if (!source) return {};
    return Run("GetChunkID", [&] {
        static constexpr char digits[] = "0123456789abcdef";
        std::string text;
        for (auto id = static_cast<uint64_t>(source->ReadInteger()); id || text.empty(); id >>= 4) text += digits[id & 0xF];
        if (text.size() % 2) text += '0';
        return std::string(text.rbegin(), text.rend());
    });
}

EYesNo PortNode::CacheChunkData() { return parse_boolean(Text(Tag::CacheChunkData)).value_or(false) ? Yes : No; }

}  // namespace kiv::genapi
