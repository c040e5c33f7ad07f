/// What a scripted producer shows, how it shall fail, and what was asked of it.
///
/// A scripted producer is a GenTL producer without hardware whose whole state is one World. A test loads the module, takes its
/// World, changes it, and then lets the library find the same module. Time plays no part: a frame exists when the test delivers
/// it.
///
/// The producer is as strict as the standard allows: what it refuses because a rule of the standard was broken (a call before
/// GCInitLib, a closed handle, a missing type pointer, revoking a queued buffer) is also noted in `misuse`, which a test expects
/// to stay empty.
///
/// Threads. Modules and descriptions are changed before the library sees them. Everything with a member function here, and what
/// the entry points do, is guarded by the world's own lock.
#pragma once

#include <GenTL/GenTL.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace scripted {

/// One call of an entry point: its arguments in order. Handles and pointers as addresses, texts apart.
struct Call {
    std::string entry;
    std::vector<std::uint64_t> numbers;
    std::string text;
};

/// What an info query answers: a refusal, or bytes of a type.
struct Info {
    GenTL::GC_ERROR status = GenTL::GC_ERR_SUCCESS;
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
    std::string bytes;
};
using Infos = std::map<std::int32_t, Info>;

Info text_info(const std::string& text);
Info refusal(GenTL::GC_ERROR status);
template <class Number>
Info number_info(GenTL::INFO_DATATYPE type, Number number) {
    return {GenTL::GC_ERR_SUCCESS, type, std::string(reinterpret_cast<const char*>(&number), sizeof number)};
}

/// The registers behind a port, and where its description is.
struct Port {
    std::vector<std::string> urls;
    std::map<std::uint64_t, std::string> memory;  ///< start address -> bytes; an access must lie inside one of them

    /// Puts the description into the memory at `address` and names it as the only one.
    void Describe(const std::string& file_name, const std::string& content, std::uint64_t address = 0x10000);
    char* Find(std::uint64_t address, std::uint64_t length);
};

struct Buffer {
    void* base = nullptr;
    std::size_t size = 0;
    void* user = nullptr;
    enum class Place { announced, input, output } place = Place::announced;
    bool new_data = false;
    Infos infos;  ///< of the frame that lies in it; they win over what the producer knows itself
    std::vector<GenTL::SINGLE_CHUNK_DATA> chunks;
};

struct Stream {
    std::string id;
    Port port;
    Infos infos;  ///< they win over what the producer knows itself
    bool open = false;
    bool started = false;
    std::uint64_t delivered = 0;
    std::list<Buffer> buffers;
    std::deque<Buffer*> input;
};

struct Device {
    std::string id;
    Infos infos;
    Port local;
    Port remote;
    std::list<Stream> streams;
    bool open = false;
};

struct Interface {
    std::string id;
    Port port;
    std::list<Device> devices;
    bool open = false;
};

/// A registered event with its queue.
struct Event {
    void* source = nullptr;
    GenTL::EVENT_TYPE type = 0;
    std::deque<std::string> queue;
    unsigned kills = 0;
    bool registered = true;
};

/// An image as the test wants it delivered.
struct Frame {
    Infos infos;
    std::string data;
    std::vector<GenTL::SINGLE_CHUNK_DATA> chunks;
};
/// A plain image with all infos that a good producer gives.
Frame image_frame(std::uint64_t id, std::size_t width, std::size_t height, std::uint64_t pixel_format = 0x01080001);

class World {
public:
    // ---- what there is ----
    std::string vendor = "Scripted Works";
    std::string name;     ///< file name text
    std::string tl_type;  ///< transport type text
    Port port;            ///< of the system module
    std::list<Interface> interfaces;
    std::size_t max_buffers = std::numeric_limits<std::size_t>::max();  ///< announcing more is refused

    Interface& FirstInterface() { return interfaces.front(); }
    Device& FirstDevice() { return interfaces.front().devices.front(); }
    Stream& FirstStream() { return FirstDevice().streams.front(); }

