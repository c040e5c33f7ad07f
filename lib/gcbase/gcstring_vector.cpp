#include "GenICam/gcstring_vector.h"

#include <algorithm>
#include <string>
#include <utility>

#include "GenICam/exceptions.h"

namespace GenICam {

gcstring_vector::gcstring_vector() = default;
gcstring_vector::gcstring_vector(size_t count, const gcstring& text) : texts_(count, text) {}
gcstring_vector::gcstring_vector(const gcstring_vector& other) = default;
gcstring_vector::gcstring_vector(gcstring_vector&& other) noexcept = default;
gcstring_vector::~gcstring_vector() = default;
gcstring_vector& gcstring_vector::operator=(const gcstring_vector& other) = default;
gcstring_vector& gcstring_vector::operator=(gcstring_vector&& other) noexcept = default;

void gcstring_vector::clear() { texts_.clear(); }
void gcstring_vector::reserve(size_t count) { texts_.reserve(count); }
void gcstring_vector::resize(size_t count, const gcstring& fill) { texts_.resize(count, fill); }
void gcstring_vector::push_back(const gcstring& text) { texts_.push_back(text); }
void gcstring_vector::pop_back() { texts_.pop_back(); }

gcstring_vector::iterator gcstring_vector::insert(iterator where, const gcstring& text) {
    return &*texts_.insert(texts_.begin() + (where - begin()), text);
}

gcstring_vector::iterator gcstring_vector::erase(iterator where) {
    const auto position = where - begin();
    texts_.erase(texts_.begin() + position);
    return begin() + position;
}

const gcstring& gcstring_vector::at(size_t index) const {
    if (index >= texts_.size())
        throw OutOfRangeException("Index " + std::to_string(index) + " is behind the end of a list of " + std::to_string(size()) +
                                  " texts.");
    return texts_[index];
}

gcstring& gcstring_vector::at(size_t index) { return const_cast<gcstring&>(std::as_const(*this).at(index)); }

bool gcstring_vector::contains(const gcstring& text) const { return std::find(begin(), end(), text) != end(); }

}  // namespace GenICam
