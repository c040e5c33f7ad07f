#include <Kiv_Registry.h>
#include <memory>

#include <kiv/platform/paths.h>
#include <atomic>
#include <cstring>
#include <exception>
#include <string>

#include "handle_table.h"
#include "registry_file.h"

namespace {

using namespace kiv::registry;

/// The elements of a list are those of the file, as long as there is one kind only.
struct Handles {
    HandleTable<REGISTRY_HANDLE, RegistryFile> registries;
    HandleTable<ELEMENT_LIST_HANDLE, RegistryFile> lists;
    std::atomic<std::uintptr_t> next{0x1001};  // one row of numbers for both kinds: a handle of the one is none of the other

    std::uintptr_t NextNumber() { return next.fetch_add(2); }
};

Handles& handles() {
    // Never destroyed: a program's own statics may still call while the process exits.
    static Handles& only = *std::make_unique<Handles>().release();
    return only;
}

// Plain data: an object with a destructor is unsafe here on threads that this library has not made.
thread_local char last_error[1024];

void remember_error(std::string_view text) noexcept {
    const std::size_t length = text.size() < sizeof last_error ? text.size() : sizeof last_error - 1;
    std::memcpy(last_error, text.data(), length);
    last_error[length] = '\0';
}

K_STATUS_CODES fail(K_STATUS_CODES status, std::string_view text) noexcept {
    remember_error(text);
    return status;
}

K_STATUS_CODES invalid_handle() { return fail(K_ST_INVALID_HANDLE, "the handle is null, closed or of another kind"); }
K_STATUS_CODES null_argument() { return fail(K_ST_INVALID_PARAMETER, "an argument is null"); }

/// Runs the body of an export; nothing is thrown across the interface.
template <typename Body>
K_STATUS_CODES guarded(Body body) noexcept {
    try {
        return body();
    } catch (const kiv::platform::FileError& error) {
        return fail(K_ST_IO, error.what());
    } catch (const std::exception& error) {
        return fail(K_ST_ERROR, error.what());
    } catch (...) {
        return fail(K_ST_ERROR, "unknown failure");
    }
}

K_STATUS_CODES put_text(std::string_view text, char* buffer, uint32_t* size) {
    const uint32_t capacity = *size;
    *size = static_cast<uint32_t>(text.size() + 1);
    if (!buffer || capacity < *size) return fail(K_ST_INVALID_BUFFER_SIZE, "the buffer is null or too small for the text");
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return K_ST_SUCCESS;
}

std::string word(bool value) { return value ? "true" : "false"; }

struct DataRow {
    int32_t number;
    std::string (*text)(const RegistryFile&, const Producer&);
};

constexpr DataRow producer_data[] = {
    {K_REGISTRY_DATA_PATH, [](const RegistryFile& file, const Producer& p) { return file.ResolvedPath(p); }},
    {K_REGISTRY_DATA_KEY, [](const RegistryFile&, const Producer& p) { return p.key; }},
    {K_REGISTRY_DATA_ENABLED, [](const RegistryFile&, const Producer& p) { return word(p.enabled); }},
    {K_REGISTRY_DATA_FLAG, [](const RegistryFile&, const Producer& p) { return word(p.flag); }},
};

}  // namespace

K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_Open(const char* path, REGISTRY_HANDLE* phRegistry) {
    return guarded([&]() -> K_STATUS_CODES {
        if (phRegistry) *phRegistry = nullptr;
        if (!path || !phRegistry) return null_argument();
        auto file = std::make_shared<const RegistryFile>(read_registry_file(path));
        *phRegistry = handles().registries.Add(std::move(file), handles().NextNumber());
        return K_ST_SUCCESS;
    });
}

K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_Close(REGISTRY_HANDLE hRegistry) {
    return guarded([&] { return handles().registries.Remove(hRegistry) ? K_ST_SUCCESS : invalid_handle(); });
}

K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_OpenElementList(REGISTRY_HANDLE hRegistry, int32_t kind,
                                                                ELEMENT_LIST_HANDLE* phList) {
    return guarded([&]() -> K_STATUS_CODES {
        if (phList) *phList = nullptr;
        auto file = handles().registries.Find(hRegistry);
        if (!file) return invalid_handle();
        if (!phList) return null_argument();
        if (kind != K_REGISTRY_LIST_PRODUCERS)
            return fail(K_ST_INVALID_PARAMETER, "there is no list of kind " + std::to_string(kind));
        *phList = handles().lists.Add(std::move(file), handles().NextNumber());
        return K_ST_SUCCESS;
    });
}

K_REGISTRY_API K_STATUS_CODES K_CALL K_ElementList_Close(ELEMENT_LIST_HANDLE hList) {
    return guarded([&] { return handles().lists.Remove(hList) ? K_ST_SUCCESS : invalid_handle(); });
}

K_REGISTRY_API K_STATUS_CODES K_CALL K_ElementList_GetNumOfElements(ELEMENT_LIST_HANDLE hList, uint32_t* pCount) {
    return guarded([&]() -> K_STATUS_CODES {
        const auto list = handles().lists.Find(hList);
        if (!list) return invalid_handle();
        if (!pCount) return null_argument();
        *pCount = static_cast<uint32_t>(list->producers.size());
        return K_ST_SUCCESS;
    });
}

K_REGISTRY_API K_STATUS_CODES K_CALL K_ElementList_GetElementNameByIndex(ELEMENT_LIST_HANDLE hList, uint32_t index, char* buffer,
                                                                         uint32_t* pSize) {
    return guarded([&]() -> K_STATUS_CODES {
        const auto list = handles().lists.Find(hList);
        if (!list) return invalid_handle();
        if (!pSize) return null_argument();
        if (index >= list->producers.size())
            return fail(K_ST_INVALID_PARAMETER, "the list has no element " + std::to_string(index));
        return put_text(list->producers[index].name, buffer, pSize);
    });
}

K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_GetData(REGISTRY_HANDLE hRegistry, const char* elementName, int32_t dataKey,
                                                        char* buffer, uint32_t* pSize) {
    return guarded([&]() -> K_STATUS_CODES {
        const auto file = handles().registries.Find(hRegistry);
        if (!file) return invalid_handle();
        if (!elementName || !pSize) return null_argument();
        const Producer* producer = file->Find(elementName);
        if (!producer) return fail(K_ST_INVALID_ID, std::string("no element has the name '") + elementName + "'");
        for (const DataRow& row : producer_data)
            if (row.number == dataKey) return put_text(row.text(*file, *producer), buffer, pSize);
        return fail(K_ST_INVALID_PARAMETER, "a producer has no datum of number " + std::to_string(dataKey));
    });
}

K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_GetLastError(char* buffer, uint32_t* pSize) {
    // Not by way of put_text: asking for the error must not replace it.
    if (!pSize) return K_ST_INVALID_PARAMETER;
    const uint32_t capacity = *pSize;
    *pSize = static_cast<uint32_t>(std::strlen(last_error) + 1);
    if (!buffer || capacity < *pSize) return K_ST_INVALID_BUFFER_SIZE;
    std::memcpy(buffer, last_error, *pSize);
    return K_ST_SUCCESS;
}
