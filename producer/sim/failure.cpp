#include "failure.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace kivsim {
namespace {

// Plain data: a destructor could run after the library is gone.
struct Record {
    GC_ERROR code;
    char text[512];
};
constinit thread_local Record record{GenTL::GC_ERR_SUCCESS, "No Error"};

GC_ERROR remember(GC_ERROR code, const char* text) noexcept {
    record.code = code;
    const size_t length = std::min(std::strlen(text), sizeof record.text - 1);
    std::memcpy(record.text, text, length);
    record.text[length] = '\0';
    return code;
}

template <typename Use>
GC_ERROR with_current_exception(Use use) noexcept {
    try {
        throw;
    } catch (const Failure& failure) {
        return use(failure.Code(), failure.what());
    } catch (const std::bad_alloc&) {
        return use(GenTL::GC_ERR_OUT_OF_MEMORY, "Out of memory");
    } catch (const std::exception& error) {
        return use(GenTL::GC_ERR_ERROR, error.what());
    } catch (...) {
        return use(GenTL::GC_ERR_ERROR, "Unknown failure");
    }
}

}  // namespace

void fail(GC_ERROR code, const std::string& text) { throw Failure(code, text); }

GC_ERROR status_of_current_exception() noexcept {
    return with_current_exception([](GC_ERROR code, const char*) { return code; });
}

GC_ERROR record_current_exception() noexcept { return with_current_exception(remember); }

LastError last_error() noexcept { return {record.code, record.text}; }

}  // namespace kivsim
