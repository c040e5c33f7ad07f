/// What the entry points of a scripted producer share: the world, the noting of calls, the answering of queries.
#pragma once

#include <GenTL/extensions.h>

#include <initializer_list>
#include <mutex>

#include "scripted_world.h"

namespace scripted {

World& world();

inline std::uint64_t as_number(const void* pointer) { return reinterpret_cast<std::uint64_t>(pointer); }
template <class Number>
requires std::is_integral_v<Number> std::uint64_t as_number(Number number) { return static_cast<std::uint64_t>(number); }

template <class... Arguments>
Call noted(const char* entry, Arguments... arguments) {
    return {entry, {as_number(arguments)...}, {}};
}
template <class... Arguments>
Call noted_text(const char* entry, const char* text, Arguments... arguments) {
    return {entry, {as_number(arguments)...}, text ? text : ""};
}

/// Notes the call, lets the script refuse it, and runs the body under the world's lock.
template <class Body>
GenTL::GC_ERROR run(Call call, Body body) {
    World& here = world();
    std::string entry = call.entry;
    if (auto refused = here.Begin(std::move(call))) return *refused;
    std::lock_guard guard(here.lock);
    if (!here.initialised && entry != "GCInitLib") return here.Broken(entry + " before GCInitLib", GenTL::GC_ERR_NOT_INITIALIZED);
    return here.Remember(body(here), entry);
}

/// A handle that is none, or no longer one.
GenTL::GC_ERROR bad_handle(World& here, const char* entry, const void* handle);
/// The standard's two-call query.
GenTL::GC_ERROR answer(World& here, const Info& info, GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size);
GenTL::GC_ERROR answer_text(World& here, const std::string& text, char* buffer, std::size_t* size);
GenTL::GC_ERROR answer_from(World& here, const Infos& infos, std::int32_t command, GenTL::INFO_DATATYPE* type, void* buffer,
                            std::size_t* size);

}  // namespace scripted
