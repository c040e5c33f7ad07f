/// Small helpers between the C interface's types and the producers'.
#pragma once

#include <kiv/types.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kiv::api {

/// The caller's 32-bit size for the length of one producer call: widened on the way in, written back when the call is over,
/// whatever its result. What a caller cannot be told is told as the largest number, not as its lower half.
class WideSize {
public:
    explicit WideSize(uint32_t& narrow) : narrow_(narrow), wide_(narrow) {}
    ~WideSize() { narrow_ = static_cast<uint32_t>(std::min<size_t>(wide_, UINT32_MAX)); }
    WideSize(const WideSize&) = delete;
    WideSize& operator=(const WideSize&) = delete;
    operator size_t*() { return &wide_; }

private:
    uint32_t& narrow_;
    size_t wide_;
};

/// A result that the producer insists on and this call does not want.
template <class T>
struct Ignored {
    T value{};
    operator T*() { return &value; }
};

}  // namespace kiv::api
