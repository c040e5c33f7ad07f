#include <VL.h>

#include <cmath>
#include <type_traits>

#include "api/arguments.h"
#include "api/names.h"
#include "convert/convert.h"
#include "core/error.h"
#include "image/image_handles.h"
#include "view/desktop.h"

using namespace kiv::vl;

namespace {

constexpr uint32_t longest_side = 16384;

void on_window_thread(const std::function<void()>& task) { window_thread().Run(task); }

/// Runs `body(View&)` on the window thread and has the view drawn again.
template <class Body>
VL_STATUS change(const char* function, VL_VIEW_HANDLE hView, Body&& body) {
    return guarded(function, [&] {
        const auto view = views().Of(hView);
        on_window_thread([&] {
            desktop().Touch(*view);
            body(*view);
        });
    });
}

Place place_of(int32_t x, int32_t y, uint32_t width, uint32_t height) {
    if (width < 1 || height < 1 || width > longest_side || height > longest_side)
        throw Error(VL_ST_INVALID_PARAMETER, "a view of " + size_text(width, height) + ": sides are 1 to 16384");
    return {x, y, static_cast<int>(width), static_cast<int>(height)};
}

VL_VIEW_HANDLE open(const WindowWish& wish) {
    VL_VIEW_HANDLE handle = nullptr;
    on_window_thread([&] { handle = desktop().Open(wish)->handle; });
    return handle;
}

template <class Character>
VL_STATUS open_anywhere(const char* function, const Character* title, VL_VIEW_HANDLE* phView) {
    return guarded(function, [&] {
        auto& out = required(phView, "phView");
        WindowWish wish;
        wish.title = title_of(title);
        wish.anywhere = true;
        out = open(wish);
    });
}

template <class Character>
VL_STATUS open_at(const char* function, const Character* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                  VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView) {
    return guarded(function, [&] {
        auto& out = required(phView, "phView");
        WindowWish wish;
        if (hParent != nullptr) wish.parent = views().Of(hParent);
        if (wish.parent && nativeWindow != nullptr)
            throw Error(VL_ST_INVALID_PARAMETER, "a view is in another view or in a window of the program's, not in both");
        wish.title = title_of(title);
        wish.place = place_of(x, y, width, height);
        wish.native_window = nativeWindow;
        out = open(wish);
    });
}

template <class Character>
VL_STATUS set_title(const char* function, VL_VIEW_HANDLE hView, const Character* title) {
    return change(function, hView, [&](View& view) { desktop().SetTitle(view, title_of(title)); });
}

VL_STATUS get_place(const char* function, VL_VIEW_HANDLE hView, Place (Desktop::*place_of_view)(View&), int32_t* pX, int32_t* pY,
                    uint32_t* pWidth, uint32_t* pHeight) {
    return guarded(function, [&] {
        const auto view = views().Of(hView);
        auto& x = required(pX, "pX");
        auto& y = required(pY, "pY");
        auto& width = required(pWidth, "pWidth");
        auto& height = required(pHeight, "pHeight");
        Place place;
        on_window_thread([&] { place = (desktop().*place_of_view)(*view); });
        x = place.x;
        y = place.y;
        width = static_cast<uint32_t>(place.width);
        height = static_cast<uint32_t>(place.height);
    });
}

/// What can be set and read as a number, one row for each.
struct OptionRow {
    VL_VIEW_OPTION option;
    int32_t least;
    int32_t most;  ///< below least: only to be read
    int32_t (*get)(View& view);
    void (*set)(View& view, int32_t value);
};

constexpr OptionRow option_rows[] = {
    {VL_VIEW_ZOOM, VL_ZOOM_FIT, VL_ZOOM_FREE, [](View& view) { return view.viewport.Mode(); },
     [](View& view, int32_t value) { view.viewport.SetMode(value); }},
    {VL_VIEW_SMOOTH, 0, 1, [](View& view) { return int32_t{view.smooth}; },
     [](View& view, int32_t value) { view.smooth = value == 1; }},
    {VL_VIEW_MOUSE, 0, 1, [](View& view) { return int32_t{view.mouse}; },
     [](View& view, int32_t value) { view.mouse = value == 1; }},
    {VL_VIEW_VISIBLE, 0, 1, [](View& view) { return int32_t{view.visible}; },
     [](View& view, int32_t value) { desktop().SetVisible(view, value == 1); }},
    {VL_VIEW_DEMOSAIC, VL_DEMOSAIC_BILINEAR, VL_DEMOSAIC_BEST, [](View& view) { return view.demosaic.load(); },
     [](View& view, int32_t value) { view.demosaic = value; }},
    {VL_VIEW_BACKGROUND, 0, 0xFFFFFF, [](View& view) { return static_cast<int32_t>(view.background); },
     [](View& view, int32_t value) { view.background = static_cast<uint32_t>(value); }},
    {VL_VIEW_ON_TOP, 0, 1, [](View& view) { return int32_t{view.on_top}; },
     [](View& view, int32_t value) { desktop().SetOnTop(view, value == 1); }},
    {VL_VIEW_DRAWN, 0, -1, [](View& view) { return view.drawn; }, nullptr},
};

const OptionRow& row_of(VL_VIEW_OPTION option) {
    for (const auto& row : option_rows)
        if (row.option == option) return row;
    throw Error(VL_ST_INVALID_PARAMETER, "there is no option " + std::to_string(option));
}

}  // namespace

