// What the tests need a second process for. Each command prints "ready" when it holds what it was asked for and then waits for
// the end of its input.
#include <kiv/platform/debug_output.h>
#include <kiv/platform/event.h>
#include <kiv/platform/mapped_file.h>
#include <kiv/platform/paths.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <map>
#include <string>

using namespace kiv::platform;

namespace {

constexpr int not_there = 3;

void ready_until_input_ends() {
    std::cout << "ready" << std::endl;
    std::string ignored(std::istreambuf_iterator<char>(std::cin), {});
}

int hold_event(char** arguments) {
    const auto event =
        Event::CreateNamed(arguments[0], std::string(arguments[1]) == "manual" ? ResetMode::manual : ResetMode::automatic);
    ready_until_input_ends();
    return 0;
}

int set_event(char** arguments) {
    const auto event = Event::OpenNamed(arguments[0]);
    if (!event) return not_there;
    event->Set();
    return 0;
}

/// Takes the event until somebody sets the other one; prints how often it got it.
int take_event(char** arguments) {
    const auto event = Event::OpenNamed(arguments[0]);
    const auto end = Event::OpenNamed(arguments[1]);
    const auto taken_event = Event::OpenNamed(arguments[2]);
    if (!event || !end || !taken_event) return not_there;
    std::cout << "ready" << std::endl;
    Event* const both[] = {event.get(), end.get()};
    int taken = 0;
    for (; wait_any(both, infinite) == 0u; ++taken) taken_event->Set();
    std::cout << taken << std::endl;
    return 0;
}

int hold_lock(char** arguments) {
    const auto lock = FileLock::TryAcquire(arguments[0]);
    if (!lock) return not_there;
    ready_until_input_ends();
    return 0;
}

int count_up(char** arguments) {
    const MappedFile file = MappedFile::Open(arguments[0]);
    auto& counter = *reinterpret_cast<std::atomic<int>*>(file.Data());
    for (int i = std::atoi(arguments[1]); i > 0; --i) counter.fetch_add(1);
    return 0;
}

int print(char** arguments) {
    debug_print(std::string(arguments[0]) + "\n");
    debug_print(std::wstring(L"wide \u00e4\n"));
    return 0;
}

int own_file(char**) {
    static const int here = 0;
    std::cout << module_file(&here) << std::endl;
    return 0;
}

const std::map<std::string, int (*)(char**)> commands = {
    {"hold-event", hold_event}, {"set-event", set_event}, {"take-event", take_event}, {"hold-lock", hold_lock},
    {"count-up", count_up},     {"print", print},         {"own-file", own_file},
};

}  // namespace

int main(int count, char** arguments) {
    const auto command = count > 1 ? commands.find(arguments[1]) : commands.end();
    return command == commands.end() ? 2 : command->second(arguments + 2);
}
