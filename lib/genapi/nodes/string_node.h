/// A text: stored in the node, taken from another node, or the bytes of a register.
#pragma once

#include <string>

#include "GenApi/i_numeric.h"
#include "nodes/showing.h"
#include "sources/register_access.h"

namespace kiv::genapi {

/// Where the text lives. See Source.
class TextSource {
public:
    virtual ~TextSource() = default;
    TextSource(const TextSource&) = delete;
    TextSource& operator=(const TextSource&) = delete;

    virtual std::string Read(Node& self) = 0;
    virtual void Write(Node& self, std::string_view text, bool verify) = 0;
    virtual int64_t Longest(Node& self) = 0;
    virtual EAccessMode Mode(Node& self) = 0;
    virtual bool IsFresh(Node&) { return false; }

protected:
    TextSource() = default;
};

class StoredText final : public TextSource {
public:
    explicit StoredText(std::string_view text) : text_(text) {}
    std::string Read(Node&) override { return text_; }
    void Write(Node& self, std::string_view text, bool verify) override;
    int64_t Longest(Node&) override { return INT64_MAX; }
    EAccessMode Mode(Node&) override { return GenApi::RW; }
    bool IsFresh(Node&) override { return true; }

private:
    std::string text_;
};

class NodeText final : public TextSource {
public:
    explicit NodeText(Node& target) : target_(target) {}
    std::string Read(Node&) override { return target_.ReadString(); }
    void Write(Node&, std::string_view text, bool verify) override { target_.WriteString(text, verify); }
    int64_t Longest(Node&) override { return target_.LongestString(); }
    EAccessMode Mode(Node&) override { return target_.Mode(); }
    bool IsFresh(Node&) override { return target_.IsFresh(); }

private:
    Node& target_;
};

/// The bytes up to the first zero, or all of them.
class TextRegister final : public TextSource {
public:
    explicit TextRegister(const RegisterAccess& access) : access_(access) {}
    std::string Read(Node& self) override;
    void Write(Node& self, std::string_view text, bool verify) override;
    int64_t Longest(Node&) override { return access_.location->Length(); }
    EAccessMode Mode(Node&) override { return access_.Mode(); }
    bool IsFresh(Node&) override { return access_.IsFresh(); }

private:
    const RegisterAccess& access_;
};

class NoText final : public TextSource {
public:
    std::string Read(Node& self) override { self.RefuseValue(); }
    void Write(Node& self, std::string_view, bool) override { self.RefuseValue(); }
    int64_t Longest(Node& self) override { self.RefuseValue(); }
    EAccessMode Mode(Node&) override { return GenApi::NA; }
};

class StringNode : public Showing<GenApi::IString, GenApi::intfIString> {
public:
    using Showing::Showing;
    void SetValue(const gcstring& value, bool verify = true) override;
    gcstring GetValue(bool verify = false, bool ignoreCache = false) override;
    int64_t GetMaxLength() override;

    std::string ReadString() override;
    void WriteString(std::string_view value, bool verify) override;
    int64_t LongestString() override;

    // Set by the linker.
    TextSource* source_ = nullptr;

protected:
    bool IsSourceFresh() override { return source_->IsFresh(*this); }
    EAccessMode SourceMode() override { return source_->Mode(*this); }
    std::string CurrentText() override { return ReadString(); }
    void SetText(std::string_view text, bool verify) override { WriteString(text, verify); }
};

}  // namespace kiv::genapi
