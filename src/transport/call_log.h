/// A call of a producer as a line of the log: function, arguments, what came back, how long it took.
#pragma once

#include <GenTL/GenTL.h>

#include <chrono>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kiv {

/// The calls that make a session: told at INFO when they succeed, at WARN when they fail. All others are told at DEBUG.
constexpr bool is_landmark(std::string_view call) {
    constexpr std::string_view landmarks[] = {
        "TLOpen",   "TLClose",           "TLOpenInterface",       "IFClose", "IFOpenDevice",       "TLOpenDeviceMc",
        "DevClose", "DevOpenDataStream", "DevCreateDataStreamMc", "DSClose", "DSStartAcquisition", "DSStopAcquisition"};
    for (const auto each : landmarks)
        if (each == call) return true;
    return false;
}

/// An argument as the log shows it. Of a result the value is shown, which is looked at only after a success.
class CallArgument {
public:
    explicit CallArgument(std::signed_integral auto number) : kind_(Kind::number), number_(number) {}
    explicit CallArgument(std::unsigned_integral auto number) : kind_(Kind::count), number_(static_cast<std::int64_t>(number)) {}
    explicit CallArgument(const char* text) : kind_(Kind::text), pointer_(text) {}
    explicit CallArgument(const void* address) : kind_(Kind::address), pointer_(address) {}
    explicit CallArgument(char* room) : CallArgument(static_cast<const void*>(room)) {}
    explicit CallArgument(void** result) : kind_(Kind::address_result), pointer_(result) {}
    template <std::integral Number>
    requires(!std::same_as<Number, char>) explicit CallArgument(Number* result)
        : kind_(Kind::number_result), number_(sizeof(Number)), pointer_(result) {}

    void AppendTo(std::string& line, bool succeeded) const;

private:
    enum class Kind { number, count, address, text, number_result, address_result };
    Kind kind_;
    std::int64_t number_ = 0;  // of a result its size
    const void* pointer_ = nullptr;
};

/// Made before the call; one of the others after it. None of them throws: a line that cannot be made is lost.
class CallLog {
public:
    explicit CallLog(const char* name) noexcept : name_(name), begin_(std::chrono::steady_clock::now()) {}

    void Returned(GenTL::GC_ERROR status, std::initializer_list<CallArgument> arguments) const noexcept;
    /// The same for a transfer, with the bytes.
    void PortReturned(GenTL::GC_ERROR status, GenTL::PORT_HANDLE port, std::uint64_t address, const void* bytes,
                      const std::size_t* size) const noexcept;
    void Threw() const noexcept;

private:
    std::string Outcome(GenTL::GC_ERROR status) const;
    void Say(GenTL::GC_ERROR status, const std::string& line) const;

    const char* name_;
    std::chrono::steady_clock::time_point begin_;
};

/// "ACCESS_DENIED (-1005)"; the number alone when it is the producer's own.
std::string status_text(GenTL::GC_ERROR status);

}  // namespace kiv
