#include "transport/shared_handles.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace kiv {

namespace {

struct OpenHandle {
    OpenHandle(std::shared_ptr<void> its_object, HandleKind its_kind)
        : object(std::move(its_object)), kind(its_kind), live(object.get(), its_kind) {}

    std::shared_ptr<void> object;
    HandleKind kind;
    LiveHandle live;
};

struct alignas(64) Stripe {
    std::mutex lock;
    std::unordered_map<const void*, OpenHandle> open;
};

Stripe& stripe_of(const void* handle) {
    using Stripes = std::array<Stripe, 16>;
    // Never destroyed: a program's own statics may close what they opened when the process exits.
    static Stripes& stripes = *std::make_unique<Stripes>().release();
    return stripes[(reinterpret_cast<std::uintptr_t>(handle) >> 6) % stripes.size()];
}

}  // namespace

void* share_handle(std::shared_ptr<void> object, HandleKind kind) {
    void* handle = object.get();
    auto& stripe = stripe_of(handle);
    std::lock_guard guard(stripe.lock);
    stripe.open.try_emplace(handle, std::move(object), kind);
    return handle;
}

std::shared_ptr<void> shared_object(const void* handle, HandleKind kind) noexcept {
    auto& stripe = stripe_of(handle);
    std::lock_guard guard(stripe.lock);
    auto found = stripe.open.find(handle);
    return found == stripe.open.end() || found->second.kind != kind ? nullptr : found->second.object;
}

std::shared_ptr<void> close_shared_handle(const void* handle, HandleKind kind) noexcept {
    auto& stripe = stripe_of(handle);
    std::lock_guard guard(stripe.lock);
    auto found = stripe.open.find(handle);
    if (found == stripe.open.end() || found->second.kind != kind) return nullptr;
    auto object = std::move(found->second.object);
    stripe.open.erase(found);
    return object;
}

}  // namespace kiv
