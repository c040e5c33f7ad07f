/// One call from outside on a node or a map: it holds the lock, and at its end, when it is the outermost one of its thread, the
/// callbacks of everything that has changed are called: first those inside the lock, then, the lock released, those outside.
#pragma once

#include <exception>

#include "GenICam/exceptions.h"
#include "runtime/callback_book.h"

namespace kiv::genapi {

struct Engine;

class Operation {
public:
    /// `name` appears in exceptions: "SetValue".
    Operation(Engine& engine, const char* name);
    /// Finishes if that has not been done; what callbacks throw is dropped then, because an exception is under way already.
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    /// Calls the callbacks, all of them, and then throws the first exception that one of them threw.
    void Finish();

private:
    void CallInside();
    void Call(const CallbackBook::Entry& entry);

    Engine& engine_;
    const char* outerName_ = nullptr;
    CallbackBook::Entries outside_;
    std::exception_ptr error_;
    bool finished_ = false;
};

/// Throws `error` again as what it is; an error that names no node gets this one.
[[noreturn]] void rethrow_with_node(const GenICam::GenericException& error, GenICam::NodePlace place);

}  // namespace kiv::genapi
