/// CTLWrapper: one bound GenTL producer. Everything else reaches a producer only through its table.
///
/// Loading leaves the wrapper in one of the states unloaded, module loaded, initialised, open (TL() is not null); the destructor
/// undoes as much as was done. A wrapper is built and loaded on one thread before others see it; afterwards its table is read
/// only.
#pragma once

#include <kiv/platform/dynamic_library.h>

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "transport/live_handles.h"
#include "transport/lock.h"
#include "transport/producer_entries.h"
#include "transport/status.h"

namespace GenICam::Factory {

class CInterfaceClass;

/// The own node map of a module, as far as this room needs to know it: something that lives and dies with its module.
class CProducerChild {
public:
    virtual ~CProducerChild() = default;
};

/// The place for it, filled when it is first asked for.
struct ModuleSlot {
    GEV::CCriticalSection section;
    std::unique_ptr<CProducerChild> module;
};

class CTLWrapper : public kiv::ProducerEntries {
public:
    CTLWrapper();
    virtual ~CTLWrapper();
    CTLWrapper(const CTLWrapper&) = delete;
    CTLWrapper& operator=(const CTLWrapper&) = delete;

    /// Binds the module at `path`. K_ST_NOT_IMPLEMENTED: not loadable, or a mandatory entry is missing. Otherwise TLOpen's
    /// status.
    K_STATUS_CODES Load(const std::string& path);
    /// Why Load failed, for people; empty after a success.
    const std::string& Refusal() const { return refusal_; }

    /// Asks the producer whether its transport type is GigE Vision, and remembers the answer.
    bool IsGigE();

    GenTL::TL_HANDLE TL() const { return hTL; }
    const char* Vendor() const { return sVendor; }
    const char* Name() const { return sName; }
    const char* TLType() const { return sTLType; }
    const std::string& Path() const { return path_; }
    /// Keeps the module's code in memory for a thread that a producer does not let go of.
    std::shared_ptr<const void> Code() const { return module_; }
    bool RegistryFlag() const { return registry_flag_; }
    void SetRegistryFlag(bool flag) { registry_flag_ = flag; }

    /// The opened interface of that identifier, or the one at that place in their order; null when there is none.
    CInterfaceClass* FindInterface(const std::string& id) const;
    CInterfaceClass* InterfaceAt(std::uint32_t index) const;
    /// Opens an interface and keeps it. One that is open already is the producer's to refuse.
    K_STATUS_CODES OpenInterface(const std::string& id, CInterfaceClass*& opened);
    /// Closes the interface in the producer and forgets it, whatever the producer says. `closed` is gone on return.
    K_STATUS_CODES CloseInterface(CInterfaceClass& closed);
    ModuleSlot& OwnModule() { return own_module_; }

private:
    void ResolveMandatory();
    void ResolveOptional();
    bool ResolveExtensions();
    void Identify();
    void ReadText(GenTL::TL_INFO_CMD command, char (&text)[256]) const;
    void WakeOwnSystemModule() const;

    GenTL::TL_HANDLE hTL = nullptr;
    char sVendor[256] = {};
    char sName[256] = {};
    char sTLType[256] = {};
    std::atomic<bool> bIsGigE = false;
    bool registry_flag_ = false;
    bool owns_library_state_ = false;
    std::string path_;
    std::string refusal_;
    std::shared_ptr<kiv::platform::DynamicLibrary> module_;
    mutable GEV::CCriticalSection interfaces_section_;
    std::map<std::string, std::unique_ptr<CInterfaceClass>> interfaces_;
    ModuleSlot own_module_;
    kiv::LiveHandle live_{this, kiv::HandleKind::transport_layer};
};

/// The text of a size-then-value query of a producer; empty when it fails. `get` is called with a buffer (null first) and a size.
template <class Get>
std::string producer_text(Get&& get) {
    constexpr std::size_t longest = 65536;  // no identification text of a sane producer comes near
    std::size_t size = 0;
    if (get(nullptr, &size) != K_ST_SUCCESS || size == 0 || size > longest) return {};
    std::string text(size + 1, '\0');
    if (get(text.data(), &size) != K_ST_SUCCESS) return {};
    text.resize(text.find('\0'));
    return text;
}

}  // namespace GenICam::Factory
