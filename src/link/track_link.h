#pragma once

#include "link/track_codec.h"

// Tracks on the cable, with the trace. Both pump events at every byte.

namespace quoravel {

/// Receives a packet into `track` and takes it into `crc`, which the caller has set to 0. True for
/// a packet that expands to a whole track. Does not look at TXAbort.
[[nodiscard]] bool Get_Track(TrackBuffer& track, std::int32_t& crc);

/// Sends a packet, a byte every millisecond, until TXAbort is set. `crc` is that of what was sent.
void Send_Track(TrackBytes track, std::int32_t& crc);

} // namespace quoravel
