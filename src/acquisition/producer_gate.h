/// The gate through which a thread of ours calls a producer, so that another thread can tell whether it ever came back.
///
/// A producer may never return from a call. Whoever ends the thread then shuts the gate: the thread, should it come back after
/// all, finds the gate shut and leaves without touching what has been given back meanwhile. Without that it might call into a
/// stream that is closed, or a library that is unloaded. Work inside the camera's node map goes through it as well: another
/// thread's register access may keep the map for ever.
#pragma once

#include <GenICam/exceptions.h>

#include <atomic>
#include <cstdint>

#include "transport/status.h"

namespace ImageLib {

class ProducerGate {
public:
    /// Thrown on the thread that finds the gate shut: it must leave, by way of nothing that belongs to anybody else.
    struct Shut {};

    /// Makes the call, on the one thread that uses this gate. What a producer throws counts as its failure: a GenICam exception
    /// as K_ST_GC_ERROR. The call reads whatever it needs inside, not before: it may be gone.
    template <class Call>
    K_STATUS_CODES Through(Call&& call) {
        Step();
        K_STATUS_CODES status = K_ST_ERROR;
        try {
            status = call();
        } catch (const GenICam::GenericException&) {
            status = K_ST_GC_ERROR;
        } catch (...) {
        }
        Step();
        return status;
    }

    /// Where the thread stands; changes with each call that it begins or ends.
    using Standing = std::uint64_t;
    Standing Look() const { return steps_; }
    /// Shuts the gate if the thread is inside the same call as when `seen` was looked at. True: it is shut now.
    bool ShutIfStillInside(Standing seen) {
        if (seen % 2 == 0) return false;
        if (seen & shut_bit) return true;
        return steps_.compare_exchange_strong(seen, seen | shut_bit);
    }
    bool IsShut() const { return (steps_ & shut_bit) != 0; }
    /// Whatever the thread is doing.
    void ShutNow() { steps_ |= shut_bit; }

private:
    static constexpr Standing shut_bit = Standing{1} << 63;

    void Step() {
        if (steps_.fetch_add(1) & shut_bit) throw Shut{};
    }

    std::atomic<Standing> steps_{0};  // odd while inside a call
};

}  // namespace ImageLib
