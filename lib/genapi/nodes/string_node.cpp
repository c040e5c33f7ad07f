#include "nodes/string_node.h"

#include <algorithm>
#include <vector>

#include "runtime/value_text.h"

namespace kiv::genapi {

void StoredText::Write(Node& self, std::string_view text, bool) {
    text_ = text;
    self.Context().Changed(self.Index(), facet::value);
}

std::string TextRegister::Read(Node&) {
    const auto bytes = access_.Read();
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), uint8_t{0})};
}

void TextRegister::Write(Node& self, std::string_view text, bool) {
    const auto length = access_.location->Length();
    if (static_cast<int64_t>(text.size()) > length)
        throw GenICam::InvalidArgumentException("A text of " + number_text(static_cast<int64_t>(text.size())) +
                                                    " characters is longer than the " + number_text(length) +
                                                    " bytes of the register.",
                                                self.Place());
    std::vector<uint8_t> bytes(static_cast<size_t>(length));
    std::copy(text.begin(), text.end(), bytes.begin());
    access_.Write(bytes);
}

void StringNode::SetValue(const gcstring& value, bool verify) {
    RunWrite("SetValue", [&] { WriteString(value, verify); });
}

gcstring StringNode::GetValue(bool, bool ignoreCache) {
    return RunRead("GetValue", ignoreCache, [&] { return gcstring(ReadString()); });
}

int64_t StringNode::GetMaxLength() {
    return Run("GetMaxLength", [&] { return LongestString(); });
}

std::string StringNode::ReadString() {
    const Evaluation step(*this, Question::Value);
    return source_->Read(*this);
}

void StringNode::WriteString(std::string_view value, bool verify) {
    const Evaluation step(*this, Question::Write);
    source_->Write(*this, value, verify);
}

int64_t StringNode::LongestString() {
    const Evaluation step(*this, Question::Limits);
    return source_->Longest(*this);
}

}  // namespace kiv::genapi
