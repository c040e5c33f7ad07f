/// The one thread that touches the window system: SDL wants all of its windows served by the thread that began it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace kiv::vl {

/// What the thread does besides the tasks that it is given. Called on the thread only.
class WindowWork {
public:
    virtual ~WindowWork() = default;
    /// A display is there. Throws an Error where there is none.
    virtual void Begin() = 0;
    virtual void End() = 0;
    /// Does what is to be done now, without waiting, and answers when it wants to be called again at the latest.
    virtual std::chrono::milliseconds Serve() = 0;
};

class WindowThread {
public:
    explicit WindowThread(WindowWork& work) : work_(work) {}
    /// Ends the thread and waits for it, unless it is the one that calls.
    ~WindowThread();

    /// Runs a task on the thread, starting it if it does not run, and waits; throws what the task throws. On the thread itself
    /// the task runs at once.
    void Run(const std::function<void()>& task);
    /// Lets the thread look at what there is to do; nothing if it does not run.
    void Wake();

private:
    struct Task {
        const std::function<void()>* run;
        std::exception_ptr failure;
        bool done = false;
    };

    void Start(std::unique_lock<std::mutex>& hold);
    void Loop();
    void RunTasks();

    WindowWork& work_;
    std::mutex lock_;
    std::condition_variable changed_;  ///< for those who wait for the thread
    std::condition_variable work_to_do_;
    enum class State { Stopped, Starting, Running } state_ = State::Stopped;
    bool ending_ = false;
    bool woken_ = false;
    std::exception_ptr start_failure_;
    std::deque<Task*> tasks_;
    std::thread thread_;
};

}  // namespace kiv::vl
