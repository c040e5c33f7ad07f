/// One entry point of a producer, called like the function itself.
///
/// This is where all calls of producers pass, so that the log can tell each of them; while nobody listens that costs a load and a
/// branch. A copy stands by itself: it may outlive the table that it came from, and once the producer has returned it touches
/// nothing but what the producer has just written.
#pragma once

#include <GenTL/GenTL.h>
#include <kiv/log/log.h>

#include <type_traits>

#include "transport/call_log.h"

namespace kiv {

template <class Function>
class ProducerEntry;

template <class... Arguments>
class ProducerEntry<GenTL::GC_ERROR(GC_CALLTYPE*)(Arguments...)> {
public:
    using Function = GenTL::GC_ERROR(GC_CALLTYPE*)(Arguments...);

    /// `name` is a literal.
    constexpr explicit ProducerEntry(const char* name)
        : name_(name), first_told_at_(is_landmark(name) ? log::Level::warn : log::Level::debug) {}

    /// False: the producer has no such entry point.
    bool Bind(void* symbol) {
        function_ = reinterpret_cast<Function>(symbol);
        return function_ != nullptr;
    }
    explicit operator bool() const { return function_ != nullptr; }

    GenTL::GC_ERROR operator()(Arguments... arguments) const {
        if (log::wanted(log::Category::gen_tl, first_told_at_)) [[unlikely]]
            return CallLogged(name_, function_, arguments...);
        return function_(arguments...);
    }

private:
    [[gnu::noinline, gnu::cold]] static GenTL::GC_ERROR CallLogged(const char* name, Function function, Arguments... arguments) {
        const CallLog call(name);
        try {
            const GenTL::GC_ERROR status = function(arguments...);
            if constexpr (std::is_same_v<Function, GenTL::PGCReadPort> || std::is_same_v<Function, GenTL::PGCWritePort>)
                call.PortReturned(status, arguments...);
            else if (!std::is_same_v<Function, GenTL::PEventGetData> || status != GenTL::GC_ERR_TIMEOUT)  // nothing came: no news
                call.Returned(status, {CallArgument(arguments)...});
            return status;
        } catch (...) {
            call.Threw();
            throw;
        }
    }

    const char* name_;
    log::Level first_told_at_;  // what fails is told before what succeeds
    Function function_ = nullptr;
};

}  // namespace kiv
