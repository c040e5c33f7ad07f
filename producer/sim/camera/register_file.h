/// The content of the registers, in a file that is mapped into memory, together with the saved user sets and the moment at which
/// the camera was switched on. No locking: the camera that owns it serialises its own threads; another process at worst reads a
/// value while it changes.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "camera.h"
#include "kiv/platform/mapped_file.h"
#include "registers.h"

namespace kivsim {

class RegisterFile {
public:
    static constexpr uint32_t kUserSets = 2;

    /// Maps the file. When it is new, or was left by another camera or by another version, the camera is switched on: every
    /// register gets its initial value, the user sets too. Throws std::runtime_error.
    explicit RegisterFile(const CameraConfig& config);

    std::span<std::byte> Bytes(Reg reg) const;
    std::span<std::byte> Element(Reg reg, uint32_t index) const;

    uint64_t Uint(Reg reg, uint32_t index = 0) const;
    float Float(Reg reg) const;
    std::string Text(Reg reg) const;
    void SetUint(Reg reg, uint64_t value, uint32_t index = 0);
    void SetFloat(Reg reg, float value);
    void SetText(Reg reg, std::string_view text, uint32_t index = 0);

    /// Everything as it was when the camera was new, the user sets too.
    void Forget();
    /// Off and on again: initial values in all that does not last, then the user set of UserSetDefault; the clock starts at 0.
    void PowerCycle();
    /// Set 0 holds the initial values; it cannot be saved.
    void LoadUserSet(uint32_t set);
    void SaveUserSet(uint32_t set);

    /// Nanoseconds since the camera was switched on, the same in all processes.
    uint64_t Now() const;
    /// What the clock of the device shows at a moment of Now: it can be reset.
    uint64_t DeviceTime(uint64_t now) const;
    void ResetClock();

private:
    struct Header;
    Header& Head() const;
    std::span<std::byte> Store(uint32_t copy) const;  ///< 0: the registers; 1 and up: user sets
    void CopyUserSet(std::span<const std::byte> from, std::span<std::byte> to) const;
    void WriteIdentity();
    void SwitchOn();

    CameraConfig config_;
    kiv::platform::MappedFile file_;
    std::vector<std::byte> initial_;  ///< what the registers hold when nothing was ever set
};

/// The initial values of all registers of this camera.
std::vector<std::byte> initial_registers(const CameraConfig& config);

}  // namespace kivsim
