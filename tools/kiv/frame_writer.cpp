#include "frame_writer.h"

#include <VL.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <utility>

#include "session.h"
#include "status_names.h"

namespace {

using Image = std::unique_ptr<VL_IMAGE, Closer<vlFree>>;

void check_vl(VL_STATUS status, const char* call, const std::string& file) {
    if (status == VL_ST_SUCCESS) return;
    throw ToolError(ExitCode::kIncompleteGrab,
                    std::string(call) + "(\"" + file + "\") failed: " + status_text(status) + ": " + vlGetLastErrorText());
}

void store_raw(const K_IMAGE_INFO& raw, const std::string& file) {
    check_vl(vlStoreToFileRAWA(&raw, file.c_str()), "vlStoreToFileRAW", file);
}

void store_image(const K_IMAGE_INFO& raw, const std::string& file, VL_FILE_FORMAT format) {
    VL_IMAGE_HANDLE handle = nullptr;
    check_vl(vlImageFromRaw(&raw, &handle), "vlImageFromRaw", file);
    const Image image(handle);
    check_vl(vlStoreToFileA(image.get(), file.c_str(), format), "vlStoreToFile", file);
}

void store_png(const K_IMAGE_INFO& raw, const std::string& file) { store_image(raw, file, VL_FILE_PNG); }
void store_tiff(const K_IMAGE_INFO& raw, const std::string& file) { store_image(raw, file, VL_FILE_TIFF); }

struct KindRow {
    const char* name;
    const char* extension;
    void (*store)(const K_IMAGE_INFO& raw, const std::string& file);
};

/// In the order of FileKind.
constexpr std::array<KindRow, 3> kKinds{{{"raw", ".raw", store_raw}, {"png", ".png", store_png}, {"tiff", ".tif", store_tiff}}};

const KindRow& row_of(FileKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

std::string file_name(uint64_t number, FileKind kind) {
    std::array<char, 64> name{};
    std::snprintf(name.data(), name.size(), "frame_%06llu%s", static_cast<unsigned long long>(number), row_of(kind).extension);
    return name.data();
}

}  // namespace

const char* file_kind_name(FileKind kind) { return row_of(kind).name; }

FrameWriter::FrameWriter(FrameQueue& queue, std::filesystem::path folder, FileKind kind, unsigned threads)
    : queue_(queue), folder_(std::move(folder)), kind_(kind) {
    for (unsigned i = 0; i < std::max(1U, threads); ++i) threads_.emplace_back([this] { Run(); });
}

FrameWriter::~FrameWriter() {
    queue_.Abandon();
    Finish();
}

void FrameWriter::Finish() {
    queue_.Close();
    for (std::thread& thread : threads_)
        if (thread.joinable()) thread.join();
}

std::string FrameWriter::Failure() const {
    const std::lock_guard lock(mutex_);
    return failure_;
}

uint64_t FrameWriter::Failed() const {
    const std::lock_guard lock(mutex_);
    return failed_;
}

std::vector<WrittenFrame> FrameWriter::Written() const {
    const std::lock_guard lock(mutex_);
    std::vector<WrittenFrame> frames = written_;
    std::sort(frames.begin(), frames.end(), [](const WrittenFrame& a, const WrittenFrame& b) { return a.number < b.number; });
    return frames;
}

void FrameWriter::Run() noexcept {
    while (std::optional<Frame> frame = queue_.Pop()) {
        try {
            WriteOne(*frame);
        } catch (const std::exception& failure) {
            Fail(failure.what());
        }
    }
}

void FrameWriter::WriteOne(Frame& frame) {
    WrittenFrame written{file_name(frame.number, kind_), frame.number, frame.info};
    row_of(kind_).store(frame.info, (folder_ / written.file).string());
    written.info.image_data = nullptr;
    queue_.GiveBack(std::move(frame.data));
    const std::lock_guard lock(mutex_);
    written_.push_back(std::move(written));
}

void FrameWriter::Fail(const std::string& reason) {
    queue_.Close();
    const std::lock_guard lock(mutex_);
    ++failed_;
    if (failure_.empty()) failure_ = reason;
}
