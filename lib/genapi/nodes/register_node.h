/// The register face: a register that is nothing else, and the one of nodes that show a number or a text in a register.
#pragma once

#include "GenApi/i_register.h"
#include "nodes/showing.h"
#include "sources/register_access.h"

namespace kiv::genapi {

/// A register that shows its bytes, as text in hexadecimal.
class BytesNode : public Showing<GenApi::IValue, GenApi::intfIRegister> {
public:
    using Showing::Showing;
    explicit BytesNode(Engine& engine, uint32_t index, RegisterAccess* access) : Showing(engine, index), bytes_(access) {}

protected:
    bool IsSourceFresh() override { return bytes_->IsFresh(); }
    EAccessMode SourceMode() override { return bytes_->Mode(); }
    std::string CurrentText() override;
    void SetText(std::string_view text, bool verify) override;

    RegisterAccess* bytes_ = nullptr;
};

void read_bytes(Node& self, RegisterAccess& access, uint8_t* buffer, int64_t length);
void write_bytes(Node& self, RegisterAccess& access, const uint8_t* buffer, int64_t length);

/// Adds the register face to a node whose value is in a register.
template <class Shown>
class WithRegister final : public Shown, public GenApi::IRegister {
public:
    WithRegister(Engine& engine, uint32_t index) : Shown(engine, index) {
        if constexpr (std::is_same_v<Shown, BytesNode>) this->bytes_ = &access_;
    }

    void Set(const uint8_t* buffer, int64_t length, bool = true) override {
        this->RunWrite("Set", [&] { write_bytes(*this, access_, buffer, length); });
    }
    void Get(uint8_t* buffer, int64_t length, bool = false, bool ignoreCache = false) override {
        this->RunRead("Get", ignoreCache, [&] { read_bytes(*this, access_, buffer, length); });
    }
    int64_t GetLength() override {
        return this->Run("GetLength", [&] { return Where().Length(); });
    }
    int64_t GetAddress() override {
        return this->Run("GetAddress", [&] { return Where().Address(); });
    }

    EAccessMode GetAccessMode() const override { return Shown::GetAccessMode(); }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return Shown::GetPrincipalInterfaceType(); }
    GenApi::INode* AsNode() noexcept override { return this; }
    void* AsInterface(GenApi::EInterfaceType type) noexcept override {
        return type == GenApi::intfIRegister ? static_cast<GenApi::IRegister*>(this) : Shown::AsInterface(type);
    }
    GenApi::INode* GetNode() override { return this; }
    gcstring ToString(bool verify = false, bool ignoreCache = false) override { return Shown::ToString(verify, ignoreCache); }
    void FromString(const gcstring& text, bool verify = true) override { Shown::FromString(text, verify); }
    bool IsValueCacheValid() const override { return Shown::IsValueCacheValid(); }
    ECachingMode OwnCaching() const override { return access_.caching; }
    std::string OwnObstacle(bool forWriting) const override {
        const bool isAllowed = forWriting ? IsWritable(access_.mode) : IsReadable(access_.mode);
        return isAllowed ? ""
                         : "is a register of the access mode " + GenApi::EAccessModeClass::ToString(access_.mode).str() + ".";
    }

    RegisterAccess& Access() { return access_; }

private:
    Location& Where() {
        if (!access_.location) this->RefuseValue();
        return *access_.location;
    }

    RegisterAccess access_;
};

using RegisterNode = WithRegister<BytesNode>;

}  // namespace kiv::genapi
