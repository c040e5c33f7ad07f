#pragma once

#include "GenApi/i_port.h"

namespace GenApi {

/// Base of an application's own port whose device knows nothing smaller than a 32-bit register: the application moves whole
/// aligned quadlets, Read() and Write() do the rest. A device without that limit overrides those two as well.
class KIV_GENICAM_API CRegisterPortImpl : public IPort {
public:
    /// `swapEndianess` reverses the bytes of each quadlet on the way.
    explicit CRegisterPortImpl(bool swapEndianess = false);
    CRegisterPortImpl(const CRegisterPortImpl&);
    CRegisterPortImpl& operator=(const CRegisterPortImpl&);
    ~CRegisterPortImpl() override;

    /// Address and length are multiples of four. Throw when the transfer fails.
    virtual void ReadRegister(void* buffer, int64_t address, int64_t length) = 0;
    virtual void WriteRegister(const void* buffer, int64_t address, int64_t length) = 0;

    /// A transfer that does not begin and end at a quadlet's border reads the quadlets at its ends first.
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    EInterfaceType GetPrincipalInterfaceType() const override;
    EYesNo GetSwapEndianess() const { return swap_ ? Yes : No; }

private:
    bool swap_;
};

}  // namespace GenApi