    // ---- how it fails ----
    /// Calls number `from` (counted from 1, from now on) and the `count - 1` after it return `status` and do nothing else.
    void Refuse(const std::string& entry, GenTL::GC_ERROR status, unsigned from = 1, unsigned count = 0x7FFFFFFF);
    void Accept(const std::string& entry);
    /// Asked at each call of the entry before it does anything, on the calling thread, without the lock. A status refuses the
    /// call; an exception leaves the entry point, as it does from producers that know no better.
    using Hook = std::function<std::optional<GenTL::GC_ERROR>(const Call&)>;
    void SetHook(const std::string& entry, Hook hook);

    // ---- what happens ----
    /// Fills the buffer that has waited longest and announces it. False when none waits or the stream is not started.
    bool Deliver(Stream& stream, const Frame& frame);
    /// Queues the data of an event that is registered on the module. False when nobody registered it.
    bool Raise(void* source, GenTL::EVENT_TYPE type, const std::string& data);

    // ---- what was asked ----
    std::vector<Call> Calls() const;
    std::vector<Call> CallsOf(const std::string& entry) const;
    std::size_t Count(const std::string& entry) const { return CallsOf(entry).size(); }
    /// The entries among `of` in the order of their calls.
    std::vector<std::string> Order(const std::vector<std::string>& of) const;
    void ForgetCalls();
    /// Waits until the condition holds, looking again after each call; false when it did not within ten seconds. The condition
    /// may use all of this class.
    bool WaitUntil(const std::function<bool()>& condition);
    bool WaitForCalls(const std::string& entry, std::size_t count);
    /// What broke a rule of the standard, in words.
    std::vector<std::string> Misuse() const;
    /// Modules that are open, by name ("TL", interface, device and stream ids).
    std::vector<std::string> OpenModules() const;

    // ---- for the entry points ----
    /// Notes the call and asks the script; a status ends the call.
    std::optional<GenTL::GC_ERROR> Begin(Call call);
    GenTL::GC_ERROR Broken(const std::string& rule, GenTL::GC_ERROR status);
    GenTL::GC_ERROR Remember(GenTL::GC_ERROR status, const std::string& entry);
    Port* FindPort(void* handle);
    Interface* FindInterface(void* handle);
    Device* FindDevice(void* handle);
    Stream* FindStream(void* handle);
    Buffer* FindBuffer(Stream& stream, void* handle);
    Event* FindEvent(void* handle);
    Event* FindRegistration(void* source, GenTL::EVENT_TYPE type);
    void MoveToOutput(Stream& stream, Buffer& buffer, bool new_data);
    void CloseStream(Stream& stream);
    void CloseDevice(Device& device);
    void CloseInterface(Interface& interface);
    void Unregister(Event& event);

    mutable std::recursive_mutex lock;
    std::condition_variable_any happened;
    bool initialised = false;
    bool open = false;
    std::list<Event> events;  ///< never shrinks: a waiting call may still look at an event that is gone
    GenTL::GC_ERROR last_error = GenTL::GC_ERR_SUCCESS;
    std::string last_error_text = "No Error";

private:
    struct Rule {
        GenTL::GC_ERROR status;
        std::uint64_t first, end;
    };
    std::vector<Call> calls_;
    std::map<std::string, std::uint64_t> counts_;
    std::map<std::string, std::vector<Rule>> rules_;
    std::map<std::string, Hook> hooks_;
    std::vector<std::string> misuse_;
};

/// The world as it is at first: one interface, one camera, one stream, all with descriptions. `type` is the transport type text.
void furnish(World& world, const std::string& name, const std::string& type);

/// What the side door of a module (the export "Scripted_Control") hands out.
struct Control {
    World* (*world)();
    /// A new world, furnished; the old one is gone.
    void (*reset)();
};

}  // namespace scripted
