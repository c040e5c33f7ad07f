// Finding and closing the modules of a scripted producer: a handle is an address, and only one that is open is found.
#include <algorithm>

#include "scripted_world.h"

namespace scripted {

using namespace GenTL;

Interface* World::FindInterface(void* handle) {
    for (auto& interface : interfaces)
        if (&interface == handle && interface.open) return &interface;
    return nullptr;
}

Device* World::FindDevice(void* handle) {
    for (auto& interface : interfaces)
        for (auto& device : interface.devices)
            if (&device == handle && device.open) return &device;
    return nullptr;
}

Stream* World::FindStream(void* handle) {
    for (auto& interface : interfaces)
        for (auto& device : interface.devices)
            for (auto& stream : device.streams)
                if (&stream == handle && stream.open) return &stream;
    return nullptr;
}

Buffer* World::FindBuffer(Stream& stream, void* handle) {
    for (auto& buffer : stream.buffers)
        if (&buffer == handle) return &buffer;
    return nullptr;
}

Event* World::FindEvent(void* handle) {
    for (auto& event : events)
        if (&event == handle) return &event;
    return nullptr;
}

Event* World::FindRegistration(void* source, EVENT_TYPE type) {
    for (auto& event : events)
        if (event.registered && event.source == source && event.type == type) return &event;
    return nullptr;
}

Port* World::FindPort(void* handle) {
    if (handle == this && open) return &port;
    if (auto* interface = FindInterface(handle)) return &interface->port;
    if (auto* device = FindDevice(handle)) return &device->local;
    if (auto* stream = FindStream(handle)) return &stream->port;
    for (auto& interface : interfaces)
        for (auto& device : interface.devices)
            if (&device.remote == handle && device.open) return &device.remote;
    return nullptr;
}

void World::Unregister(Event& event) {
    event.registered = false;
    event.queue.clear();
    happened.notify_all();
}

void World::CloseStream(Stream& stream) {
    for (auto& event : events)
        if (event.source == &stream) Unregister(event);
    stream.open = stream.started = false;
    stream.input.clear();
    stream.buffers.clear();
    happened.notify_all();
}

void World::CloseDevice(Device& device) {
    for (auto& event : events)
        if (event.source == &device) Unregister(event);
    for (auto& stream : device.streams)
        if (stream.open) CloseStream(stream);
    device.open = false;
}

void World::CloseInterface(Interface& interface) {
    for (auto& event : events)
        if (event.source == &interface) Unregister(event);
    for (auto& device : interface.devices)
        if (device.open) CloseDevice(device);
    interface.open = false;
}

}  // namespace scripted
