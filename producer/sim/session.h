/// What exists between GCInitLib and GCCloseLib: the configuration, the live handles, the system module.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "configuration.h"
#include "handles.h"

namespace kivsim {

class System;

struct Session {
    Session();

    Configuration configuration;
    std::string configuration_error;  ///< why TLOpen will fail; empty: it will not

    /// Lets every delay end, those to come too.
    void Release();

    HandleTable handles;
    std::recursive_mutex tree;  ///< guards the modules and who is open; see module.h
    std::shared_ptr<System> system;

    /// File name and whole path of this producer.
    std::string module_path, module_name;
};

/// Both throw: RESOURCE_IN_USE when there is a session, NOT_INITIALIZED when there is none.
void begin_session();
void end_session();

/// Throws NOT_INITIALIZED. The session lives as long as the answer is held, also when it is ended meanwhile.
std::shared_ptr<Session> current_session();

/// An object that an exported function works on; it stays alive for the whole call.
template <typename T>
class Found {
public:
    explicit Found(const void* handle) : session_(current_session()), object_(session_->handles.Find<T>(handle)) {}
    T* operator->() const { return object_.get(); }
    T& operator*() const { return *object_; }
    const std::shared_ptr<T>& Shared() const { return object_; }
    Session& InSession() const { return *session_; }

private:
    std::shared_ptr<Session> session_;
    std::shared_ptr<T> object_;
};

/// The same with the tree locked. The look-up happens under the lock, so the object is not closed in between.
template <typename T>
class Locked {
public:
    explicit Locked(const void* handle)
        : session_(current_session()), guard_(session_->tree), object_(session_->handles.Find<T>(handle)) {}
    T* operator->() const { return object_.get(); }
    T& operator*() const { return *object_; }
    const std::shared_ptr<T>& Shared() const { return object_; }

private:
    std::shared_ptr<Session> session_;
    std::unique_lock<std::recursive_mutex> guard_;
    std::shared_ptr<T> object_;
};

}  // namespace kivsim
