#include "camera/description.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/paths.h>

#include "camera/description_cache.h"
#include "camera/file_parser.h"
#include "camera/local_parser.h"
#include "camera/port.h"

namespace kiv {

namespace {

using GenICam::Factory::CTLWrapper;
using GenICam::Factory::MyPortImp;
using GenICam::Registry::Impl::CFileParser;
using GenICam::Registry::Impl::CLocalParser;
using GenICam::Registry::Impl::CURLParser;

constexpr const char* source = "Description";
constexpr std::size_t longest_url = 65536;

std::string text_of(GenTL::GC_ERROR first, std::size_t size, auto&& get) {
    require_success(first);
    if (size == 0 || size > longest_url) fail(K_ST_INVALID_BUFFER_SIZE);
    std::string text(size + 1, '\0');
    require_success(get(text.data(), &size));
    text.resize(text.find('\0'));
    return text;
}

std::string from_registers(const CTLWrapper& producer, GenTL::PORT_HANDLE port, const CURLParser& url) {
    CLocalParser local(url);
    // The name comes from the device: it is a name in our cache folder and never a way out of it.
    if (!platform::is_plain_file_name(local.FileName()))
        throw GenICam::InvalidArgumentException("File name in local URL is not a plain file name: " + url.Url(), source,
                                                __LINE__);
    if (local.Length() == 0 || local.Length() > longest_description)
        throw GenICam::RuntimeException(
            "Length in local URL is not between 1 and " + std::to_string(longest_description) + " bytes: " + url.Url(), source,
            __LINE__);
    // One transfer: some producers answer only the whole length, or answer parts wrongly.
    std::string bytes(static_cast<std::size_t>(local.Length()), '\0');
    MyPortImp(producer, port).Read(bytes.data(), static_cast<int64_t>(local.Address()), static_cast<int64_t>(local.Length()));
    return DescriptionCache().Keep(local.FileName(), std::move(bytes));
}

std::string from_file(const CURLParser& url) {
    CFileParser file(url);
    return DescriptionCache().Open(file.Path());
}

}  // namespace

std::string description_url(const CTLWrapper& producer, GenTL::PORT_HANDLE port) {
    std::size_t size = 512;
    if (producer.GCGetPortURLInfo) {
        auto get = [&](char* text, std::size_t* capacity) {
            GenTL::INFO_DATATYPE type = 0;
            return producer.GCGetPortURLInfo(port, 0, GenTL::URL_INFO_URL, &type, text, capacity);
        };
        auto status = get(nullptr, &size);
        if (status != GenTL::GC_ERR_NOT_IMPLEMENTED || !producer.GCGetPortURL) return text_of(status, size, get);
    }
    // Producers older than the info call list their URLs, each ended by a NUL; the first one is the one that counts.
    if (!producer.GCGetPortURL) fail(K_ST_NOT_IMPLEMENTED);
    auto get = [&](char* text, std::size_t* capacity) { return producer.GCGetPortURL(port, text, capacity); };
    size = 512;
    auto status = get(nullptr, &size);
    return text_of(status, size, get);
}

std::string fetch_description(const CTLWrapper& producer, GenTL::PORT_HANDLE port, const std::string& url) {
    CURLParser parsed(url);
    if (parsed.HasScheme("local")) return from_registers(producer, port, parsed);
    if (parsed.HasScheme("file")) return from_file(parsed);
    throw GenICam::RuntimeException("Scheme '" + parsed.Scheme() + "' of url is not supported: " + url, source, __LINE__);
}

}  // namespace kiv
