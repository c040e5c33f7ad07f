/// Features that a command changes for as long as it needs them, and then gives back as they were.
#pragma once

#include <string>
#include <vector>

#include "session.h"

class TemporarySettings {
public:
    /// The camera must outlive it.
    explicit TemporarySettings(const Camera& camera) : camera_(camera) {}
    /// Gives back what is not yet given back.
    ~TemporarySettings() { Restore(); }
    TemporarySettings(const TemporarySettings&) = delete;
    TemporarySettings& operator=(const TemporarySettings&) = delete;

    /// Throws, and has changed nothing, when the feature cannot be read or set.
    void Set(const std::string& feature, const std::string& value);
    /// The same for what a selector selects; the selector is back where it was on return.
    void SetSelected(const std::string& selector, const std::string& entry, const std::string& feature, const std::string& value);
    /// The value of a feature for an entry of its selector, which is back where it was on return.
    std::string Selected(const std::string& selector, const std::string& entry, const std::string& feature) const;

    /// The last change first. What cannot be given back is told on standard error.
    void Restore() noexcept;

private:
    struct Change {
        std::string selector, entry;  ///< empty for a feature without one
        std::string feature, before;
    };

    const Camera& camera_;
    std::vector<Change> changes_;
};
