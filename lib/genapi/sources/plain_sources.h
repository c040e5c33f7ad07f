/// Values that need no device and no formula: stored in the node, taken from another node, chosen from a table.
#pragma once

#include <string>
#include <vector>

#include "sources/source.h"

namespace kiv::genapi {

/// The value of a node that is not connected to the device.
template <class T>
class StoredSource final : public Source<T> {
public:
    explicit StoredSource(T value) : value_(value) {}
    T Read(Node&) override { return value_; }
    void Write(Node& self, T value, bool) override {
        value_ = value;
        self.Context().Changed(self.Index(), facet::value);
    }
    Range<T> Limits(Node&) override { return {}; }
    EAccessMode Mode(Node&) override { return GenApi::RW; }
    bool IsFresh(Node&) override { return true; }

private:
    T value_;
};

/// The value of another node.
template <class T>
class NodeSource final : public Source<T> {
public:
    explicit NodeSource(Node& target) : target_(target) {}
    T Read(Node&) override { return read_from<T>(target_); }
    void Write(Node&, T value, bool verify) override { write_to(target_, value, verify); }
    Range<T> Limits(Node&) override { return limits_of<T>(target_); }
    std::vector<T> Listed(Node&) override { return listed_in<T>(target_); }
    EAccessMode Mode(Node&) override { return target_.Mode(); }
    Node* Shown(Node&) override { return &target_; }
    bool IsFresh(Node&) override { return target_.IsFresh(); }

private:
    Node& target_;
};

/// The value of another node, and copies of it that are only written.
template <class T>
class CopiedSource final : public Source<T> {
public:
    /// `targets` in the order of writing; the one at `shown` is read.
    CopiedSource(std::vector<Node*> targets, size_t shown) : targets_(std::move(targets)), shown_(shown) {}

    T Read(Node&) override { return read_from<T>(*targets_[shown_]); }

    void Write(Node&, T value, bool verify) override {
        for (auto* target : targets_) write_to(*target, value, verify);
    }

    Range<T> Limits(Node&) override {
        auto range = limits_of<T>(*targets_[shown_]);
        for (size_t i = 0; i < targets_.size(); ++i) {
            if (i == shown_) continue;
            const auto other = limits_of<T>(*targets_[i]);
            range.min = std::max(range.min, other.min);
            range.max = std::min(range.max, other.max);
        }
        return range;
    }

    std::vector<T> Listed(Node&) override { return listed_in<T>(*targets_[shown_]); }

    EAccessMode Mode(Node&) override {
        auto mode = targets_[shown_]->Mode();
        for (auto* target : targets_)
            if (!IsWritable(Combine(target->Mode(), GenApi::RW))) mode = Combine(mode, GenApi::RO);
        return HasOneIncrement() ? mode : Combine(mode, GenApi::RO);
    }

    Node* Shown(Node&) override { return targets_[shown_]; }
    bool IsFresh(Node&) override { return targets_[shown_]->IsFresh(); }

private:
    /// A value that fits one of the places and not the other cannot be written to both.
    bool HasOneIncrement() {
        const auto first = limits_of<T>(*targets_[0]).inc;
        for (auto* target : targets_)
            if (limits_of<T>(*target).inc != first) return false;
        return true;
    }

    std::vector<Node*> targets_;
    size_t shown_;
};

/// A table: the value of an index node decides which entry acts as the value.
template <class T>
class IndexedSource final : public Source<T> {
public:
    struct Entry {
        int64_t index;
        Setting<T> value;
    };
    IndexedSource(Node& index, std::vector<Entry> entries, Setting<T> otherwise)
        : index_(index), entries_(std::move(entries)), otherwise_(otherwise) {}

    T Read(Node& self) override { return Chosen(self)(); }

    void Write(Node& self, T value, bool verify) override {
        auto& chosen = Chosen(self);
        if (auto* target = chosen.Target()) return write_to(*target, value, verify);
        chosen = Setting<T>(value);
        self.Context().Changed(self.Index(), facet::value);
    }

    Range<T> Limits(Node& self) override {
        auto* target = Chosen(self).Target();
        return target ? limits_of<T>(*target) : Range<T>{};
    }

    std::vector<T> Listed(Node& self) override {
        auto* target = Chosen(self).Target();
        return target ? listed_in<T>(*target) : std::vector<T>();
    }

    EAccessMode Mode(Node& self) override {
        if (!IsReadable(Combine(index_.Mode(), GenApi::RW))) return GenApi::NA;
        const auto* entry = Look();
        if (!entry) return GenApi::NA;
        (void)self;
        return entry->Target() ? entry->Target()->Mode() : GenApi::RW;
    }

    Node* Shown(Node&) override {
        const auto* entry = Look();
        return entry ? entry->Target() : nullptr;
    }

private:
    Setting<T>* Look() {
        const auto index = index_.ReadInteger();
        for (auto& entry : entries_)
            if (entry.index == index) return &entry.value;
        return otherwise_ ? &otherwise_ : nullptr;
    }
    Setting<T>& Chosen(Node& self) {
        auto* found = Look();
        if (!found)
            throw GenICam::RuntimeException("There is no value for the index " + std::to_string(index_.ReadInteger()) + " of '" +
                                                std::string(index_.Name()) + "'.",
                                            self.Place());
        return *found;
    }

    Node& index_;
    std::vector<Entry> entries_;
    Setting<T> otherwise_;
};

/// Of nodes whose description is faulty, and of elements that are known by name only: the node is there, its value is not.
template <class T>
class NoSource final : public Source<T> {
public:
    T Read(Node& self) override { Refuse(self); }
    void Write(Node& self, T, bool) override { Refuse(self); }
    Range<T> Limits(Node& self) override { Refuse(self); }
    EAccessMode Mode(Node&) override { return GenApi::NA; }

private:
    [[noreturn]] static void Refuse(Node& self) { self.RefuseValue(); }
};

}  // namespace kiv::genapi
