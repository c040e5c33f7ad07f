#include "call_log.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string_view>

#include "kiv/platform/environment.h"

namespace kivsim {
namespace {

using namespace std::string_view_literals;

/// What makes a session; of these a success is worth telling too.
constexpr std::string_view landmarks[] = {
    "GCInitLib",          "GCCloseLib",       "TLOpen",   "TLClose",           "TLOpenInterface",       "IFClose",
    "IFOpenDevice",       "TLOpenDeviceMc",   "DevClose", "DevOpenDataStream", "DevCreateDataStreamMc", "DSClose",
    "DSStartAcquisition", "DSStopAcquisition"};

/// Answers that a consumer may well be asking for.
constexpr GenTL::GC_ERROR refusals[] = {GenTL::GC_ERR_TIMEOUT,         GenTL::GC_ERR_ABORT,
                                        GenTL::GC_ERR_NO_DATA,         GenTL::GC_ERR_NOT_IMPLEMENTED,
                                        GenTL::GC_ERR_NOT_AVAILABLE,   GenTL::GC_ERR_BUFFER_TOO_SMALL,
                                        GenTL::GC_ERR_RESOURCE_IN_USE, GenTL::GC_ERR_INVALID_INDEX};

constexpr std::size_t most_bytes = 64;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

struct Target {
    std::mutex lock;
    std::unique_ptr<std::FILE, CloseFile> file;  // null: the standard error stream
    std::string producer;
};

/// Not destroyed at exit, like the session; and not on the heap, because the module may be unloaded.
union Undestroyed {
    Target target;
    Undestroyed() : target() {}
    ~Undestroyed() {}
};

Target& target() {
    static Undestroyed place;
    return place.target;
}

bool is_true(const char* variable) { return kiv::platform::get_environment(variable).value_or("") == "TRUE"; }

/// Without a number that can be read: what makes a session.
Detail wanted_detail() {
    const std::string text = kiv::platform::get_environment("KIV_LOG_LEVEL").value_or("");
    int number = static_cast<int>(Detail::landmarks);
    std::from_chars(text.data(), text.data() + text.size(), number);
    auto detail = Detail::none;
    for (const Detail each : {Detail::failures, Detail::refusals, Detail::landmarks, Detail::everything})
        if (static_cast<int>(each) <= number) detail = each;
    return detail;
}

Detail detail_of(std::string_view entry, GenTL::GC_ERROR status) {
    if (status == GenTL::GC_ERR_TIMEOUT) return Detail::everything;  // of a wait: nothing came
    if (status != GenTL::GC_ERR_SUCCESS)
        return std::ranges::find(refusals, status) == std::end(refusals) ? Detail::failures : Detail::refusals;
    return std::ranges::find(landmarks, entry) == std::end(landmarks) ? Detail::everything : Detail::landmarks;
}

void print(const std::string& line) {
    Target& to = target();
    const std::scoped_lock guard(to.lock);
    std::FILE* const file = to.file ? to.file.get() : stderr;
    std::fprintf(file, "%s: %s\n", to.producer.c_str(), line.c_str());
    std::fflush(file);
}

}  // namespace

void CallLog::Open(const std::string& producer) {
    Target& to = target();
    {
        const std::scoped_lock guard(to.lock);
        const std::string path = kiv::platform::get_environment("KIV_SIM_LOG").value_or("");
        to.file.reset(path.empty() ? nullptr : std::fopen(path.c_str(), "ab"));
        to.producer = producer;
    }
    calls_ = is_true("KIV_GENTL_LOGGING") ? wanted_detail() : Detail::none;
    transfers_ = is_true("KIV_LIBUSB_LOGGING") ? wanted_detail() : Detail::none;
    if (calls_.load() >= Detail::landmarks) print("GCInitLib");
}

void CallLog::Close() noexcept {
    calls_ = transfers_ = Detail::none;
    const std::scoped_lock guard(target().lock);
    target().file.reset();
}

void CallLog::Call(const char* entry, const void* handle, GenTL::GC_ERROR status, const char* failure,
                   std::chrono::steady_clock::duration time) noexcept try {
    if (detail_of(entry, status) > calls_.load(std::memory_order_relaxed)) return;
    char head[160];
    std::snprintf(head, sizeof head, "%s(%p) = %d in %lld us", entry, handle, status,
                  static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(time).count()));
    print(status == GenTL::GC_ERR_SUCCESS ? head : std::string(head) + ": " + failure);
} catch (...) {  // the line is lost
}

void CallLog::Transfer(const std::string& camera, const char* what, std::uint64_t address,
                       std::span<const std::byte> bytes) noexcept try {
    char part[64];
    std::snprintf(part, sizeof part, " %s %zu bytes at 0x%llx:", what, bytes.size(), static_cast<unsigned long long>(address));
    std::string line = camera + part;
    for (const std::byte each : bytes.first(std::min(bytes.size(), most_bytes))) {
        std::snprintf(part, sizeof part, " %02x", std::to_integer<unsigned>(each));
        line += part;
    }
    print(bytes.size() > most_bytes ? line + " ..." : line);
} catch (...) {
}

}  // namespace kivsim
