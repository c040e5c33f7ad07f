#pragma once

#include <vector>

#include "GenICam/gcstring.h"

namespace GenICam {

/// A list of texts. Like gcstring it allocates inside the library only.
class KIV_GENICAM_API gcstring_vector {
public:
    using value_type = gcstring;
    using iterator = gcstring*;
    using const_iterator = const gcstring*;

    gcstring_vector();
    explicit gcstring_vector(size_t count, const gcstring& text = gcstring());
    gcstring_vector(const gcstring_vector& other);
    gcstring_vector(gcstring_vector&& other) noexcept;
    ~gcstring_vector();
    gcstring_vector& operator=(const gcstring_vector& other);
    gcstring_vector& operator=(gcstring_vector&& other) noexcept;

    size_t size() const noexcept { return texts_.size(); }
    bool empty() const noexcept { return texts_.empty(); }
    void clear();
    void reserve(size_t count);
    void resize(size_t count, const gcstring& fill = gcstring());
    void push_back(const gcstring& text);
    void pop_back();
    iterator insert(iterator where, const gcstring& text);
    iterator erase(iterator where);

    gcstring& operator[](size_t index) { return texts_[index]; }
    const gcstring& operator[](size_t index) const { return texts_[index]; }
    gcstring& at(size_t index);              ///< Throws OutOfRangeException.
    const gcstring& at(size_t index) const;  ///< Throws OutOfRangeException.
    gcstring& front() { return texts_.front(); }
    gcstring& back() { return texts_.back(); }

    iterator begin() noexcept { return texts_.data(); }
    iterator end() noexcept { return texts_.data() + texts_.size(); }
    const_iterator begin() const noexcept { return texts_.data(); }
    const_iterator end() const noexcept { return texts_.data() + texts_.size(); }

    /// Whether one of the texts equals `text`.
    bool contains(const gcstring& text) const;

    friend bool operator==(const gcstring_vector& a, const gcstring_vector& b) { return a.texts_ == b.texts_; }

private:
    std::vector<gcstring> texts_;
};

}  // namespace GenICam
