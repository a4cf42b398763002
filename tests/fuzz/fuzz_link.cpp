#include "disc/module1.h"
#include "fuzz/fuzz.h"
#include "link/ring.h"
#include "link/star_command.h"
#include "link/track_link.h"
#include "link/transfer.h"
#include "support/link_test.h"

#include <utility>

// Any bytes come down the line at any pace. The first byte of the input chooses what the host does;
// then come lumps: how long the lump is, the lump, how long the line is silent behind it; 255: it
// comes so often before that the ring overflows.

namespace quoravel {

namespace {

constexpr int kStep = 40;   // milliseconds
constexpr int kFlood = 200; // lumps that are more than the ring takes

/// Cancels once the line has been silent for 12 seconds, so that every conversation ends.
void ScheduleLumps(LinkWorld& world, Input& input) {
    int milliseconds = 0;
    while (!input.IsAtEnd() && milliseconds < 30'000) {
        const std::string_view lump = input.Text(256);
        const unsigned silence = input.Number();
        const int times = silence == 255 ? kFlood : 1;
        for (int i = 0; i < times; ++i)
            world.Arrive(milliseconds, lump);
        milliseconds += kStep * static_cast<int>(silence);
    }
    world.Later(milliseconds + 12000, LinkWorld::Cancel);
}

/// Whoever waits for a byte waits in steps of that length, as a millisecond each takes too long.
void WaitInSteps(LinkWorld& world) {
    world.desktop.on_pump = [&world, pump = std::move(world.desktop.on_pump)] {
        if (world.timer.Enabled())
            world.desktop.now += std::chrono::milliseconds(kStep - 1);
        pump();
    };
}

void Converse(unsigned what, LinkWorld& world) {
    std::string reply;
    TrackBuffer track{};
    std::int32_t crc = 0;
    std::filesystem::path file;
    switch (what % 6) {
    case 0:
        if (Get_Track(track, crc))
            Require(crc >= 0 && crc <= 0xFFFF, "16 bits of CRC");
        return;
    case 1:
        Require(!Get_Response(reply, 1024) || (reply.size() >= 3 && reply.size() <= 1024),
                "an accepted reply has its size");
        return;
    case 2:
        return static_cast<void>(RX_SSD(0, world.desk, file));
    case 3:
        return static_cast<void>(RX_DSD(1, world.desk, file));
    case 4:
        return TX_DISC(0, true, world.desk);
    default:
        static_cast<void>(SendStarCommand("X", [](std::string_view) { return true; }));
    }
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quoravel;
    Input input({data, size});
    const unsigned what = input.Number();
    LinkWorld world;
    world.port.on_write = [](std::string_view) {}; // nobody listens
    world.desktop.files = {world.folder.File("disc.ssd", std::string(3000, 'x'))};
    Module1::RXHead = Module1::RXTail = Module1::kRingSize - 50; // it goes round soon
    WaitInSteps(world);
    if (what % 2 != 0)
        world.Trace();
    ScheduleLumps(world, input);
    Converse(what / 2U, world);
    return 0;
}
