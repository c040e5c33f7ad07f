#include "GenApi/register_port_impl.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "GenICam/exceptions.h"

namespace GenApi {

namespace {

constexpr int64_t quadlet = 4;

/// The whole quadlets that a transfer touches.
struct Quadlets {
    int64_t address, length;
    size_t lead;  // bytes before the transfer's first one

    Quadlets(int64_t from, int64_t count) {
        if (count < 0 || from > INT64_MAX - count - quadlet)
            throw GenICam::InvalidArgumentException("A transfer of " + std::to_string(count) + " bytes at address " +
                                                    std::to_string(from) + " is not possible.");
        lead = static_cast<size_t>(from & (quadlet - 1));
        address = from - static_cast<int64_t>(lead);
        length = (static_cast<int64_t>(lead) + count + quadlet - 1) / quadlet * quadlet;
    }
    bool IsExactly(int64_t count) const { return lead == 0 && length == count; }
};

void swap_quadlets(std::vector<uint8_t>& bytes) {
    for (auto at = bytes.begin(); at != bytes.end(); at += quadlet) std::reverse(at, at + quadlet);
}

}  // namespace

CRegisterPortImpl::CRegisterPortImpl(bool swapEndianess) : swap_(swapEndianess) {}
CRegisterPortImpl::CRegisterPortImpl(const CRegisterPortImpl&) = default;
CRegisterPortImpl& CRegisterPortImpl::operator=(const CRegisterPortImpl&) = default;
CRegisterPortImpl::~CRegisterPortImpl() = default;

EInterfaceType CRegisterPortImpl::GetPrincipalInterfaceType() const { return intfIPort; }

void CRegisterPortImpl::Read(void* buffer, int64_t address, int64_t length) {
    if (length == 0) return;
    const Quadlets whole(address, length);
    std::vector<uint8_t> bytes(static_cast<size_t>(whole.length));
    ReadRegister(bytes.data(), whole.address, whole.length);
    if (swap_) swap_quadlets(bytes);
    std::memcpy(buffer, bytes.data() + whole.lead, static_cast<size_t>(length));
}

void CRegisterPortImpl::Write(const void* buffer, int64_t address, int64_t length) {
    if (length == 0) return;
    const Quadlets whole(address, length);
    std::vector<uint8_t> bytes(static_cast<size_t>(whole.length));
    if (!whole.IsExactly(length)) {  // what lies beside the transfer in its outer quadlets stays as it is
        ReadRegister(bytes.data(), whole.address, whole.length);
        if (swap_) swap_quadlets(bytes);
    }
    std::memcpy(bytes.data() + whole.lead, buffer, static_cast<size_t>(length));
    if (swap_) swap_quadlets(bytes);
    WriteRegister(bytes.data(), whole.address, whole.length);
}

}  // namespace GenApi
