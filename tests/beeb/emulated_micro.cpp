#include "emulated_micro.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace quoravel {

namespace {

std::string ToHex(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        hex += {kDigits[value >> 4], kDigits[value & 15]};
    }
    return hex;
}

std::string FromHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
    return bytes;
}

/// Becomes node with machine.mjs; does not return.
[[noreturn]] void BecomeMachine(std::vector<std::string> options) {
    options.insert(options.begin(), {NODE, MACHINE});
    std::vector<char*> arguments;
    for (std::string& option : options)
        arguments.push_back(option.data());
    arguments.push_back(nullptr);
    ::execv(NODE, arguments.data());
    ::_exit(127);
}

} // namespace

EmulatedMicro::EmulatedMicro(std::vector<std::string> options) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (::pipe(in.data()) != 0 || ::pipe(out.data()) != 0)
        throw std::runtime_error("no pipe to the emulated micro");
    process_ = ::fork();
    if (process_ == 0) {
        ::dup2(in[0], STDIN_FILENO);
        ::dup2(out[1], STDOUT_FILENO);
        for (const int end : {in[0], in[1], out[0], out[1]})
            ::close(end);
        BecomeMachine(std::move(options));
    }
    ::close(in[0]);
    ::close(out[1]);
    commands_.reset(::fdopen(in[1], "w"));
    answers_.reset(::fdopen(out[0], "r"));
    if (Line() != "ready")
        throw std::runtime_error("the emulated micro does not start");
}

EmulatedMicro::~EmulatedMicro() {
    commands_.reset(); // the end of its input ends it
    ::waitpid(process_, nullptr, 0);
}

std::string EmulatedMicro::Ask(const std::string& command) {
    std::fputs((command + '\n').c_str(), commands_.get());
    std::fflush(commands_.get());
    const std::string answer = Line();
    if (!answer.starts_with("ok"))
        throw std::runtime_error(command + ": " + answer);
    return answer.size() > 3 ? answer.substr(3) : std::string();
}

std::string EmulatedMicro::RunTo(std::chrono::nanoseconds now) {
    const auto until = std::chrono::floor<std::chrono::milliseconds>(now);
    if (until <= reached_)
        return {};
    const auto passed = (until - std::exchange(reached_, until)).count();
    const std::string hex =
        Ask("run " + std::to_string(passed) + ' ' + ToHex(std::exchange(pending_, {})));
    return FromHex(std::string_view(hex).substr(1, hex.size() - 2));
}

void EmulatedMicro::Type(std::string_view text) {
    std::string json;
    for (const char key : text)
        json += key == '\r' ? "\\r" : key == '"' ? "\\\"" : std::string(1, key);
    Ask("type \"" + json + '"');
}

std::string EmulatedMicro::Line() {
    std::string line;
    for (int byte = std::fgetc(answers_.get()); byte != EOF && byte != '\n';
         byte = std::fgetc(answers_.get()))
        line += static_cast<char>(byte);
    return line;
}

} // namespace quoravel
