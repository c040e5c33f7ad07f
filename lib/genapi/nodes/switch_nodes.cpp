#include "nodes/switch_nodes.h"

#include "link/number_text.h"
#include "runtime/value_text.h"

namespace kiv::genapi {

using namespace GenApi;

// ---- Boolean ----

void BooleanNode::SetValue(bool value, bool verify) {
    RunWrite("SetValue", [&] { WriteInteger(value, verify); });
}

bool BooleanNode::GetValue(bool, bool ignoreCache) {
    if (!ignoreCache) {
        const AutoLock hold(engine_.lock);
        if (IsReadyToRead()) return kept_.Last() == on_;
    }
    return RunRead("GetValue", ignoreCache, [&] { return ReadInteger() != 0; });
}

int64_t BooleanNode::ReadInteger() { return kept_.Read(*this, *source_) == on_; }

void BooleanNode::WriteInteger(int64_t value, bool verify) {
    const Evaluation step(*this, Question::Write);
    source_->Write(*this, value ? on_ : off_, verify);
}

void BooleanNode::SetText(std::string_view text, bool verify) {
    const auto word = trimmed(text);
    const bool isTrue = word == "1" || equal_ignoring_case(word, "true");
    if (!isTrue && word != "0" && !equal_ignoring_case(word, "false"))
        throw GenICam::InvalidArgumentException("Feature '" + std::string(Name()) + "' : cannot convert string \"" +
                                                    std::string(text) + "\" to boolean, the value is invalid.",
                                                Place());
    WriteInteger(isTrue, verify);
}

// ---- Command ----

EAccessMode CommandNode::SourceMode() {
    const auto mode = source_->Mode(*this);
    auto* value = command_.Target();
    return !value || IsReadable(Combine(value->Mode(), RW)) ? mode : Combine(mode, RO);
}

int64_t CommandNode::ReadInteger() {
    const Evaluation step(*this, Question::Value);
    return source_->Read(*this);
}

Range<int64_t> CommandNode::IntegerLimits() {
    const Evaluation step(*this, Question::Limits);
    return source_->Limits(*this);
}

void CommandNode::WriteInteger(int64_t value, bool verify) {
    if (value != 0) Start(verify);
}

void CommandNode::Start(bool verify) {
    const Evaluation step(*this, Question::Write);
    source_->Write(*this, command_(), verify);
    isRunning_ = true;
}

void CommandNode::Execute(bool verify) {
    RunWrite("Execute", [&] { Start(verify); });
}

/// The device takes the value back when the command is done, so the register is what has to be asked.
bool CommandNode::IsDone(bool) {
    return Run("IsDone", [&] {
        if (isStored_ || !IsReadable(Mode())) return isRunning_ = false, true;
        const Bypass bypass(engine_.evaluator, true);
        if (ReadInteger() == command_()) return false;
        if (isRunning_) {
            isRunning_ = false;
            engine_.Changed(Index(), facet::value);
        }
        return true;
    });
}

std::string CommandNode::CurrentText() { return number_text(ReadInteger()); }

void CommandNode::SetText(std::string_view text, bool verify) {
    const auto value = parse_integer(text);
    const auto word = parse_boolean(text);
    if (!value && !word) RefuseText(text);
    if (value ? *value != 0 : *word) Start(verify);
}

}  // namespace kiv::genapi
