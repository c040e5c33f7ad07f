/// Where the number that a node shows lives. A node has one source; sources know nothing about how the number is shown.
///
/// All calls are made with the map locked. Access modes are the caller's business, except that a source says what it allows.
#pragma once

#include "runtime/node.h"

namespace kiv::genapi {

template <class T>
class Source {
public:
    virtual ~Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    virtual T Read(Node& self) = 0;
    /// With `verify` other nodes that the value passes through check their ranges too. The node has announced the step.
    virtual void Write(Node& self, T value, bool verify) = 0;
    /// The limits that the place itself sets.
    virtual Range<T> Limits(Node& self) = 0;
    /// The values that the place allows, when it lists them.
    virtual std::vector<T> Listed(Node&) { return {}; }
    virtual EAccessMode Mode(Node& self) = 0;
    /// The node that the value is taken from unchanged; null when there is no such node.
    virtual Node* Shown(Node&) { return nullptr; }
    /// Whether reading would not touch the device.
    virtual bool IsFresh(Node&) { return false; }

protected:
    Source() = default;
};

/// A number, kept for as long as it is true.
template <class T>
class Kept {
public:
    T Read(Node& self, Source<T>& source) {
        self.Asked(facet::value);
        if (self.IsValueFresh()) return value_;
        const Evaluation step(self, Question::Value);
        const Taint taint(self.Context().evaluator);
        value_ = source.Read(self);
        if (taint.IsClean()) self.MarkValueFresh();
        return value_;
    }
    T Last() const { return value_; }

private:
    T value_{};
};

}  // namespace kiv::genapi
