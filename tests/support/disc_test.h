#pragma once

#include "disc/module1.h"
#include "support/scripted_host.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace quoravel {

/// A test with a desktop, a status line and the shared state of the disc as they are when the
/// program starts, before its first blank disc.
class DiscTest : public testing::Test, protected StatusLine {
  protected:
    DiscTest();
    ~DiscTest() override;

    void SetMsgText(int drive, std::string_view text) override {
        status_lines[static_cast<std::size_t>(drive)] = text;
    }

    ScriptedHost desktop;
    std::array<std::string, kDrives> status_lines;
};

/// Free regions of a drive as the tables hold them: first sector and length of each.
[[nodiscard]] std::vector<std::pair<int, int>> FreeRegions(int drive);

/// `count` bytes of the block from `offset` on.
[[nodiscard]] std::vector<std::uint8_t> BlockBytes(int offset = 0, int count = kDiscBytes);

/// Bytes of the block as text.
[[nodiscard]] std::string BlockText(int offset, int count);

} // namespace quoravel
