#include "sources/location.h"

#include <algorithm>
#include <string>

#include "nodes/port_node.h"
#include "runtime/node.h"

namespace kiv::genapi {

using namespace GenApi;

namespace {

/// No register is longer; a larger number comes from a faulty description or device.
constexpr int64_t longestRegister = 64 * 1024 * 1024;

int64_t plus(int64_t a, int64_t b) { return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b)); }
int64_t times(int64_t a, int64_t b) { return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b)); }

}  // namespace

bool Location::Has(uint8_t kept) const { return engine_.states.Has(vertex_, kept); }

void Location::Drop() {
    engine_.states.Forget(vertex_, kept::bytes);
    epoch_ = 0;
}

void Location::Place() {
    engine_.Ask(vertex_, facet::limits);
    if (Has(kept::place) && !(engine_.evaluator.bypass && !IsFixed())) return;
    const Taint taint(engine_.evaluator);
    const auto length = length_();
    if (length < 0 || length > longestRegister)
        throw GenICam::OutOfRangeException("A register of " + std::to_string(length) + " bytes is not possible.");
    auto address = base_;
    for (const auto& term : terms_) {
        auto value = term.node->ReadInteger();
        if (term.isIndex) value = times(value, term.stride ? term.stride() : length);
        address = plus(address, value);
    }
    address_ = address;
    currentLength_ = length;
    if (taint.IsClean())
        engine_.states.Keep(vertex_, kept::place);
    else
        engine_.states.Forget(vertex_, kept::place);
}

int64_t Location::Address() { return Place(), address_; }
int64_t Location::Length() { return Place(), currentLength_; }

EAccessMode Location::Mode() {
    engine_.Ask(vertex_, facet::mode);
    for (const auto& term : terms_) {
        if (!IsReadable(Combine(term.node->Mode(), RW))) return NA;
        auto* stride = term.stride.Target();
        if (stride && !IsReadable(Combine(stride->Mode(), RW))) return NA;
    }
    if (auto* length = length_.Target(); length && !IsReadable(Combine(length->Mode(), RW))) return NA;
    return port_.Mode();
}

void Location::SawAt(int64_t address) {
    seenAddress_ = address;
    engine_.locationIndex.Seen(*this, address, SeenLength());
}

std::span<const uint8_t> Location::Read(ECachingMode caching) {
    engine_.Ask(vertex_, facet::value);
    Place();
    auto& evaluator = engine_.evaluator;
    const bool sameRange = seenAddress_ == address_ && SeenLength() == currentLength_;
    const bool isKept = sameRange && Has(kept::bytes) && caching != NoCache && !evaluator.bypass;
    if (isKept) {
        engine_.states.Keep(vertex_, kept::reliance);
        return bytes_.All();
    }
    if (caching == NoCache) evaluator.tainted = true;
    if (sameRange && epoch_ == evaluator.epoch) return bytes_.All();  // this question has read it already

    const bool wasReliedOn = sameRange && Has(kept::reliance);
    const bool wasValid = sameRange && Has(kept::bytes);
    Bytes fresh;
    fresh.Resize(static_cast<size_t>(currentLength_));
    engine_.states.Forget(vertex_, kept::bytes);
    port_.ReadBytes(fresh.All(), address_, vertex_);
    const bool differs = wasReliedOn && !std::ranges::equal(fresh.All(), bytes_.All());
    std::swap(bytes_, fresh);
    SawAt(address_);
    epoch_ = evaluator.epoch;
    const bool isKeptNow = wasValid || caching != NoCache;
    if (differs) engine_.Changed(vertex_, facet::value);
    KeepBytes(isKeptNow);
    return bytes_.All();
}

void Location::KeepBytes(bool areTrue) {
    constexpr uint8_t both = kept::bytes | kept::reliance;
    areTrue ? engine_.states.Keep(vertex_, both) : engine_.states.Forget(vertex_, both);
}

std::span<const uint8_t> Location::Known() {
    Place();
    const bool sameRange = seenAddress_ == address_ && SeenLength() == currentLength_;
    if (!sameRange || !Has(kept::bytes)) {
        bytes_.Resize(static_cast<size_t>(currentLength_));
        std::ranges::fill(bytes_.All(), uint8_t{0});
        SawAt(address_);
        Drop();
    }
    return bytes_.All();
}

void Location::Write(std::span<const uint8_t> bytes, ECachingMode caching) {
    Place();
    const auto address = address_;
    const auto length = static_cast<int64_t>(bytes.size());
    Drop();
    const auto spread = [&] {
        engine_.locationIndex.ForEachOverlap(*this, &port_, address, length, [&](Location& other) {
            other.Drop();
            engine_.Changed(other.Vertex(), facet::value);
        });
        engine_.Changed(vertex_, facet::value);
    };
    try {
        port_.WriteBytes(bytes, address, vertex_);
    } catch (...) {
        spread();  // nobody knows what arrived
        throw;
    }
    spread();
    bytes_.Resize(bytes.size());
    std::copy(bytes.begin(), bytes.end(), bytes_.All().begin());
    SawAt(address);
    KeepBytes(caching == WriteThrough);
}

}  // namespace kiv::genapi
