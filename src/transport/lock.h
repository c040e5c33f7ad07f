/// The library's two lock classes.
///
/// CCriticalSection is recursive: a thread may lock it again, and unlocks it as often. Waiting for it blocks without limit.
#pragma once

#include <kiv/platform/critical_section.h>

namespace GEV {

class CCriticalSection {
public:
    CCriticalSection() = default;
    virtual ~CCriticalSection() = default;
    CCriticalSection(const CCriticalSection&) = delete;
    CCriticalSection& operator=(const CCriticalSection&) = delete;

    virtual void Lock();
    virtual void Unlock();
    /// Tries to enter and answers true whatever the try returned: callers must not use it to learn whether the section was free.
    /// Kept because programs exist that would take a false for a failure.
    virtual bool TryLock();

private:
    kiv::platform::CriticalSection section_;
};

/// Holds a CCriticalSection for the life of a scope.
class CAutoLock {
public:
    explicit CAutoLock(CCriticalSection& section) : section_(&section) {
        section_->Lock();
        holds_ = true;
    }
    ~CAutoLock() {
        if (holds_) section_->Unlock();
    }
    CAutoLock(const CAutoLock&) = delete;
    CAutoLock& operator=(const CAutoLock&) = delete;

private:
    CCriticalSection* section_;
    bool holds_ = false;
};

/// The one section of the library, made when it loads: it guards the process-wide tables of opened interfaces and cameras.
CCriticalSection& library_section();

}  // namespace GEV
