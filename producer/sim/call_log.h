/// The producer's own log: its calls, and what goes over the link to the cameras.
///
/// KIV_GENTL_LOGGING "TRUE" switches the calls on, KIV_LIBUSB_LOGGING "TRUE" the transfers of the link; KIV_LOG_LEVEL says how
/// much is told. GCInitLib looks at them. Lines go to the file that KIV_SIM_LOG names, at its end, or to the standard error
/// stream. While nothing is switched on a call costs a load and a branch more.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "GenTL/GenTL.h"

namespace kivsim {

/// As KIV_LOG_LEVEL has them; 1 and less tell nothing that happens here.
enum class Detail : int { none = 0, failures = 2, refusals = 3, landmarks = 4, everything = 6 };

class CallLog {
public:
    /// Between GCInitLib and GCCloseLib.
    static void Open(const std::string& producer);
    static void Close() noexcept;

    static bool TellsCalls() noexcept { return calls_.load(std::memory_order_relaxed) != Detail::none; }
    static bool TellsTransfers() noexcept { return transfers_.load(std::memory_order_relaxed) == Detail::everything; }

    /// A call that has ended, with the text of its failure.
    static void Call(const char* entry, const void* handle, GenTL::GC_ERROR status, const char* failure,
                     std::chrono::steady_clock::duration time) noexcept;
    static void Transfer(const std::string& camera, const char* what, std::uint64_t address,
                         std::span<const std::byte> bytes) noexcept;

private:
    static inline std::atomic<Detail> calls_{Detail::none}, transfers_{Detail::none};
};

}  // namespace kivsim
