#include "link/ring.h"
#include "link/star_command.h"
#include "link/track_link.h"
#include "link/transfer.h"
#include "support/link_test.h"

#include <cstdio>
#include <cstdlib>

// Any bytes come down the line at any pace. The first byte of the input chooses what the host does;
// then come lumps: how long the lump is, the lump, how long the line is silent behind it.

namespace quoravel {

namespace {

/// Ends the run at the input that breaks a promise.
void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

/// Takes a byte off the input; 0 behind its end.
int TakeNumber(std::string_view& input) {
    const int number = input.empty() ? 0 : static_cast<unsigned char>(input.front());
    input.remove_prefix(input.empty() ? 0 : 1);
    return number;
}

/// Cancels once the line has been silent for 12 seconds, so that every conversation ends.
void ScheduleLumps(LinkWorld& world, std::string_view input) {
    int milliseconds = 0;
    while (!input.empty() && milliseconds < 30'000) {
        const auto length = static_cast<std::size_t>(TakeNumber(input));
        const std::string_view lump = input.substr(0, length);
        world.Arrive(milliseconds, lump);
        input.remove_prefix(lump.size());
        milliseconds += 40 * TakeNumber(input);
    }
    world.Later(milliseconds + 12000, LinkWorld::Cancel);
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
    if (size == 0)
        return 0;
    LinkWorld world;
    world.port.on_write = [](std::string_view) {}; // nobody listens
    world.desktop.files = {world.folder.File("disc.ssd", std::string(3000, 'x'))};
    if (data[0] % 2 != 0)
        world.Trace();
    ScheduleLumps(world, {reinterpret_cast<const char*>(data) + 1, size - 1});
    Converse(data[0] / 2U, world);
    return 0;
}
