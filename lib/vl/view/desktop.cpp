#include "view/desktop.h"

#include <SDL2/SDL.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "core/error.h"
#include "view/key_names.h"

namespace kiv::vl {
namespace {

// How often the window system is asked for what the user does. The thread does not sleep inside SDL: SDL_PushEvent would wake it
// by a message to one of its windows, and where that is destroyed meanwhile the X library ends the program.
constexpr std::chrono::milliseconds look_interval{8};
constexpr std::chrono::milliseconds without_windows{500};
constexpr double wheel_factor = 1.25;
constexpr int first_width = 640;
constexpr int first_height = 480;

[[noreturn]] void no_display(const std::string& why) {
    throw Error(VL_ST_NOT_AVAILABLE, "there is no display to open windows on: " + why);
}

/// A display that nobody can look at counts only for who asks for it by name.
void require_real_display() {
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    if (driver != "dummy" && driver != "offscreen") return;
    const char* wanted = SDL_getenv("SDL_VIDEODRIVER");
    if (wanted == nullptr || driver != wanted) no_display("SDL found none");
}

struct FreeSurface {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};

}  // namespace

void Desktop::DestroyWindow::operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }

void Desktop::Begin() {
    // The program's signals are its own, and so is the screen saver; the pixels are drawn here, no graphics card is needed.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint("SDL_QUIT_ON_LAST_WINDOW_CLOSE", "0");
    SDL_SetMainReady();
    try {
        if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) no_display(SDL_GetError());
        require_real_display();
    } catch (...) {
        End();
        throw;
    }
}

void Desktop::End() {
    windows_.clear();
    if (SDL_WasInit(SDL_INIT_VIDEO) != 0) SDL_QuitSubSystem(SDL_INIT_VIDEO);
    SDL_TLSCleanup();  // what SDL keeps for a thread that it did not make itself
}

std::chrono::milliseconds Desktop::Serve() {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) Handle(event);
    // A callback that runs meanwhile may close any of them.
    std::vector<std::shared_ptr<View>> roots;
    for (const auto& [id, window] : windows_) roots.push_back(window.root);
    for (const auto& root : roots) Refresh(root);
    const bool dirty = std::any_of(windows_.begin(), windows_.end(), [](const auto& row) { return row.second.dirty; });
    return dirty ? std::chrono::milliseconds{0} : windows_.empty() ? without_windows : look_interval;
}

void Desktop::Refresh(const std::shared_ptr<View>& root) {
    Window* window = Find(*root);
    if (window == nullptr) return;
    if (TakeShown(*root)) {
        window->dirty = true;
        if (root->takes_size_of_image && root->Current() != nullptr) FollowImageSize(root);
    }
    window = Find(*root);
    if (window == nullptr || !window->dirty) return;
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(window->window.get(), &width, &height);
    root->Resize(width, height);
    window = Find(*root);
    if (window == nullptr) return;
    window->dirty = false;
    if (root->visible) Draw(*window);
}

bool Desktop::TakeShown(View& view) {
    bool any = view.TakeShown();
    for (const auto& child : view.children) any = TakeShown(*child) || any;
    return any;
}

void Desktop::FollowImageSize(const std::shared_ptr<View>& root) {
    SDL_Rect room{0, 0, first_width, first_height};
    SDL_GetDisplayUsableBounds(std::max(SDL_GetWindowDisplayIndex(WindowOf(*root).window.get()), 0), &room);
    const double width = root->Current()->Width();
    const double height = root->Current()->Height();
    // Some room for the frame and for other windows.
    const double scale = std::min({1.0, 0.8 * room.w / width, 0.8 * room.h / height});
    Move(*root, {root->place.x, root->place.y, std::max(static_cast<int>(width * scale), 1),
                 std::max(static_cast<int>(height * scale), 1)});
}

std::shared_ptr<View> Desktop::Open(const WindowWish& wish) {
    auto view = std::make_shared<View>();
    view->title = wish.title;
    view->place = wish.place;
    view->parent = wish.parent;
    view->takes_size_of_image = wish.anywhere;
    if (wish.anywhere) view->place = {0, 0, first_width, first_height};
    if (wish.parent) {
        Touch(*wish.parent);
        wish.parent->children.push_back(view);
    } else {
        const int x = wish.anywhere ? static_cast<int>(SDL_WINDOWPOS_UNDEFINED) : wish.place.x;
        const int y = wish.anywhere ? static_cast<int>(SDL_WINDOWPOS_UNDEFINED) : wish.place.y;
        SDL_Window* made = wish.native_window != nullptr ? SDL_CreateWindowFrom(wish.native_window)
                                                         : SDL_CreateWindow(wish.title.c_str(), x, y, view->place.width,
                                                                            view->place.height, SDL_WINDOW_RESIZABLE);
        if (made == nullptr) throw Error(VL_ST_ERROR, std::string("the window cannot be made: ") + SDL_GetError());
        Window& window = windows_[SDL_GetWindowID(made)];
        window.window.reset(made);
        window.root = view;
        window.native = wish.native_window != nullptr;
        SDL_GetWindowSize(made, &view->place.width, &view->place.height);
    }
    view->viewport.SetViewSize(view->place.width, view->place.height);
    view->handle = views().Give(view);
    return view;
}

