#include "grabber_library.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/paths.h>

#include <algorithm>
#include <array>
#include <thread>

#include "CLProtocol/baud_rates.h"

namespace CLProtocol {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int no_error = 0, port_in_use = -10003, timed_out = -10004;
constexpr unsigned most_ports = 64;
constexpr unsigned most_ports_without_count = 16;
constexpr std::size_t longest_name = 255;
constexpr milliseconds nap{2};  // between two looks at a line

struct ErrorName {
    int code;
    const char* text;
};
constexpr ErrorName error_names[] = {
    {-10001, "a buffer is too small"},      {-10002, "there is no such manufacturer"},  {-10003, "the port is in use"},
    {-10004, "the time ran out"},           {-10005, "there is no port of that index"}, {-10006, "the port is not open"},
    {-10007, "the error is not known"},     {-10008, "the rate is not supported"},      {-10009, "out of memory"},
    {-10010, "a registry key is missing"},  {-10011, "a pointer is invalid"},           {-10012, "the port is being used"},
    {-10098, "a library cannot be loaded"}, {-10099, "the function is missing"}};

/// A 32-bit number that a library writes. Libraries built from old headers write it as a long, which may be wider.
struct Number {
    std::array<unsigned, 2> room;

    explicit Number(std::size_t value = 0) : room{static_cast<unsigned>(value), 0} {}
    unsigned* Place() { return room.data(); }
    unsigned Value() const { return room[0]; }
};

/// A text that a library writes, whatever it says about its length.
template <class Call>
std::string text_of(Call&& call) {
    std::array<char, 1024> text{};
    Number size(text.size() - 1);
    if (call(text.data(), size.Place()) != no_error) return {};
    return {text.begin(), std::find(text.begin(), text.end() - 1, '\0')};
}

/// As part of a port's identifier: without what separates the parts or the lines of a list.
std::string as_name(std::string text, std::string fallback) {
    if (text.empty()) text = std::move(fallback);
    if (text.size() > longest_name) text.resize(longest_name);
    for (char& c : text)
        if (c == '#' || static_cast<unsigned char>(c) < ' ' || c == '\x7F') c = '_';
    return text;
}

}  // namespace

/// A port of a library. It keeps the library loaded.
class GrabberSerial : public Serial {
public:
    GrabberSerial(std::shared_ptr<GrabberLibrary> library, void* port) : library_(std::move(library)), port_(port) {}
    ~GrabberSerial() override {
        std::lock_guard guard(library_->lock_);
        library_->close_(port_);
    }
    GrabberSerial(const GrabberSerial&) = delete;
    GrabberSerial& operator=(const GrabberSerial&) = delete;

    std::size_t ReadSome(std::span<std::byte> bytes, milliseconds timeout) override {
        // A read waits for all that it was asked for and keeps what came when the time runs out; so only what is there is asked
        // for.
        for (const auto deadline = Clock::now() + timeout;;) {
            const std::size_t there =
                library_->bytes_available_ ? std::min(bytes.size(), Available()) : std::min(bytes.size(), size_t{1});
            const std::size_t count = there == 0 ? 0 : ReadNow(bytes.first(there), deadline);
            if (count > 0) return count;
            if (Clock::now() >= deadline) return 0;
            std::this_thread::sleep_for(nap);
        }
    }

    void Write(std::span<const std::byte> bytes, milliseconds timeout) override {
        std::vector<char> copy(bytes.size());  // the entry point takes what it does not change as if it did
        std::ranges::transform(bytes, copy.begin(), [](std::byte byte) { return std::to_integer<char>(byte); });
        Number size(copy.size());
        std::lock_guard guard(library_->lock_);
        if (const int error = library_->write_(port_, copy.data(), size.Place(), Milliseconds(timeout)); error != no_error)
            library_->GiveUp(error, "writing");
        if (size.Value() != copy.size()) library_->GiveUp(timed_out, "writing");
    }

    void Discard() override {
        std::lock_guard guard(library_->lock_);
        if (library_->flush_) library_->flush_(port_);  // without it the reader passes over what is old
    }

    std::uint32_t SupportedRates() override {
        if (!library_->supported_rates_) return slowest_rate.bit;
        Number mask;
        std::lock_guard guard(library_->lock_);
        if (const int error = library_->supported_rates_(port_, mask.Place()); error != no_error)
            library_->GiveUp(error, "asking for the rates");
        return mask.Value();
    }

    void SetRate(std::uint32_t bit) override {
        if (!library_->set_rate_ && bit == slowest_rate.bit) return;
        if (!library_->set_rate_) library_->GiveUp(-10099, "setting the rate");
        std::lock_guard guard(library_->lock_);
        if (const int error = library_->set_rate_(port_, bit); error != no_error) library_->GiveUp(error, "setting the rate");
    }

private:
    static unsigned Milliseconds(milliseconds time) { return static_cast<unsigned>(std::max<std::int64_t>(time.count(), 1)); }

