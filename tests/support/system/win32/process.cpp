#include "support/system/process.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <kiv/platform/text.h>
#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace kiv_test {
namespace {

using kiv::platform::utf8_from_wide;
using kiv::platform::wide_from_utf8;

struct CloseHandleOf {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};
using Owned = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandleOf>;

/// By the rules of the C library that takes the line apart again.
std::wstring quoted(const std::string& word) {
    std::wstring result = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : wide_from_utf8(word)) {
        if (c == L'"') result.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        result += c;
    }
    return result + std::wstring(backslashes, L'\\') + L'"';
}

Owned file_for_child(const std::string& path, DWORD access, DWORD how) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const HANDLE file = CreateFileW(wide_from_utf8(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, how,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot open " + path);
    return Owned(file);
}

/// The end for the child is inherited, the other one is not.
std::pair<Owned, Owned> pipe(bool child_reads) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE reading = nullptr, writing = nullptr;
    if (!CreatePipe(&reading, &writing, &inherited, 0)) throw std::runtime_error("no pipe for a child");
    SetHandleInformation(child_reads ? writing : reading, HANDLE_FLAG_INHERIT, 0);
    return {Owned(reading), Owned(writing)};
}

struct Files {
    HANDLE input, output, errors;
};

Owned start(const std::string& program, const std::vector<std::string>& arguments, const Files& files, wchar_t* variables,
            DWORD& number) {
    std::wstring line = quoted(program);
    for (const std::string& argument : arguments) line += L" " + quoted(argument);
    STARTUPINFOW how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdInput = files.input, how.hStdOutput = files.output, how.hStdError = files.errors;
    PROCESS_INFORMATION made{};
    // A group of its own, so that it can be interrupted alone.
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT | CREATE_NEW_PROCESS_GROUP,
                        variables, nullptr, &how, &made))
        throw std::runtime_error("cannot start " + program + ": error " + std::to_string(GetLastError()));
    CloseHandle(made.hThread);
    number = made.dwProcessId;
    return Owned(made.hProcess);
}

constexpr UINT killed = 1009;

}  // namespace

struct Process::System {
    Owned process, input, output;
    DWORD number = 0;
};

Process::Process(std::unique_ptr<System> system) : system_(std::move(system)) {}

std::unique_ptr<Process> Process::Talking(const std::string& program, const std::vector<std::string>& arguments) {
    auto [child_input, input] = pipe(true);
    auto [output, child_output] = pipe(false);
    DWORD number = 0;
    Owned process = start(program, arguments, {child_input.get(), child_output.get(), child_output.get()}, nullptr, number);
    return std::unique_ptr<Process>(
        new Process(std::make_unique<System>(System{std::move(process), std::move(input), std::move(output), number})));
}

std::unique_ptr<Process> Process::Writing(const std::string& program, const std::vector<std::string>& arguments,
                                          const std::vector<std::string>& variables, const std::string& output,
                                          const std::string& errors) {
    const Owned nothing = file_for_child("NUL", GENERIC_READ, OPEN_EXISTING);
    const Owned out = file_for_child(output, GENERIC_WRITE, CREATE_ALWAYS),
                err = file_for_child(errors, GENERIC_WRITE, CREATE_ALWAYS);
    std::wstring block;
    for (const std::string& variable : variables) block += wide_from_utf8(variable) + L'\0';
    block += L'\0';
    DWORD number = 0;
    Owned process = start(program, arguments, {nothing.get(), out.get(), err.get()}, block.data(), number);
    return std::unique_ptr<Process>(new Process(std::make_unique<System>(System{std::move(process), nullptr, nullptr, number})));
}

Process::~Process() {
    if (system_->process) Kill();
}

std::string Process::ReadLine() {
    std::string line;
    char c = 0;
    DWORD got = 0;
    while (ReadFile(system_->output.get(), &c, 1, &got, nullptr) && got == 1 && c != '\n')
        if (c != '\r') line += c;
    return line;
}

void Process::EndInput() { system_->input.reset(); }

bool Process::CanInterrupt() { return GetConsoleWindow() != nullptr; }

void Process::Interrupt() { GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, system_->number); }

void Process::Kill() {
    TerminateProcess(system_->process.get(), killed);
    Wait();
}

int Process::Wait() {
    const Owned process = std::move(system_->process);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD code = killed;
    GetExitCodeProcess(process.get(), &code);
    return code < 1000 ? static_cast<int>(code) : 1000 + static_cast<int>(code & 0xFF);
}

std::uint32_t own_process_number() { return GetCurrentProcessId(); }

std::vector<std::string> own_variables() {
    std::vector<std::string> variables;
    wchar_t* const all = GetEnvironmentStringsW();
    for (const wchar_t* entry = all; *entry != 0; entry += std::wstring_view(entry).size() + 1)
        if (*entry != L'=') variables.push_back(utf8_from_wide(entry));  // such entries remember the folders of drives
    FreeEnvironmentStringsW(all);
    return variables;
}

}  // namespace kiv_test
