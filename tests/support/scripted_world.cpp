#include "scripted_world.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace scripted {

using namespace GenTL;
using Guard = std::lock_guard<std::recursive_mutex>;

Info text_info(const std::string& text) {
    return {GC_ERR_SUCCESS, INFO_DATATYPE_STRING, std::string(text.c_str(), text.size() + 1)};
}
Info refusal(GC_ERROR status) { return {status, INFO_DATATYPE_UNKNOWN, {}}; }

void Port::Describe(const std::string& file_name, const std::string& content, std::uint64_t address) {
    char url[512];
    std::snprintf(url, sizeof url, "local:%s;%llx;%zx", file_name.c_str(), static_cast<unsigned long long>(address),
                  content.size());
    urls = {url};
    memory[address] = content;
}

char* Port::Find(std::uint64_t address, std::uint64_t length) {
    auto after = memory.upper_bound(address);
    if (after == memory.begin()) return nullptr;
    auto& [start, bytes] = *std::prev(after);
    auto offset = address - start;
    return offset <= bytes.size() && length <= bytes.size() - offset ? bytes.data() + offset : nullptr;
}

Frame image_frame(std::uint64_t id, std::size_t width, std::size_t height, std::uint64_t pixel_format) {
    auto size = [](std::size_t value) { return number_info(INFO_DATATYPE_SIZET, value); };
    auto wide = [](std::uint64_t value) { return number_info(INFO_DATATYPE_UINT64, value); };
    Frame frame;
    frame.infos = {{BUFFER_INFO_WIDTH, size(width)},
                   {BUFFER_INFO_HEIGHT, size(height)},
                   {BUFFER_INFO_PIXELFORMAT, wide(pixel_format)},
                   {BUFFER_INFO_PIXELFORMAT_NAMESPACE, wide(PIXELFORMAT_NAMESPACE_PFNC_32BIT)},
                   {BUFFER_INFO_FRAMEID, wide(id)},
                   {BUFFER_INFO_TIMESTAMP, wide(1000 * id)},
                   {BUFFER_INFO_XOFFSET, size(0)},
                   {BUFFER_INFO_YOFFSET, size(0)},
                   {BUFFER_INFO_XPADDING, size(0)},
                   {BUFFER_INFO_IMAGEPRESENT, number_info<std::uint8_t>(INFO_DATATYPE_BOOL8, 1)},
                   {BUFFER_INFO_PAYLOADTYPE, size(PAYLOAD_TYPE_IMAGE)}};
    frame.data.assign(width * height, static_cast<char>(id));
    return frame;
}

void World::Refuse(const std::string& entry, GC_ERROR status, unsigned from, unsigned count) {
    Guard guard(lock);
    auto first = counts_[entry] + from;
    rules_[entry].push_back({status, first, first + count});
}

void World::Accept(const std::string& entry) {
    Guard guard(lock);
    rules_.erase(entry);
}

void World::SetHook(const std::string& entry, Hook hook) {
    Guard guard(lock);
    hooks_[entry] = std::move(hook);
}

std::optional<GC_ERROR> World::Begin(Call call) {
    Hook hook;
    std::optional<GC_ERROR> refused;
    {
        Guard guard(lock);
        auto number = ++counts_[call.entry];
        calls_.push_back(call);
        for (const auto& rule : rules_[call.entry])
            if (number >= rule.first && number < rule.end) refused = rule.status;
        if (auto found = hooks_.find(call.entry); found != hooks_.end()) hook = found->second;
    }
    happened.notify_all();
    if (refused) return Remember(*refused, call.entry);
    if (hook)
        if (auto status = hook(call)) return Remember(*status, call.entry);
    return std::nullopt;
}

GC_ERROR World::Remember(GC_ERROR status, const std::string& entry) {
    Guard guard(lock);
    if (status != GC_ERR_SUCCESS) {
        last_error = status;
        last_error_text = "scripted failure of " + entry;
    }
    return status;
}

GC_ERROR World::Broken(const std::string& rule, GC_ERROR status) {
    Guard guard(lock);
    misuse_.push_back(rule);
    return status;
}

bool World::Deliver(Stream& stream, const Frame& frame) {
    Guard guard(lock);
    if (!stream.started || stream.input.empty()) return false;
    Buffer& buffer = *stream.input.front();
    stream.input.pop_front();
    buffer.infos = frame.infos;
    buffer.chunks = frame.chunks;
    auto filled = std::min(frame.data.size(), buffer.size);
    std::memcpy(buffer.base, frame.data.data(), filled);
    buffer.infos.try_emplace(BUFFER_INFO_SIZE_FILLED, number_info(INFO_DATATYPE_SIZET, filled));
    ++stream.delivered;
    MoveToOutput(stream, buffer, true);
    return true;
}

void World::MoveToOutput(Stream& stream, Buffer& buffer, bool new_data) {
    buffer.place = Buffer::Place::output;
    buffer.new_data = new_data;
    EVENT_NEW_BUFFER_DATA data{&buffer, buffer.user};
    Raise(&stream, EVENT_NEW_BUFFER, std::string(reinterpret_cast<const char*>(&data), sizeof data));
}

bool World::Raise(void* source, EVENT_TYPE type, const std::string& data) {
    Guard guard(lock);
    Event* event = FindRegistration(source, type);
    if (!event) return false;
    event->queue.push_back(data);
    happened.notify_all();
    return true;
}

std::vector<Call> World::Calls() const {
    Guard guard(lock);
    return calls_;
}

std::vector<Call> World::CallsOf(const std::string& entry) const {
    Guard guard(lock);
    std::vector<Call> found;
    std::ranges::copy_if(calls_, std::back_inserter(found), [&](const Call& call) { return call.entry == entry; });
    return found;
}

std::vector<std::string> World::Order(const std::vector<std::string>& of) const {
    Guard guard(lock);
    std::vector<std::string> order;
    for (const auto& call : calls_)
        if (std::ranges::find(of, call.entry) != of.end()) order.push_back(call.entry);
    return order;
}

void World::ForgetCalls() {
    Guard guard(lock);
    calls_.clear();
}

bool World::WaitUntil(const std::function<bool()>& condition) {
    std::unique_lock guard(lock);
    return happened.wait_for(guard, std::chrono::seconds(10), condition);
}

bool World::WaitForCalls(const std::string& entry, std::size_t count) {
    return WaitUntil([&] { return Count(entry) >= count; });
}

std::vector<std::string> World::Misuse() const {
    Guard guard(lock);
    return misuse_;
}

std::vector<std::string> World::OpenModules() const {
    Guard guard(lock);
    std::vector<std::string> names;
    auto note = [&](bool is_open, const std::string& module) {
        if (is_open) names.push_back(module);
    };
    note(open, "TL");
    for (const auto& interface : interfaces) {
        note(interface.open, interface.id);
        for (const auto& device : interface.devices) {
            note(device.open, device.id);
            for (const auto& stream : device.streams) note(stream.open, stream.id);
        }
    }
    return names;
}

}  // namespace scripted
