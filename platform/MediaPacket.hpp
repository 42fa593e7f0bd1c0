#pragma once

#include <memory>

extern "C" {
#include <libavcodec/packet.h>
}

namespace corvanta {

struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

/// The owner of one of libav's packets.
using PacketPointer = std::unique_ptr<AVPacket, FreePacket>;

} // namespace corvanta
