#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

// What all fuzzers need.

namespace quoravel {

using Bytes = std::span<const std::uint8_t>;

/// Each runs one input of the fuzzer of its name; start.cpp makes a program of it.
namespace fuzzers {

void disc(Bytes input);
void catalogue_pages(Bytes input);
void text_hex(Bytes input);
void basic(Bytes input);
void disassembler(Bytes input);
void wordwise(Bytes input);
void listing(Bytes bytes);
void sidecar(Bytes input);
void wire(Bytes bytes);
void link(Bytes bytes);
void xml(Bytes input);
void values(Bytes input);
void preferences(Bytes input);
void place(Bytes bytes);

} // namespace fuzzers

/// Ends the run at the input that breaks a promise.
inline void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

[[nodiscard]] inline std::string_view AsText(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Takes an input apart from its front. Behind its end numbers are 0 and texts empty.
class Input {
  public:
    explicit Input(Bytes bytes) : rest_(AsText(bytes)) {}

    /// A byte, held below `bound`.
    unsigned Number(unsigned bound = 256) {
        const auto byte = Take(1);
        return byte.empty() ? 0 : static_cast<unsigned char>(byte.front()) % bound;
    }

    /// Up to `count` bytes.
    std::string_view Take(std::size_t count) {
        const auto taken = rest_.substr(0, count);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    /// A text whose length, below `bound`, stands before it.
    std::string_view Text(unsigned bound) { return Take(Number(bound)); }

    [[nodiscard]] std::string_view rest() const { return rest_; }

  private:
    std::string_view rest_;
};

} // namespace quoravel
