#include "view/window_thread.h"

#include <kiv/platform/thread.h>

#include <exception>
#include <utility>

namespace kiv::vl {

WindowThread::~WindowThread() {
    std::unique_lock hold(lock_);
    ending_ = true;
    work_to_do_.notify_one();
    hold.unlock();
    if (!thread_.joinable()) return;
    // A program may exit from inside a callback.
    if (thread_.get_id() == std::this_thread::get_id()) {
        thread_.detach();
    } else {
        thread_.join();
    }
}

void WindowThread::Run(const std::function<void()>& task) {
    std::unique_lock hold(lock_);
    if (state_ == State::Running && thread_.get_id() == std::this_thread::get_id()) {
        hold.unlock();
        return task();
    }
    Start(hold);
    Task mine{&task, nullptr};
    tasks_.push_back(&mine);
    work_to_do_.notify_one();
    changed_.wait(hold, [&] { return mine.done; });
    if (mine.failure) std::rethrow_exception(mine.failure);
}

void WindowThread::Start(std::unique_lock<std::mutex>& hold) {
    changed_.wait(hold, [&] { return state_ != State::Starting; });
    if (state_ == State::Running) return;
    if (thread_.joinable()) thread_.join();  // one that found no display and has ended
    state_ = State::Starting;
    start_failure_ = nullptr;
    thread_ = std::thread([this] { Loop(); });
    changed_.wait(hold, [&] { return state_ != State::Starting; });
    if (state_ == State::Stopped) std::rethrow_exception(start_failure_);
}

void WindowThread::Loop() {
    platform::set_thread_name("vl windows");
    try {
        work_.Begin();
    } catch (...) {
        const std::lock_guard hold(lock_);
        start_failure_ = std::current_exception();
        state_ = State::Stopped;
        changed_.notify_all();
        return;
    }
    std::unique_lock hold(lock_);
    state_ = State::Running;
    changed_.notify_all();
    while (!ending_) {
        hold.unlock();
        RunTasks();
        const auto pause = work_.Serve();
        hold.lock();
        work_to_do_.wait_for(hold, pause, [&] { return ending_ || woken_ || !tasks_.empty(); });
        woken_ = false;
    }
    hold.unlock();
    RunTasks();
    work_.End();
}

void WindowThread::RunTasks() {
    std::unique_lock hold(lock_);
    while (!tasks_.empty()) {
        Task* task = tasks_.front();
        tasks_.pop_front();
        hold.unlock();
        try {
            (*task->run)();
        } catch (...) {
            task->failure = std::current_exception();
        }
        hold.lock();
        task->done = true;
        changed_.notify_all();
    }
}

void WindowThread::Wake() {
    const std::lock_guard hold(lock_);
    woken_ = true;
    work_to_do_.notify_one();
}

}  // namespace kiv::vl