    std::size_t Available() {
        Number count;
        std::lock_guard guard(library_->lock_);
        if (const int error = library_->bytes_available_(port_, count.Place()); error != no_error)
            library_->GiveUp(error, "reading");
        return count.Value();
    }

    std::size_t ReadNow(std::span<std::byte> bytes, Clock::time_point deadline) {
        Number size(bytes.size());
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        std::lock_guard guard(library_->lock_);
        const int error = library_->read_(port_, reinterpret_cast<char*>(bytes.data()), size.Place(), Milliseconds(left));
        if (error != no_error && error != timed_out) library_->GiveUp(error, "reading");
        return error == timed_out ? 0 : std::min<std::size_t>(size.Value(), bytes.size());
    }

    std::shared_ptr<GrabberLibrary> library_;
    void* port_;
};

GrabberLibrary::GrabberLibrary(const std::string& path) : library_(path) {
    const auto find = [this](auto*& function, const char* name) {
        function = library_.Function<std::remove_pointer_t<std::remove_reference_t<decltype(function)>>>(name);
        return function != nullptr;
    };
    const auto demand = [&](auto*& function, const char* name) {
        if (!find(function, name)) throw kiv::platform::LoadError("'" + path + "' is no serial library: it has no " + name);
    };
    demand(init_, "clSerialInit");
    demand(read_, "clSerialRead");
    demand(write_, "clSerialWrite");
    demand(close_, "clSerialClose");
    find(manufacturer_info_, "clGetManufacturerInfo");
    find(num_ports_, "clGetNumSerialPorts");
    find(port_identifier_, "clGetSerialPortIdentifier");
    find(bytes_available_, "clGetNumBytesAvail");
    if (!find(flush_, "clFlushPort")) find(flush_, "clFlushInputBuffer");
    find(error_text_, "clGetErrorText");
    find(supported_rates_, "clGetSupportedBaudRates");
    find(set_rate_, "clSetBaudRate");
}

std::shared_ptr<GrabberLibrary> GrabberLibrary::Load(const std::string& path) {
    return std::shared_ptr<GrabberLibrary>(new GrabberLibrary(path));
}

std::string GrabberLibrary::ErrorText(int error) {
    std::string text;
    if (error_text_) text = text_of([&](char* room, unsigned* size) { return error_text_(error, room, size); });
    const auto* const known = std::ranges::find(error_names, error, &ErrorName::code);
    if (text.empty() && known != std::end(error_names)) text = known->text;
    return text + " (" + std::to_string(error) + ")";
}

void GrabberLibrary::GiveUp(int error, const char* what) {
    throw GenICam::RuntimeException("'" + library_.Path() + "', " + what + ": " + ErrorText(error));
}

std::string GrabberLibrary::Manufacturer() {
    std::lock_guard guard(lock_);
    const std::string file = kiv::platform::utf8_from_path(kiv::platform::path_from_utf8(library_.Path()).filename());
    Number version;
    std::string name;
    if (manufacturer_info_)
        name = text_of([&](char* room, unsigned* size) { return manufacturer_info_(room, size, version.Place()); });
    return as_name(name, file);
}

/// A library that does not tell how many ports it has is asked for one after the other.
unsigned GrabberLibrary::CountPorts() {
    if (num_ports_) {
        Number count;
        return num_ports_(count.Place()) == no_error ? std::min(count.Value(), most_ports) : 0;
    }
    for (unsigned index = 0; index < most_ports_without_count; ++index) {
        void* port = nullptr;
        const int error = init_(index, &port);
        if (error == no_error) close_(port);
        if (error != no_error && error != port_in_use) return index;
    }
    return most_ports_without_count;
}

std::vector<std::string> GrabberLibrary::PortNames() {
    std::lock_guard guard(lock_);
    std::vector<std::string> names;
    for (unsigned index = 0, count = CountPorts(); index < count; ++index) {
        std::string name;
        if (port_identifier_) name = text_of([&](char* room, unsigned* size) { return port_identifier_(index, room, size); });
        names.push_back(as_name(name, "Port " + std::to_string(index)));
    }
    return names;
}

std::unique_ptr<Serial> GrabberLibrary::Open(unsigned index) {
    std::lock_guard guard(lock_);
    void* port = nullptr;
    if (const int error = init_(index, &port); error != no_error) GiveUp(error, "opening the port");
    return std::make_unique<GrabberSerial>(shared_from_this(), port);
}

bool is_grabber_library_name(std::string_view file_name) {
    std::string name(file_name);
    std::ranges::transform(name, name.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
    if (name.starts_with("lib")) name.erase(0, 3);
    if (!name.ends_with(".so") && !name.ends_with(".dll")) return false;
    name.erase(name.rfind('.'));
    if (name.ends_with("_w64")) name.erase(name.size() - 4);
    return name.starts_with("clser") && name.size() == 8;
}

}  // namespace CLProtocol
