#include "temporary_settings.h"

#include <cstdio>
#include <exception>

#include "node.h"
#include "text.h"

namespace {

std::string text_of(const Camera& camera, const std::string& feature) { return Node(camera.NodeByName(feature)).Text(); }

/// A selector that points elsewhere for a moment.
class Selection {
public:
    Selection(const Camera& camera, const std::string& selector, const std::string& entry)
        : camera_(camera), selector_(selector) {
        if (selector.empty()) return;
        before_ = text_of(camera, selector);
        camera.Set(selector, entry);
    }
    ~Selection() {
        if (!before_.empty()) K_Camera_SetValueString(camera_.Get(), selector_.c_str(), before_.c_str());
    }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;

private:
    const Camera& camera_;
    const std::string& selector_;
    std::string before_;
};

}  // namespace

void TemporarySettings::Set(const std::string& feature, const std::string& value) { SetSelected({}, {}, feature, value); }

void TemporarySettings::SetSelected(const std::string& selector, const std::string& entry, const std::string& feature,
                                    const std::string& value) {
    const Selection selection(camera_, selector, entry);
    Change change{selector, entry, feature, text_of(camera_, feature)};
    if (change.before == value) return;
    camera_.Set(feature, value);
    changes_.push_back(std::move(change));
}

std::string TemporarySettings::Selected(const std::string& selector, const std::string& entry, const std::string& feature) const {
    const Selection selection(camera_, selector, entry);
    return text_of(camera_, feature);
}

void TemporarySettings::Restore() noexcept {
    std::size_t failed = 0;
    std::string what, why;
    while (!changes_.empty()) {
        const Change change = std::move(changes_.back());
        changes_.pop_back();
        try {
            const Selection selection(camera_, change.selector, change.entry);
            camera_.Set(change.feature, change.before);
        } catch (const std::exception& failure) {
            if (++failed > 1) continue;
            what = change.feature;
            why = failure.what();
        }
    }
    if (failed == 0) return;
    const std::string others = failed > 1 ? " and " + counted(failed - 1, "other setting") : "";
    std::fprintf(stderr, "kiv: warning: %s%s could not be given back: %s\n", what.c_str(), others.c_str(), why.c_str());
}
