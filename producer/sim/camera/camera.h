/// A simulated camera: a register space as a machine-vision camera has one, the GenICam description of it, and a sensor that
/// looks at a conveyor belt (or at the image files of a folder). It knows nothing of GenTL but the numbers of its errors: the
/// producer's device and stream modules stand on top.
///
/// The registers live in a file that is mapped into memory, so a camera stays as it was left, from one process to the next,
/// until it is power-cycled. Acquisition, pending triggers and counters of frames belong to the object, not to the file: a
/// second process that looks at the camera's registers does not disturb a running acquisition.
///
/// Threads: every function may be called from any thread. Read and Write never wait for a frame that is being rendered.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "camera_events.h"
#include "frame_faults.h"

namespace kivsim {

struct CameraConfig {
    /// How the description is offered: zipped or plain in the register space, or as a file beside the state file.
    enum class Url { Zip, Plain, File };

    std::string model = "KivSim-5MM";
    std::string serial = "000001";
    std::string user_id;  ///< of a camera that was never written to
    Url url = Url::Zip;
    uint32_t sensor_width = 2448;   ///< multiple of 8, 64 to 8192
    uint32_t sensor_height = 2048;  ///< multiple of 8, 64 to 8192
    bool color = false;
    bool gige = false;                 ///< has the features of a GigE Vision device
    double max_frame_rate = 35.0;      ///< Hz at full size; fewer lines are read faster
    std::string image_folder;          ///< PNG, TIFF, PGM and PPM files to play instead of the belt; empty: the belt
    std::filesystem::path state_file;  ///< made when it is missing
    uint32_t seed = 1;                 ///< of noise and of the order of the parts
};

struct FrameInfo {
    uint64_t frame_id = 0;      ///< 1 after each start; lost frames are counted
    uint64_t timestamp_ns = 0;  ///< begin of the exposure, device time
    uint32_t width = 0, height = 0, offset_x = 0, offset_y = 0;
    uint32_t pixel_format = 0;  ///< PFNC code
    size_t size = 0;            ///< bytes of image and chunks, also when the buffer took fewer
    size_t image_size = 0;      ///< of these, bytes of the image
    uint64_t chunk_layout = 0;  ///< changes when the chunks lie elsewhere; 0: there are none
    bool chunks_only = false;   ///< nothing but the chunks tells what the payload is
};

class Camera {
public:
    /// Maps the registers. Throws std::runtime_error that says what is wrong with the file or the configuration.
    explicit Camera(const CameraConfig& config);
    ~Camera();
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    /// Both return a GC_ERROR and do all or nothing. A write takes effect at once, on the next frame that begins.
    ///   GC_ERR_INVALID_ADDRESS  some byte of the range belongs to no register
    ///   GC_ERR_ACCESS_DENIED    a register is not readable, not writable, or may not change while images are acquired
    ///   GC_ERR_INVALID_VALUE    the camera does not take that value
    int32_t Read(uint64_t address, void* out, size_t size);
    int32_t Write(uint64_t address, const void* in, size_t size);
    /// The same for accesses from outside. When a register in the range was asked to fail or to be late they do nothing and
    /// return kFaultDue, which is no GC_ERROR.
    int32_t ReadFromOutside(uint64_t address, void* out, size_t size);
    int32_t WriteFromOutside(uint64_t address, const void* in, size_t size);
    static constexpr int32_t kFaultDue = 1;

    /// Where the description is: "local:name.zip;addr;len", "local:name.xml;addr;len" or "file:///...".
    std::string Url() const;

    /// Bytes of an image and its chunks with the present settings.
    size_t PayloadSize() const;

    enum class Wait { Frame, Timeout, Woken };
    /// Waits until the next frame is due (frame rate or trigger). A camera that is not acquiring has none.
    Wait WaitForFrame(std::chrono::milliseconds timeout);
    /// Ends a WaitForFrame. One that is not under way yet: the next one ends at once, so the call cannot be lost.
    void Wake();
    /// Renders the frame that WaitForFrame announced, as much of it as fits. An empty span: the frame is lost, but counted.
    FrameInfo NextFrame(std::span<std::byte> buffer);

    /// What shall go wrong with the next frame.
    FrameFaults Faults() const;

    /// Who hears of events that EventNotification has switched on.
    void SetEventSink(EventSink sink);
    /// Waits for moments at which something is to be told, and tells it; returns after that time or a Wake. Events need it when
    /// no stream waits for frames: frames that nobody would fetch are then skipped here.
    void RunEvents(std::chrono::milliseconds time);
    /// Somebody fetches the frames: RunEvents leaves them alone.
    void SetFramesFetched(bool fetched);

    /// An action command on the wire: fires trigger source Action<n> when key and group match what the registers say.
    void Action(uint32_t device_key, uint32_t group_key, uint32_t group_mask);

    /// Off and on again: stops, loads the user set of UserSetDefault, restarts the device time.
    void PowerCycle();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace kivsim
