/// The windows of all views, on SDL. Everything belongs to the window thread.
#pragma once

#include <memory>
#include <opencv2/core/mat.hpp>
#include <string>
#include <unordered_map>

#include "view/view.h"
#include "view/window_thread.h"

struct SDL_Window;
union SDL_Event;

namespace kiv::vl {

struct WindowWish {
    std::string title;
    Place place;
    bool anywhere = false;  ///< the system chooses the place
    std::shared_ptr<View> parent;
    void* native_window = nullptr;
};

class Desktop final : public WindowWork {
public:
    void Begin() override;
    void End() override;
    std::chrono::milliseconds Serve() override;

    std::shared_ptr<View> Open(const WindowWish& wish);
    /// The view, its children, and its window where it has one of its own. Their handles are no more.
    void Close(const std::shared_ptr<View>& view);

    void Move(View& view, const Place& place);
    Place InnerPlace(View& view);  ///< on the desktop
    Place OuterPlace(View& view);  ///< of its frame window, with what the system puts around it
    void SetTitle(View& view, const std::string& title);
    void SetVisible(View& view, bool visible);
    void SetOnTop(View& view, bool on_top);
    /// To be drawn before the thread waits again. Throws an Error, like all of these, when the view is closed.
    void Touch(View& view);
    /// What a view shows, drawn now: 4 bytes a pixel.
    cv::Mat Capture(View& view);

private:
    struct DestroyWindow {
        void operator()(SDL_Window* window) const;
    };
    struct Window {
        std::unique_ptr<SDL_Window, DestroyWindow> window;
        std::shared_ptr<View> root;
        std::shared_ptr<View> pressed;  ///< the view that the buttons went down in
        bool native = false;
        bool dirty = true;
    };

    Window* Find(View& view);
    Window& WindowOf(View& view);
    void Refresh(const std::shared_ptr<View>& root);
    void Handle(const SDL_Event& event);
    void HandleMouse(Window& window, const SDL_Event& event);
    void HandleKey(Window& window, const SDL_Event& event);
    static bool TakeShown(View& view);
    void FollowImageSize(const std::shared_ptr<View>& root);
    static void Draw(Window& window);
    static void DragAndZoom(View& view, const SDL_Event& event, int x, int y);

    std::unordered_map<std::uint32_t, Window> windows_;  ///< by SDL's number
    std::weak_ptr<View> focused_;
};

Desktop& desktop();
WindowThread& window_thread();

}  // namespace kiv::vl
