// The exported functions of the ports. No decision is taken here.

#include "device.h"
#include "session.h"

namespace GenTL {

using namespace kivsim;

namespace {

/// Calls `use` with the port of a handle: a module's with the tree locked, the camera's without.
template <typename Use>
void with_port(PORT_HANDLE handle, Use use) {
    {
        const Found<Object> object(handle);
        if (auto* camera = object->AsRemotePort()) return use(*camera);
        if (dynamic_cast<Buffer*>(&*object)) fail(GC_ERR_NOT_IMPLEMENTED, "Buffers have no port");
    }
    const Locked<Module> module(handle);
    use(*module);
}

/// A transfer is done as a whole or not at all; the caller learns which from the size, too.
template <typename Transfer>
void transfer(size_t& size, Transfer work) {
    if (size == 0) fail(GC_ERR_INVALID_PARAMETER, "No byte at all cannot be transferred");
    try {
        work();
    } catch (...) {
        size = 0;
        throw;
    }
}

template <typename Work>
void stacked(PORT_REGISTER_STACK_ENTRY* entries, size_t* count, Work work) {
    mandatory(entries, "pEntries");
    const size_t wanted = mandatory(count, "piNumEntries");
    for (*count = 0; *count < wanted; ++*count) {
        PORT_REGISTER_STACK_ENTRY entry = entries[*count];  // packed: no references into it
        mandatory(static_cast<std::byte*>(entry.pBuffer), "pBuffer");
        if (entry.Size == 0) fail(GC_ERR_INVALID_PARAMETER, "No byte at all cannot be transferred");
        work(entry.Address, std::span(static_cast<std::byte*>(entry.pBuffer), entry.Size));
    }
}

}  // namespace

extern "C" {

GC_API GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hPort, [&] {
        with_port(hPort, [&](Port& port) {
            auto& first = mandatory(static_cast<std::byte*>(pBuffer), "pBuffer");
            size_t& size = mandatory(piSize, "piSize");
            transfer(size, [&] { port.Read(iAddress, std::span(&first, size)); });
        });
    });
}

GC_API GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize) {
    return guarded(__func__, hPort, [&] {
        with_port(hPort, [&](Port& port) {
            auto& first = mandatory(static_cast<const std::byte*>(pBuffer), "pBuffer");
            size_t& size = mandatory(piSize, "piSize");
            transfer(size, [&] { port.Write(iAddress, std::span(&first, size)); });
        });
    });
}

GC_API GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries) {
    return guarded(__func__, hPort, [&] {
        with_port(hPort, [&](Port& port) {
            stacked(pEntries, piNumEntries, [&](uint64_t address, std::span<std::byte> bytes) { port.Read(address, bytes); });
        });
    });
}

GC_API GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries) {
    return guarded(__func__, hPort, [&] {
        with_port(hPort, [&](Port& port) {
            stacked(pEntries, piNumEntries, [&](uint64_t address, std::span<std::byte> bytes) { port.Write(address, bytes); });
        });
    });
}

GC_API GCGetPortURL(PORT_HANDLE hPort, char* sURL, size_t* piSize) {
    return guarded(__func__, hPort, [&] {
        with_port(hPort, [&](Port& port) {
            write_text(port.Description().url + '\0', sURL, piSize);  // a list: one more terminator ends it
        });
    });
}

GC_API GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* piNumURLs) {
    return guarded(__func__, hPort, [&] { with_port(hPort, [&](Port&) { mandatory(piNumURLs, "piNumURLs") = 1; }); });
}

GC_API GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                        size_t* piSize) {
    return guarded(__func__, hPort, [&] {
        with_port(hPort, [&](Port& port) {
            if (iURLIndex != 0) fail(GC_ERR_INVALID_INDEX, "There is one URL, not one of index " + std::to_string(iURLIndex));
            write_info(url_info(port.Description(), iInfoCmd), piType, pBuffer, piSize);
        });
    });
}

GC_API GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hPort, [&] {
        with_port(hPort, [&](Port& port) { write_info(port_info(port.Identity(), iInfoCmd), piType, pBuffer, piSize); });
    });
}

}  // extern "C"
}  // namespace GenTL
