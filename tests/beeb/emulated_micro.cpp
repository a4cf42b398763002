#include "emulated_micro.h"

#include "platform/text.h"

#include <array>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace quoravel {

namespace {

/// Becomes node with machine.mjs, which speaks through `line`; does not return.
[[noreturn]] void BecomeMachine(int line, std::vector<std::string> options) {
    ::dup2(line, STDIN_FILENO);
    ::dup2(line, STDOUT_FILENO);
    options.insert(options.begin(), {NODE, MACHINE});
    std::vector<char*> arguments;
    for (std::string& option : options)
        arguments.push_back(option.data());
    arguments.push_back(nullptr);
    ::execv(NODE, arguments.data());
    ::_exit(127);
}

std::string ReadLine(std::FILE* file) {
    std::string line;
    for (int byte = std::fgetc(file); byte != EOF && byte != '\n'; byte = std::fgetc(file))
        line += static_cast<char>(byte);
    return line;
}

} // namespace

EmulatedMicro::EmulatedMicro(std::vector<std::string> options) {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throw std::runtime_error("no line to the emulated micro");
    process_ = ::fork();
    if (process_ == 0)
        BecomeMachine(ends[1], std::move(options));
    ::close(ends[1]);
    machine_.reset(::fdopen(ends[0], "r+"));
    if (ReadLine(machine_.get()) != "ready")
        throw std::runtime_error("the emulated micro does not start");
}

EmulatedMicro::~EmulatedMicro() {
    machine_.reset(); // the end of its input ends it
    ::waitpid(process_, nullptr, 0);
}

std::string EmulatedMicro::Ask(const std::string& command) {
    std::fputs((command + '\n').c_str(), machine_.get());
    std::fflush(machine_.get());
    const std::string answer = ReadLine(machine_.get());
    if (!answer.starts_with("ok"))
        throw std::runtime_error(command + ": " + answer);
    return answer.size() > 3 ? answer.substr(3) : std::string();
}

std::string EmulatedMicro::RunTo(std::chrono::nanoseconds now) {
    const auto until = std::chrono::floor<std::chrono::milliseconds>(now);
    if (until <= reached_)
        return {};
    const auto passed = (until - std::exchange(reached_, until)).count();
    std::string command = "run " + std::to_string(passed) + ' ';
    for (const char byte : std::exchange(pending_, {}))
        command += Hex(static_cast<unsigned char>(byte), 2);
    const std::string hex = Ask(command); // in quotes
    std::string bytes;
    for (std::size_t i = 1; i + 2 < hex.size(); i += 2)
        bytes += static_cast<char>(HexValue(hex.substr(i, 2)));
    return bytes;
}

} // namespace quoravel
