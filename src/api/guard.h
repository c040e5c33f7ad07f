/// What every exported function stands in: nothing that is thrown inside gets out.
#pragma once

#include "transport/status.h"

namespace kiv::api {

/// Turns the exception in flight into a status; the only place that knows how. A GenICam exception is also kept in the error
/// record.
K_STATUS_CODES status_of_current_exception() noexcept;

template <class Body>
K_STATUS_CODES guarded(Body&& body) noexcept try {
    return body();
} catch (...) {
    return status_of_current_exception();
}

/// For the few functions that have one status of their own for any exception.
template <class Body>
K_STATUS_CODES guarded_as(K_STATUS_CODES any_exception, Body&& body) noexcept try {
    return body();
} catch (const StatusError& error) {
    return error.code;
} catch (...) {
    return any_exception;
}

}  // namespace kiv::api
