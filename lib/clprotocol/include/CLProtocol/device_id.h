/// Who a camera is and which driver speaks its protocol:
///
///     DriverDirectory#DriverFileName#Manufacturer#Family#Model#Version#SerialNumber
///
/// The short form lacks the driver's two tokens. A template lacks tokens at the end and stands for all cameras that begin like
/// it; at least the manufacturer stays.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace CLProtocol {

class CDeviceID {
public:
    /// Reads a full or a short form. Throws InvalidArgumentException for what is neither. Tokens of other makers' drivers are
    /// taken as they are, whatever characters they hold.
    static CDeviceID FromString(std::string_view text);
    /// Put together from its parts; the tokens begin with the manufacturer.
    CDeviceID(std::string driver_directory, std::string driver_file, std::vector<std::string> tokens);

    /// The full form; the short one when the driver is not known.
    std::string GetDeviceID() const;
    std::string GetShortDeviceID() const;

    bool NamesADriver() const { return !driver_file_.empty(); }
    const std::string& DriverDirectory() const { return driver_directory_; }
    const std::string& DriverFileName() const { return driver_file_; }
    const std::vector<std::string>& Tokens() const { return tokens_; }

    /// Whether the tokens of this one are the first of the other's. Drivers are not compared.
    bool IsTemplateOf(const CDeviceID& device) const;

private:
    std::string driver_directory_, driver_file_;
    std::vector<std::string> tokens_;
};

/// A text of a camera as a token: letters, digits and "_", not beginning with a digit. What is empty becomes "_".
std::string as_token(std::string_view text);

}  // namespace CLProtocol