void Desktop::Close(const std::shared_ptr<View>& view) {
    while (!view->children.empty()) {
        const auto child = view->children.back();
        Close(child);
    }
    if (view->closed) return;
    view->closed = true;
    view->callback = nullptr;
    views().Drop(view->handle);
    for (auto& [id, window] : windows_)
        if (window.pressed == view) window.pressed = nullptr;
    if (const auto parent = view->parent.lock()) {
        std::erase(parent->children, view);
        if (Window* window = Find(*parent)) window->dirty = true;
        return;
    }
    std::erase_if(windows_, [&](const auto& row) { return row.second.root == view; });
}

Desktop::Window* Desktop::Find(View& view) {
    std::shared_ptr<View> root = view.shared_from_this();
    while (auto parent = root->parent.lock()) root = parent;
    for (auto& [id, window] : windows_)
        if (window.root == root) return &window;
    return nullptr;
}

Desktop::Window& Desktop::WindowOf(View& view) {
    if (Window* window = view.closed ? nullptr : Find(view)) return *window;
    throw Error(VL_ST_INVALID_HANDLE, "the view has been closed");
}

void Desktop::Touch(View& view) { WindowOf(view).dirty = true; }

void Desktop::Move(View& view, const Place& place) {
    Window& window = WindowOf(view);
    window.dirty = true;
    view.takes_size_of_image = false;
    if (window.root.get() == &view) {
        if (place.x != view.place.x || place.y != view.place.y) SDL_SetWindowPosition(window.window.get(), place.x, place.y);
        SDL_SetWindowSize(window.window.get(), place.width, place.height);
    }
    view.place.x = place.x;
    view.place.y = place.y;
    view.Resize(place.width, place.height);
}

Place Desktop::InnerPlace(View& view) {
    Window& window = WindowOf(view);
    Place place{0, 0, view.place.width, view.place.height};
    for (auto child = view.shared_from_this(); child != window.root; child = child->parent.lock()) {
        place.x += child->place.x;
        place.y += child->place.y;
    }
    int x = 0;
    int y = 0;
    SDL_GetWindowPosition(window.window.get(), &x, &y);
    place.x += x;
    place.y += y;
    return place;
}

Place Desktop::OuterPlace(View& view) {
    Window& window = WindowOf(view);
    Place place = InnerPlace(*window.root);
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;
    // Where the system puts nothing around it, or does not tell, the window is what it is.
    if (SDL_GetWindowBordersSize(window.window.get(), &top, &left, &bottom, &right) != 0) return place;
    return {place.x - left, place.y - top, place.width + left + right, place.height + top + bottom};
}

void Desktop::SetTitle(View& view, const std::string& title) {
    view.title = title;
    Window& window = WindowOf(view);
    if (window.root.get() == &view) SDL_SetWindowTitle(window.window.get(), title.c_str());
}

void Desktop::SetVisible(View& view, bool visible) {
    Window& window = WindowOf(view);
    view.visible = visible;
    window.dirty = true;
    if (window.root.get() != &view) return;
    visible ? SDL_ShowWindow(window.window.get()) : SDL_HideWindow(window.window.get());
}

void Desktop::SetOnTop(View& view, bool on_top) {
    view.on_top = on_top;
    Window& window = WindowOf(view);
    if (window.root.get() == &view) SDL_SetWindowAlwaysOnTop(window.window.get(), on_top ? SDL_TRUE : SDL_FALSE);
}

cv::Mat Desktop::Capture(View& view) {
    Window& window = WindowOf(view);
    TakeShown(*window.root);
    cv::Mat canvas(view.place.height, view.place.width, CV_8UC4);
    view.Draw(canvas);
    window.dirty = true;
    return canvas;
}

void Desktop::Draw(Window& window) {
    SDL_Surface* screen = SDL_GetWindowSurface(window.window.get());
    // Without a surface the window is just being changed; an event that asks for drawing follows.
    if (screen == nullptr) return;
    const Place& place = window.root->place;
    cv::Mat canvas(place.height, place.width, CV_8UC4);
    window.root->Draw(canvas);
    const std::unique_ptr<SDL_Surface, FreeSurface> pixels(SDL_CreateRGBSurfaceWithFormatFrom(
        canvas.data, place.width, place.height, 32, static_cast<int>(canvas.step[0]), SDL_PIXELFORMAT_BGRA32));
    if (!pixels) return;
    SDL_SetSurfaceBlendMode(pixels.get(), SDL_BLENDMODE_NONE);
    if (SDL_BlitSurface(pixels.get(), nullptr, screen, nullptr) == 0) SDL_UpdateWindowSurface(window.window.get());
}

