/// Where a register stands: port, address, length; and the bytes last seen there. Registers that are described by the same
/// address on the same port are one location, so that the fields of one register share one copy of its bytes.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "GenApi/types.h"
#include "runtime/setting.h"
#include "runtime/vertex_states.h"

namespace kiv::genapi {

struct Engine;
class Node;
class PortNode;

/// What is added to the address: the value of a node, or the value of an index times a stride.
struct AddressTerm {
    Node* node = nullptr;
    bool isIndex = false;
    Setting<int64_t> stride;  ///< of an index; absent: the register's length
};

/// What it keeps is its address and length, and its bytes; whether they are true stands in the engine's states.
class Location {
public:
    Location(Engine& engine, uint32_t vertex, PortNode& port, int64_t base, std::vector<AddressTerm> terms,
             Setting<int64_t> length)
        : engine_(engine), port_(port), base_(base), terms_(std::move(terms)), length_(length), vertex_(vertex) {}

    uint32_t Vertex() const { return vertex_; }
    PortNode& Port() const { return port_; }
    int64_t Base() const { return base_; }
    std::span<const AddressTerm> Terms() const { return terms_; }
    const Setting<int64_t>& LengthSetting() const { return length_; }
    bool IsFixed() const { return terms_.empty() && !length_.IsReference(); }

    int64_t Address();
    int64_t Length();
    /// That of the port, or NA when something that the address is computed from cannot be read.
    GenApi::EAccessMode Mode();
    /// The register's bytes, valid until the next call. Throws what the port throws.
    std::span<const uint8_t> Read(GenApi::ECachingMode caching);
    /// The bytes as last seen, for writers that cannot read; zeros if there are none.
    std::span<const uint8_t> Known();
    /// `bytes` has the register's length.
    void Write(std::span<const uint8_t> bytes, GenApi::ECachingMode caching);

    bool IsFresh() const { return Has(kept::bytes) && (Has(kept::place) || IsFixed()); }
    void Drop();

private:
    friend class LocationIndex;

    /// Bytes, without memory of their own as long as they fit an integer.
    class Bytes {
    public:
        void Resize(size_t size) {
            size_ = size;
            if (size > small_.size()) large_.resize(size);
        }
        size_t Size() const { return size_; }
        std::span<uint8_t> All() { return {size_ > small_.size() ? large_.data() : small_.data(), size_}; }

    private:
        size_t size_ = 0;
        std::array<uint8_t, 8> small_{};
        std::vector<uint8_t> large_;
    };

    void Place();
    bool Has(uint8_t kept) const;
    void KeepBytes(bool areTrue);
    int64_t SeenLength() const { return static_cast<int64_t>(bytes_.Size()); }
    /// bytes_ are now those of that address.
    void SawAt(int64_t address);

    Engine& engine_;
    PortNode& port_;
    int64_t base_;
    std::vector<AddressTerm> terms_;
    Setting<int64_t> length_;
    int64_t address_ = 0;
    int64_t currentLength_ = 0;
    static constexpr uint32_t notListed = UINT32_MAX;
    uint32_t listed_ = notListed;  // its place in the index of moving locations
    bool isAlone_ = false;         // no other location that does not move has one of its bytes
    uint32_t vertex_;
    uint64_t epoch_ = 0;  // the question in which bytes_ were read
    int64_t seenAddress_ = 0;
    Bytes bytes_;
};

}  // namespace kiv::genapi
