/// An enumeration and its entries. An entry is a node of its own that stands behind its enumeration in the map.
#pragma once

#include <vector>

#include "GenApi/i_enumeration.h"
#include "nodes/showing.h"
#include "sources/source.h"

namespace kiv::genapi {

class EnumEntryNode final : public Showing<GenApi::IEnumEntry, GenApi::intfIEnumEntry> {
public:
    using Showing::Showing;
    int64_t GetValue() override { return value_; }
    gcstring GetSymbolic() const override { return Symbolic(); }
    double GetNumericValue() override { return numericValue_; }
    bool IsSelfClearing() override { return isSelfClearing_; }

    std::string_view Symbolic() const;
    int64_t ReadInteger() override { return value_; }
    double ReadFloat() override { return numericValue_; }

    // Set by the linker.
    int64_t value_ = 0;
    double numericValue_ = 0;
    bool isSelfClearing_ = false;

protected:
    EAccessMode SourceMode() override { return GenApi::RO; }
    std::string CurrentText() override { return std::string(Symbolic()); }
    void SetText(std::string_view, bool) override;
};

class EnumerationNode final : public Showing<GenApi::IEnumeration, GenApi::intfIEnumeration> {
public:
    using Showing::Showing;
    void GetSymbolics(GenApi::StringList_t& symbolics) override;
    void GetEntries(GenApi::NodeList_t& entries) override;
    void SetIntValue(int64_t value, bool verify = true) override;
    int64_t GetIntValue(bool verify = false, bool ignoreCache = false) override;
    GenApi::IEnumEntry* GetEntryByName(const gcstring& symbolic) override;
    GenApi::IEnumEntry* GetEntry(int64_t value) override;
    GenApi::IEnumEntry* GetCurrentEntry(bool verify = false, bool ignoreCache = false) override;
    GenApi::IEnumEntry* GetEntryByDisplayName(std::string_view shown) override;

    int64_t ReadInteger() override;
    /// The number of the current entry's floating point view.
    double ReadFloat() override;
    void WriteInteger(int64_t value, bool verify) override;
    /// Takes the writable entry whose number is nearest.
    void WriteFloat(double value, bool verify) override;
    Range<int64_t> IntegerLimits() override;
    Range<double> FloatLimits() override;
    bool IsPolledNow() override { return isSelfClearing_; }

    EnumEntryNode* Named(std::string_view symbolic);

    // Set by the linker.
    Source<int64_t>* source_ = nullptr;
    std::vector<EnumEntryNode*> entries_;
    bool hasSelfClearing_ = false;

protected:
    bool IsSourceFresh() override { return source_->IsFresh(*this); }
    EAccessMode SourceMode() override { return source_->Mode(*this); }
    std::string CurrentText() override;
    void SetText(std::string_view text, bool verify) override;
    void VerifyValue() override;

private:
    /// The entry of that value: the first one that is available, else the first one; null when there is none.
    EnumEntryNode* Valued(int64_t value);
    EnumEntryNode& RequiredEntry(int64_t value);
    void Write(EnumEntryNode& entry, bool verify);
    void Sort();

    struct Displayed {
        std::string_view text;
        EnumEntryNode* entry;
    };

    Kept<int64_t> kept_;
    struct ByValue {
        int64_t value;
        EnumEntryNode* entry;
    };
    // Made when first needed; equal ones in the description's order.
    std::vector<ByValue> byValue_;
    std::vector<EnumEntryNode*> byName_;
    std::vector<Displayed> byDisplayName_;  // by length and text
    bool isSelfClearing_ = false;           // the current entry goes away by itself
};

}  // namespace kiv::genapi
