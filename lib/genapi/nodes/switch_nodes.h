/// Nodes that make something simple of an integer: a switch, a trigger.
#pragma once

#include "GenApi/i_numeric.h"
#include "nodes/showing.h"
#include "sources/source.h"

namespace kiv::genapi {

class BooleanNode final : public Showing<GenApi::IBoolean, GenApi::intfIBoolean> {
public:
    using Showing::Showing;
    void SetValue(bool value, bool verify = true) override;
    bool GetValue(bool verify = false, bool ignoreCache = false) override;

    int64_t ReadInteger() override;
    double ReadFloat() override { return static_cast<double>(ReadInteger()); }
    void WriteInteger(int64_t value, bool verify) override;
    void WriteFloat(double value, bool verify) override { WriteInteger(value != 0.0, verify); }
    Range<int64_t> IntegerLimits() override { return {0, 1, 1, true}; }
    Range<double> FloatLimits() override { return {0.0, 1.0, 1.0, false}; }

    // Set by the linker.
    Source<int64_t>* source_ = nullptr;
    int64_t on_ = 1, off_ = 0;

protected:
    bool IsSourceFresh() override { return source_->IsFresh(*this); }
    EAccessMode SourceMode() override { return source_->Mode(*this); }
    std::string CurrentText() override { return ReadInteger() ? "1" : "0"; }
    void SetText(std::string_view text, bool verify) override;

private:
    Kept<int64_t> kept_;
};

class CommandNode final : public Showing<GenApi::ICommand, GenApi::intfICommand> {
public:
    using Showing::Showing;
    void Execute(bool verify = true) override;
    bool IsDone(bool verify = true) override;

    int64_t ReadInteger() override;
    double ReadFloat() override { return static_cast<double>(ReadInteger()); }
    void WriteInteger(int64_t value, bool verify) override;
    Range<int64_t> IntegerLimits() override;
    bool IsPolledNow() override { return isRunning_; }

    // Set by the linker.
    Source<int64_t>* source_ = nullptr;
    Setting<int64_t> command_;
    bool isStored_ = false;  ///< no device behind it, so that it is done at once

protected:
    EAccessMode SourceMode() override;
    std::string CurrentText() override;
    void SetText(std::string_view text, bool verify) override;

private:
    void Start(bool verify);
    bool isRunning_ = false;
};

}  // namespace kiv::genapi
