#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

/// An emulated BBC Micro in a process of its own, held in step with a test's clock. The head of
/// machine.mjs tells what it can be asked. Whatever it refuses throws std::runtime_error.
class EmulatedMicro {
  public:
    /// Starts machine.mjs with these options; the micro stands at its prompt, or runs Tavrilo.
    explicit EmulatedMicro(std::vector<std::string> options);
    ~EmulatedMicro();
    EmulatedMicro(const EmulatedMicro&) = delete;
    EmulatedMicro& operator=(const EmulatedMicro&) = delete;

    /// Gives a command and returns its answer as JSON; empty if there is none.
    std::string Ask(const std::string& command);

    /// Bytes for the micro, of which the first goes out with the next RunTo.
    void Send(std::string_view bytes) { pending_ += bytes; }

    /// Lets the micro come up to `now`, to the millisecond, and gives what it has sent meanwhile.
    [[nodiscard]] std::string RunTo(std::chrono::nanoseconds now);

  private:
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    int process_ = -1;
    std::unique_ptr<std::FILE, FileCloser> machine_; ///< both ways
    std::string pending_;
    std::chrono::milliseconds reached_{0};
};

} // namespace quoravel
