#include "runtime/operation.h"

#include <typeinfo>
#include <utility>

#include "runtime/engine.h"
#include "runtime/engine_log.h"

namespace kiv::genapi {

Operation::Operation(Engine& engine, const char* name) : engine_(engine) {
    engine_.lock.Lock();
    outerName_ = std::exchange(engine_.operation, name);
    ++engine_.operationDepth;
}

Operation::~Operation() {
    try {
        Finish();
    } catch (...) {  // see the header
    }
}

void Operation::Call(const CallbackBook::Entry& entry) {
    if (entry.removed) return;
    try {
        (*entry.callback)(entry.callback->GetType());
    } catch (...) {
        if (log_wanted(log::Level::warn)) log_callback_failure(std::current_exception());
        if (!error_) error_ = std::current_exception();
    }
}

/// A callback may change nodes, whose callbacks are then called in the next round. Two callbacks that keep changing each other's
/// nodes would go on for ever: after many rounds the rest is dropped.
void Operation::CallInside() {
    constexpr int mostRounds = 1000;
    for (int round = 0; engine_.callbacks.IsAnyWaiting(); ++round) {
        const auto entries = engine_.callbacks.TakeWaiting();
        if (round >= mostRounds) return;
        for (const auto& entry : entries) {
            if (entry->callback->GetType() == GenApi::cbPostOutsideLock)
                outside_.push_back(entry);
            else
                Call(*entry);
        }
    }
}

void Operation::Finish() {
    if (finished_) return;
    finished_ = true;
    const bool outermost = engine_.operationDepth == 1;
    if (outermost && engine_.callbacks.IsAnyWaiting()) CallInside();
    --engine_.operationDepth;
    engine_.operation = outerName_;
    engine_.lock.Unlock();
    for (const auto& entry : outside_) Call(*entry);
    if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

namespace {

template <class Exception>
void throw_if(const GenICam::GenericException& error, GenICam::NodePlace place) {
    if (typeid(error) == typeid(Exception))
        throw Exception(error.GetDescription(), place, error.GetSourceFileName(), error.GetSourceLine());
}

}  // namespace

void rethrow_with_node(const GenICam::GenericException& error, GenICam::NodePlace place) {
    using namespace GenICam;
    if (*error.GetNodeName() == '\0') {
        throw_if<RuntimeException>(error, place);
        throw_if<AccessException>(error, place);
        throw_if<TimeoutException>(error, place);
        throw_if<OutOfRangeException>(error, place);
        throw_if<InvalidArgumentException>(error, place);
        throw_if<LogicalErrorException>(error, place);
    }
    throw;
}

}  // namespace kiv::genapi
