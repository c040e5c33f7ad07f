#pragma once

#include <vector>

#include "GenApi/types.h"

namespace GenApi {

class INode;
class IValue;

/// A list of borrowed interface pointers.
template <class Interface>
class interface_vector {
public:
    using value_type = Interface*;

    class const_iterator;
    class iterator {
    public:
        explicit iterator(Interface** position = nullptr) : position_(position) {}
        Interface*& operator*() const { return *position_; }
        Interface* operator->() const { return *position_; }
        iterator& operator++() { return ++position_, *this; }
        iterator operator++(int) { return iterator(position_++); }
        iterator& operator--() { return --position_, *this; }
        iterator operator+(ptrdiff_t steps) const { return iterator(position_ + steps); }
        iterator operator-(ptrdiff_t steps) const { return iterator(position_ - steps); }
        ptrdiff_t operator-(const iterator& other) const { return position_ - other.position_; }
        bool operator==(const iterator& other) const { return position_ == other.position_; }

    private:
        friend class const_iterator;
        Interface** position_;
    };
    class const_iterator {
    public:
        explicit const_iterator(Interface* const* position = nullptr) : position_(position) {}
        const_iterator(const iterator& other) : position_(other.position_) {}
        Interface* const& operator*() const { return *position_; }
        Interface* operator->() const { return *position_; }
        const_iterator& operator++() { return ++position_, *this; }
        const_iterator operator++(int) { return const_iterator(position_++); }
        const_iterator& operator--() { return --position_, *this; }
        const_iterator operator+(ptrdiff_t steps) const { return const_iterator(position_ + steps); }
        ptrdiff_t operator-(const const_iterator& other) const { return position_ - other.position_; }
        bool operator==(const const_iterator& other) const { return position_ == other.position_; }

    private:
        Interface* const* position_;
    };

    size_t size() const noexcept { return pointers_.size(); }
    bool empty() const noexcept { return pointers_.empty(); }
    void clear() noexcept { pointers_.clear(); }
    void reserve(size_t count) { pointers_.reserve(count); }
    void push_back(Interface* pointer) { pointers_.push_back(pointer); }
    Interface*& operator[](size_t index) { return pointers_[index]; }
    Interface* operator[](size_t index) const { return pointers_[index]; }
    Interface* at(size_t index) const { return pointers_.at(index); }
    iterator begin() noexcept { return iterator(pointers_.data()); }
    iterator end() noexcept { return iterator(pointers_.data() + pointers_.size()); }
    const_iterator begin() const noexcept { return const_iterator(pointers_.data()); }
    const_iterator end() const noexcept { return const_iterator(pointers_.data() + pointers_.size()); }

private:
    std::vector<Interface*> pointers_;
};

class KIV_GENICAM_API node_vector : public interface_vector<INode> {};
class KIV_GENICAM_API value_vector : public interface_vector<IValue> {};

using NodeList_t = node_vector;
using FeatureList_t = value_vector;

}  // namespace GenApi
