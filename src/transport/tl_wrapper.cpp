#include "transport/tl_wrapper.h"

#include <GenICam/exceptions.h>
#include <kiv/log/log.h>
#include <kiv/platform/debug_output.h>

#include <algorithm>
#include <cstring>

#include "transport/interface.h"

namespace GenICam::Factory {

namespace {

bool is_gige_type(const std::string& type) { return type.starts_with("GEV") || type.starts_with("GigEVision"); }

template <class Entry>
bool resolve(const kiv::platform::DynamicLibrary& module, Entry& entry, const char* name) {
    return entry.Bind(module.Symbol(name));
}

}  // namespace

CTLWrapper::CTLWrapper() = default;

CTLWrapper::~CTLWrapper() {
    if (TLClose && hTL) kiv::answer_of([&] { return TLClose(hTL); });
    if (GCCloseLib && owns_library_state_) kiv::answer_of([&] { return GCCloseLib(); });
    own_module_.module.reset();
    module_.reset();
    interfaces_.clear();
}

K_STATUS_CODES CTLWrapper::Load(const std::string& path) {
    bIsGigE = false;
    path_ = path;
    try {
        try {
            module_ = std::make_shared<kiv::platform::DynamicLibrary>(path);
        } catch (const kiv::platform::LoadError& error) {
            kiv::platform::debug_print(std::string("CTLWrapper: ") + error.what() + "\n");
            throw RuntimeException(std::string("Library could not be loaded. ") + error.what(), "CTLWrapper", __LINE__);
        }
        ResolveMandatory();
    } catch (const std::exception& error) {
        auto* known = dynamic_cast<const GenericException*>(&error);
        refusal_ = known ? known->GetDescription() : error.what();
        return K_ST_NOT_IMPLEMENTED;
    }

    // A module that another binding of this process has initialised says RESOURCE_IN_USE; whatever TLOpen then says is the status
    // of this binding. Its library state is then not ours to close.
    owns_library_state_ = GCInitLib() != GenTL::GC_ERR_RESOURCE_IN_USE;
    Identify();
    if (auto status = TLOpen(&hTL); status != GenTL::GC_ERR_SUCCESS) {
        hTL = nullptr;
        refusal_ = "TLOpen failed with status " + std::to_string(status) + ".";
        std::string detail = producer_text([&](char* text, std::size_t* size) {
            GenTL::GC_ERROR code = 0;
            return GCGetLastError(&code, text, size);
        });
        if (!detail.empty()) refusal_ += " The producer says: " + detail;
        return status;
    }
    WakeOwnSystemModule();
    ResolveOptional();
    bIsGigE = ResolveExtensions();
    if (kiv::log::wanted(kiv::log::Category::gen_tl, kiv::log::Level::info))
        kiv::log::write(kiv::log::Category::gen_tl, kiv::log::Level::info,
                        "producer " + path + " loaded: " + sName + " of " + sVendor + ", transport type " + sTLType);
    return K_ST_SUCCESS;
}

void CTLWrapper::ResolveMandatory() {
#define KIV_RESOLVE(name)                \
    if (!resolve(*module_, name, #name)) \
        throw RuntimeException(std::string("Function could not be loaded. :") + #name, "CTLWrapper", __LINE__);
    KIV_MANDATORY_ENTRIES(KIV_RESOLVE)
#undef KIV_RESOLVE
}

void CTLWrapper::ResolveOptional() {
#define KIV_RESOLVE(name) resolve(*module_, name, #name);
    KIV_OPTIONAL_ENTRIES(KIV_RESOLVE)
    KIV_CAMERA_LINK_ENTRIES(KIV_RESOLVE)
#undef KIV_RESOLVE
}

bool CTLWrapper::ResolveExtensions() {
    // The first gap ends the group: a producer is not to be taken for one that has the later ones by accident.
#define KIV_RESOLVE(name) \
    if (!resolve(*module_, name, #name)) return false;
    KIV_GIGE_ENTRIES(KIV_RESOLVE)
#undef KIV_RESOLVE
    return true;
}

void CTLWrapper::Identify() {
    ReadText(GenTL::TL_INFO_VENDOR, sVendor);
    ReadText(GenTL::TL_INFO_NAME, sName);
    ReadText(GenTL::TL_INFO_TLTYPE, sTLType);
}

void CTLWrapper::ReadText(GenTL::TL_INFO_CMD command, char (&text)[256]) const {
    std::string full = producer_text([&](char* buffer, std::size_t* size) {
        GenTL::INFO_DATATYPE type = 0;
        return GCGetInfo(command, &type, buffer, size);
    });
    auto length = std::min(full.size(), sizeof text - 1);
    full.copy(text, length);
    text[length] = '\0';
}

void CTLWrapper::WakeOwnSystemModule() const {
    // Only this producer waits for the write; to any other it would be a write to a register that we know nothing about.
    if (std::strcmp(sVendor, "Kivotek") != 0 || std::strcmp(sName, "KivGevTL.cti") != 0) return;
    const std::uint32_t zero = 0;
    std::size_t size = sizeof zero;
    GCWritePort(hTL, 0, &zero, &size);
}

CInterfaceClass* CTLWrapper::FindInterface(const std::string& id) const {
    GEV::CAutoLock lock(interfaces_section_);
    auto found = interfaces_.find(id);
    return found == interfaces_.end() ? nullptr : found->second.get();
}

CInterfaceClass* CTLWrapper::InterfaceAt(std::uint32_t index) const {
    GEV::CAutoLock lock(interfaces_section_);
    return index < interfaces_.size() ? std::next(interfaces_.begin(), index)->second.get() : nullptr;
}

K_STATUS_CODES CTLWrapper::OpenInterface(const std::string& id, CInterfaceClass*& opened) {
    GenTL::IF_HANDLE handle = nullptr;
    if (auto status = TLOpenInterface(hTL, id.c_str(), &handle); status != GenTL::GC_ERR_SUCCESS) return status;
    if (!handle) return K_ST_INVALID_HANDLE;
    auto created = std::make_unique<CInterfaceClass>(*this, id, handle);
    GEV::CAutoLock lock(interfaces_section_);
    opened = (interfaces_[id] = std::move(created)).get();
    return K_ST_SUCCESS;
}

K_STATUS_CODES CTLWrapper::CloseInterface(CInterfaceClass& closed) {
    std::unique_ptr<CInterfaceClass> gone;
    {
        GEV::CAutoLock lock(interfaces_section_);
        auto found = interfaces_.find(closed.Id());
        if (found == interfaces_.end() || found->second.get() != &closed) return K_ST_INVALID_HANDLE;
        gone = std::move(found->second);
        interfaces_.erase(found);
    }
    return IFClose(gone->Handle());
}

bool CTLWrapper::IsGigE() {
    if (!TLGetInfo) return bIsGigE = false;
    return bIsGigE = is_gige_type(producer_text([&](char* buffer, std::size_t* size) {
               GenTL::INFO_DATATYPE type = 0;
               return TLGetInfo(hTL, GenTL::TL_INFO_TLTYPE, &type, buffer, size);
           }));
}

}  // namespace GenICam::Factory
