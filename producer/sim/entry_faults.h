/// Functions of the producer that were asked to fail or to be late: for one camera (its CameraState has a list) or for all calls
/// (the session has one). Every function may be called from any thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "failure.h"

namespace kivsim {

struct EntryFault {
    std::string entry;
    GC_ERROR status = GenTL::GC_ERR_IO;  ///< SUCCESS: the function is only late
    uint32_t first_call = 1;             ///< counted from when the fault was added
    uint32_t calls = 0;                  ///< how many fail; 0: all from the first on
    std::chrono::milliseconds delay{0};
};

class EntryFaults {
public:
    EntryFaults() = default;
    ~EntryFaults() { Clear(); }
    EntryFaults(const EntryFaults&) = delete;
    EntryFaults& operator=(const EntryFaults&) = delete;

    void Add(const EntryFault& fault);
    void Clear();

    /// A call of the entry is about to begin: waits if it shall be late, throws the status that it shall have.
    void Meet(std::string_view entry);
    /// Waits as long as one that is late; ends early like those.
    void Delay(std::chrono::milliseconds time);
    /// Ends delays, those to come too: the producer is being closed.
    void Release();

    /// Whether there is a fault anywhere: what every call asks first.
    static bool Any() noexcept { return armed() != 0; }

private:
    struct Counted {
        EntryFault fault;
        uint64_t seen;
    };
    static std::atomic<size_t>& armed() noexcept;

    std::mutex lock_;
    std::condition_variable released_;
    std::vector<Counted> faults_;
    bool closing_ = false;
};

/// Whether the producer exports a function of that name.
bool is_entry(std::string_view name);

}  // namespace kivsim