VL_STATUS VL_CALL vlOpenViewWindowAutoA(const char* title, VL_VIEW_HANDLE* phView) {
    return open_anywhere(__func__, title, phView);
}
VL_STATUS VL_CALL vlOpenViewWindowAutoW(const wchar_t* title, VL_VIEW_HANDLE* phView) {
    return open_anywhere(__func__, title, phView);
}

VL_STATUS VL_CALL vlOpenViewWindowA(const char* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                    VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView) {
    return open_at(__func__, title, x, y, width, height, hParent, nativeWindow, phView);
}
VL_STATUS VL_CALL vlOpenViewWindowW(const wchar_t* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                    VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView) {
    return open_at(__func__, title, x, y, width, height, hParent, nativeWindow, phView);
}

VL_STATUS VL_CALL vlCloseViewWindow(VL_VIEW_HANDLE hView) {
    return guarded(__func__, [&] {
        // From here on no other call finds the view, so that it is closed once.
        const auto view = views().Take(hView);
        on_window_thread([&] { desktop().Close(view); });
    });
}

VL_STATUS VL_CALL vlShowImage(VL_VIEW_HANDLE hView, const K_IMAGE_INFO* raw, uint32_t gainRed, uint32_t gainGreen,
                              uint32_t gainBlue) {
    return guarded(__func__, [&] {
        const auto view = views().Of(hView);
        view->Show(RawView(readable(raw)), {gainRed, gainGreen, gainBlue});
        window_thread().Wake();
    });
}

VL_STATUS VL_CALL vlShowImageEx(VL_VIEW_HANDLE hView, VL_IMAGE_HANDLE hImage, uint32_t gainRed, uint32_t gainGreen,
                                uint32_t gainBlue) {
    return guarded(__func__, [&] {
        const auto view = views().Of(hView);
        view->Show(*image_of(hImage), {gainRed, gainGreen, gainBlue});
        window_thread().Wake();
    });
}

VL_STATUS VL_CALL vlSetImageOffset(VL_VIEW_HANDLE hView, int32_t x, int32_t y) {
    return change(__func__, hView, [&](View& view) { view.viewport.SetOffset(x, y); });
}

