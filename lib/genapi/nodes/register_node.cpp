#include "nodes/register_node.h"

#include <algorithm>
#include <vector>

#include "runtime/value_text.h"

namespace kiv::genapi {

using GenICam::InvalidArgumentException;
using GenICam::OutOfRangeException;

namespace {

void require_buffer(Node& self, const void* buffer, int64_t length) {
    if (!buffer) throw InvalidArgumentException("The buffer is a null pointer.", self.Place());
    if (length < 0) throw InvalidArgumentException("The length " + number_text(length) + " is negative.", self.Place());
}

void write_padded(Node& self, const RegisterAccess& access, const uint8_t* buffer, int64_t length) {
    const Evaluation step(self, Question::Write);
    const auto whole = access.location->Length();
    if (length > whole)
        throw OutOfRangeException("The register has " + number_text(whole) + " bytes, not " + number_text(length) + ".",
                                  self.Place());
    std::vector<uint8_t> bytes(static_cast<size_t>(whole));
    std::copy_n(buffer, length, bytes.begin());
    access.Write(bytes);
}

}  // namespace

void read_bytes(Node& self, RegisterAccess& access, uint8_t* buffer, int64_t length) {
    require_buffer(self, buffer, length);
    const Evaluation step(self, Question::Value);
    const auto whole = access.location->Length();
    if (length < whole)
        throw OutOfRangeException(
            "The register has " + number_text(whole) + " bytes, the buffer only " + number_text(length) + ".", self.Place());
    const auto bytes = access.Read();
    std::copy(bytes.begin(), bytes.end(), buffer);
}

void write_bytes(Node& self, RegisterAccess& access, const uint8_t* buffer, int64_t length) {
    require_buffer(self, buffer, length);
    write_padded(self, access, buffer, length);
}

std::string BytesNode::CurrentText() {
    const Evaluation step(*this, Question::Value);
    const auto bytes = bytes_->Read();
    return bytes_text(bytes.data(), bytes.size());
}

void BytesNode::SetText(std::string_view text, bool) {
    const auto bytes = bytes_from_text(text);
    if (!bytes) RefuseText(text);
    write_padded(*this, *bytes_, reinterpret_cast<const uint8_t*>(bytes->data()), static_cast<int64_t>(bytes->size()));
}

}  // namespace kiv::genapi
