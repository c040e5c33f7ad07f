#include "transport/lock.h"

namespace GEV {

namespace {
CCriticalSection the_library_section;
}

void CCriticalSection::Lock() { section_.Lock(); }
void CCriticalSection::Unlock() { section_.Unlock(); }

bool CCriticalSection::TryLock() {
    (void)section_.TryLock();
    return true;
}

CCriticalSection& library_section() { return the_library_section; }

}  // namespace GEV
