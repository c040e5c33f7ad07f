/// A display of the test's own, and what a person does before it: looking, moving the mouse, pressing buttons and keys.
#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace kiv_test {

/// Starts an X server without a screen that anybody sees, makes it this process's display, and ends it.
class VirtualScreen {
public:
    VirtualScreen() {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        if (fork() == 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM);
            const std::string number = std::to_string(ends[1]);
            const int nowhere = open("/dev/null", O_WRONLY);
            dup2(nowhere, 2);
            execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                   static_cast<char*>(nullptr));
            _exit(127);
        }
        close(ends[1]);
        std::string number;
        for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';) number += c;
        close(ends[0]);
        EXPECT_NE(number, "") << "Xvfb does not start";
        setenv("DISPLAY", (":" + number).c_str(), 1);
        display_.reset(XOpenDisplay(nullptr));
        EXPECT_NE(display_, nullptr);
    }
    ~VirtualScreen() {
        display_.reset();
        unsetenv("DISPLAY");
        // The server stays while windows are served: who loses it loses the process. It ends with the process, by this signal.
    }
    VirtualScreen(const VirtualScreen&) = delete;
    VirtualScreen& operator=(const VirtualScreen&) = delete;

    Display* Connection() const { return display_.get(); }
    Window Root() const { return DefaultRootWindow(display_.get()); }

    /// Red, green and blue of a pixel of the screen.
    std::array<int, 3> Pixel(int x, int y) const {
        XImage* image = XGetImage(display_.get(), Root(), x, y, 1, 1, AllPlanes, ZPixmap);
        if (image == nullptr) return {-1, -1, -1};
        const unsigned long value = XGetPixel(image, 0, 0);
        XDestroyImage(image);
        return {static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 8 & 255), static_cast<int>(value & 255)};
    }

    void MoveMouse(int x, int y) const {
        XWarpPointer(display_.get(), None, Root(), 0, 0, 0, 0, x, y);
        XSync(display_.get(), False);
    }

    /// The top-level window with this title, or None.
    Window Find(const std::string& title) const {
        // Nobody else is served meanwhile: a window that is destroyed between the two questions would end the program.
        XGrabServer(display_.get());
        Window root = None, parent = None;
        Window* children = nullptr;
        unsigned count = 0;
        XQueryTree(display_.get(), Root(), &root, &parent, &children, &count);
        Window found = None;
        for (unsigned i = 0; i < count; ++i) {
            XTextProperty name{};
            const Atom utf8_name = XInternAtom(display_.get(), "_NET_WM_NAME", False);
            if (XGetTextProperty(display_.get(), children[i], &name, utf8_name) == 0) continue;
            if (title == reinterpret_cast<const char*>(name.value)) found = children[i];
            XFree(name.value);
        }
        XFree(children);
        XUngrabServer(display_.get());
        XFlush(display_.get());
        return found;
    }

    void Button(Window window, int x, int y, unsigned button, bool down) const {
        XEvent event{};
        event.xbutton.type = down ? ButtonPress : ButtonRelease;
        event.xbutton.window = window;
        event.xbutton.root = Root();
        event.xbutton.x = x;
        event.xbutton.y = y;
        event.xbutton.button = button;
        event.xbutton.same_screen = True;
        Send(window, event, down ? ButtonPressMask : ButtonReleaseMask);
    }
    void Key(Window window, KeySym key, bool down) const {
        XEvent event{};
        event.xkey.type = down ? KeyPress : KeyRelease;
        event.xkey.window = window;
        event.xkey.root = Root();
        event.xkey.keycode = XKeysymToKeycode(display_.get(), key);
        event.xkey.same_screen = True;
        Send(window, event, down ? KeyPressMask : KeyReleaseMask);
    }
    /// What the cross of a frame window sends.
    void AskToClose(Window window) const {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = XInternAtom(display_.get(), "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(XInternAtom(display_.get(), "WM_DELETE_WINDOW", False));
        Send(window, event, NoEventMask);
    }

private:
    void Send(Window window, XEvent& event, long mask) const {
        XSendEvent(display_.get(), window, False, mask, &event);
        XSync(display_.get(), False);
    }
    struct CloseDisplay {
        void operator()(Display* display) const { XCloseDisplay(display); }
    };
    std::unique_ptr<Display, CloseDisplay> display_;
};

}  // namespace kiv_test
