/// The status codes as the classes below the exported shell use them.
///
/// Most functions return a K_STATUS_CODES. Deep inside a sequence of steps, where a status has to pass through functions that
/// return something else, it travels as a StatusError; the exported shell turns it back.
#pragma once

#include <kiv/types.h>

namespace kiv {

/// A status on its way to the caller. Never leaves the exported shell.
struct StatusError {
    K_STATUS_CODES code;
};

[[noreturn]] inline void fail(K_STATUS_CODES code) { throw StatusError{code}; }

/// Passes a success; anything else is thrown on.
inline void require_success(K_STATUS_CODES status) {
    if (status != K_ST_SUCCESS) fail(status);
}

/// Calls into a producer from where nothing may be thrown (destructors, threads of ours). A producer is foreign code: what it
/// throws counts as its failure.
template <class Call>
K_STATUS_CODES answer_of(Call&& call) noexcept {
    try {
        return call();
    } catch (...) {
        return K_ST_ERROR;
    }
}

}  // namespace kiv
