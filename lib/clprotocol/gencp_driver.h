/// The driver that is built in: it talks to every camera that speaks the GenICam control protocol over its serial line.
///
/// Its template "GenCP" fits the cameras of all makers; a template with a real manufacturer (family, model ...) fits only those.
#pragma once

#include "driver.h"

namespace CLProtocol {

/// In place of a manufacturer: any.
inline constexpr const char* any_manufacturer = "GenCP";

class GenCpDriver : public Driver {
public:
    /// The templates in short form; what is no device ID among them is passed over, with a word in the debugger output.
    explicit GenCpDriver(const std::vector<std::string>& short_templates);

    const std::string& Directory() const override { return directory_; }
    const std::string& FileName() const override { return file_name_; }
    std::vector<CDeviceID> Templates() const override { return templates_; }
    std::unique_ptr<Device> Connect(Serial& serial, const CDeviceID& wanted, const Checkpoint& checkpoint) const override;

private:
    std::string directory_, file_name_;
    std::vector<CDeviceID> templates_;
};

}  // namespace CLProtocol