void Desktop::Handle(const SDL_Event& event) {
    const auto found = windows_.find(event.window.windowID);  // the number stands at the same place in all events of windows
    if (event.type == SDL_QUIT || event.type >= SDL_USEREVENT || found == windows_.end()) return;
    Window& window = found->second;
    switch (event.type) {
        case SDL_MOUSEMOTION:
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
        case SDL_MOUSEWHEEL:
            return HandleMouse(window, event);
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            return HandleKey(window, event);
        case SDL_WINDOWEVENT:
            break;
        default:
            return;
    }
    window.dirty = true;
    const std::shared_ptr<View> root = window.root;
    if (event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
        root->Resize(event.window.data1, event.window.data2);
    } else if (event.window.event == SDL_WINDOWEVENT_MOVED) {
        root->place.x = event.window.data1;
        root->place.y = event.window.data2;
    } else if (event.window.event == SDL_WINDOWEVENT_CLOSE && !window.native) {
        SetVisible(*root, false);
        VL_VIEW_EVENT closed{};
        closed.type = VL_EVENT_CLOSED;
        root->Report(closed);
    }
}

// A callback may close the window: nothing of it is touched afterwards.
void Desktop::HandleMouse(Window& window, const SDL_Event& event) {
    VL_VIEW_EVENT report{};
    report.modifiers = modifiers_of(SDL_GetModState());
    int x = 0;
    int y = 0;
    const std::uint32_t buttons = SDL_GetMouseState(&x, &y);
    report.buttons = buttons_of(buttons);
    if (event.type == SDL_MOUSEMOTION) {
        report.type = VL_EVENT_MOUSE_MOVE;
        x = event.motion.x;
        y = event.motion.y;
    } else if (event.type == SDL_MOUSEWHEEL) {
        report.type = VL_EVENT_WHEEL;
        report.wheel = event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -event.wheel.y : event.wheel.y;
        x = event.wheel.mouseX;
        y = event.wheel.mouseY;
    } else {
        report.type = event.type == SDL_MOUSEBUTTONDOWN ? VL_EVENT_MOUSE_DOWN : VL_EVENT_MOUSE_UP;
        report.button = buttons_of(SDL_BUTTON(event.button.button));
        x = event.button.x;
        y = event.button.y;
    }
    std::shared_ptr<View> view;
    if (window.pressed && event.type != SDL_MOUSEBUTTONDOWN && event.type != SDL_MOUSEWHEEL) {
        // A button that went down in a view belongs to it until it is let go, wherever the mouse is.
        view = window.pressed;
        for (auto child = view; child && child != window.root; child = child->parent.lock()) {
            x -= child->place.x;
            y -= child->place.y;
        }
    } else {
        view = window.root->At(x, y);
    }
    if (event.type == SDL_MOUSEBUTTONDOWN) {
        window.pressed = view;
        focused_ = view;
    }
    if (event.type == SDL_MOUSEBUTTONUP && report.buttons == 0) window.pressed = nullptr;
    if (view->mouse) {
        DragAndZoom(*view, event, x, y);
        window.dirty = true;
    }
    report.x = x;
    report.y = y;
    view->Report(report);
}

void Desktop::DragAndZoom(View& view, const SDL_Event& event, int x, int y) {
    if (event.type == SDL_MOUSEWHEEL && event.wheel.y != 0)
        return view.viewport.ZoomAround(x, y, std::pow(wheel_factor, event.wheel.y));
    if (event.type != SDL_MOUSEMOTION || (event.motion.state & SDL_BUTTON_LMASK) == 0) return;
    const double zoom = view.viewport.Zoom();
    view.viewport.SetOffset(view.viewport.X() - event.motion.xrel / zoom, view.viewport.Y() - event.motion.yrel / zoom);
}

void Desktop::HandleKey(Window& window, const SDL_Event& event) {
    VL_VIEW_EVENT report{};
    report.type = event.type == SDL_KEYDOWN ? VL_EVENT_KEY_DOWN : VL_EVENT_KEY_UP;
    report.key = key_of(event.key.keysym.sym);
    if (report.key == 0) return;
    report.modifiers = modifiers_of(event.key.keysym.mod);
    SDL_GetMouseState(&report.x, &report.y);
    // The keys go to the view of this window that was pressed last.
    std::shared_ptr<View> view = focused_.lock();
    std::shared_ptr<View> root = view;
    while (root && root->parent.lock()) root = root->parent.lock();
    if (root != window.root) view = window.root;
    for (auto child = view; child && child != window.root; child = child->parent.lock()) {
        report.x -= child->place.x;
        report.y -= child->place.y;
    }
    view->Report(report);
}

Desktop& desktop() {
    // Never destroyed, unlike the thread that uses it: a program's own statics may still ask.
    static Desktop& all = *std::make_unique<Desktop>().release();
    return all;
}

WindowThread& window_thread() {
    static WindowThread thread(desktop());
    return thread;
}

}  // namespace kiv::vl