VL_STATUS VL_CALL vlSetImageOffsetEx(VL_VIEW_HANDLE hView, double x, double y, double zoom) {
    return change(__func__, hView, [&](View& view) {
        if (!std::isfinite(x) || !std::isfinite(y)) throw Error(VL_ST_INVALID_PARAMETER, "an offset is no number");
        if (!(zoom >= Viewport::least_zoom && zoom <= Viewport::most_zoom))
            throw Error(VL_ST_INVALID_PARAMETER, "a zoom of " + std::to_string(zoom) + ": 1/64 to 64 are possible");
        view.viewport.SetOffsetAndZoom(x, y, zoom);
    });
}

VL_STATUS VL_CALL vlGetImageOffsetEx(VL_VIEW_HANDLE hView, double* pX, double* pY, double* pZoom) {
    return guarded(__func__, [&] {
        const auto view = views().Of(hView);
        auto& x = required(pX, "pX");
        auto& y = required(pY, "pY");
        auto& zoom = required(pZoom, "pZoom");
        on_window_thread([&] {
            view->TakeShown();
            x = view->viewport.X();
            y = view->viewport.Y();
            zoom = view->viewport.Zoom();
        });
    });
}

VL_STATUS VL_CALL vlSetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t value) {
    return change(__func__, hView, [&](View& view) {
        const auto& row = row_of(option);
        if (row.set == nullptr) throw Error(VL_ST_INVALID_PARAMETER, "this option can only be read");
        if (value < row.least || value > row.most)
            throw Error(VL_ST_INVALID_PARAMETER, "option " + std::to_string(option) + " cannot be " + std::to_string(value));
        row.set(view, value);
    });
}

VL_STATUS VL_CALL vlGetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t* pValue) {
    return guarded(__func__, [&] {
        const auto view = views().Of(hView);
        auto& out = required(pValue, "pValue");
        const auto& row = row_of(option);
        on_window_thread([&] { out = row.get(*view); });
    });
}

VL_STATUS VL_CALL vlSetViewWindowCallback(VL_VIEW_HANDLE hView, VL_VIEW_CALLBACK callback, void* context) {
    return change(__func__, hView, [&](View& view) {
        view.callback = callback;
        view.context = context;
    });
}

VL_STATUS VL_CALL vlMoveViewWindow(VL_VIEW_HANDLE hView, int32_t x, int32_t y, uint32_t width, uint32_t height) {
    return change(__func__, hView, [&](View& view) { desktop().Move(view, place_of(x, y, width, height)); });
}

VL_STATUS VL_CALL vlResizeChildWindow(VL_VIEW_HANDLE hView, uint32_t width, uint32_t height) {
    return change(__func__, hView,
                  [&](View& view) { desktop().Move(view, place_of(view.place.x, view.place.y, width, height)); });
}

VL_STATUS VL_CALL vlGetViewWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth, uint32_t* pHeight) {
    return get_place(__func__, hView, &Desktop::InnerPlace, pX, pY, pWidth, pHeight);
}

VL_STATUS VL_CALL vlGetFrameWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth, uint32_t* pHeight) {
    return get_place(__func__, hView, &Desktop::OuterPlace, pX, pY, pWidth, pHeight);
}

VL_STATUS VL_CALL vlSetViewWindowTitleA(VL_VIEW_HANDLE hView, const char* title) { return set_title(__func__, hView, title); }
VL_STATUS VL_CALL vlSetViewWindowTitleW(VL_VIEW_HANDLE hView, const wchar_t* title) { return set_title(__func__, hView, title); }

VL_STATUS VL_CALL vlCaptureViewWindow(VL_VIEW_HANDLE hView, VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        const auto view = views().Of(hView);
        auto& out = required(phImage, "phImage");
        cv::Mat pixels;
        on_window_thread([&] { pixels = desktop().Capture(*view); });
        const auto width = static_cast<uint32_t>(pixels.cols);
        const auto height = static_cast<uint32_t>(pixels.rows);
        Image image(width, height, VL_IMAGE_BGR8);
        convert_image(Image(width, height, VL_IMAGE_BGRA8, pixels.data, pixels.total() * pixels.elemSize()), image);
        out = give_image(std::move(image));
    });
}
