#include "disc/module1.h"
#include "documents.h"
#include "link/track_codec.h"
#include "measure.h"
#include "view/basic.h"
#include "view/disassembler.h"
#include "view/hex_view.h"
#include "view/text_view.h"
#include "view/wordwise/formatter.h"

#include <array>
#include <functional>
#include <random>
#include <string_view>

// What renderers, the formatter and the codec of tracks get through in a second of processor time.
// A renderer shows the largest file of a disc, into a sink that only counts; its bytes are those of
// the text that comes out, the formatter's those of the document, the codec's those of the packet,
// its CRC included. Most of a disassembly's time goes into its yields, each of which looks at the
// clock.

namespace quoravel {

namespace {

/// Prints the median; `work` gives how many bytes it went through.
void Measure(const char* name, int at_least, const std::function<std::int64_t()>& work) {
    constexpr double kTurn = 0.2; // seconds
    constexpr std::int64_t kLeast =
        1'000'000; // bytes, as a call may take less than the clock's step
    std::vector<double> speeds(9);
    for (double& speed : speeds) {
        double seconds = 0;
        std::int64_t bytes = 0;
        while (seconds < kTurn)
            seconds += CpuSeconds([&] {
                for (const auto end = bytes + kLeast; bytes < end;)
                    bytes += work();
            });
        speed = static_cast<double>(bytes) / seconds / 1e6;
    }
    std::printf("| %s | %.0f MB/s | %d |\n", name, Median(speeds), at_least);
}

class CountingSink : public ViewSink {
  public:
    std::int64_t bytes = 0;

    void ShowData(std::string_view text) override { bytes += std::ssize(text); }
};

/// Fills the drive with bytes that `byte` gives one by one.
template<class Source>
void FillWith(Source byte) {
    for (int at = 0; at < kDriveBytes; ++at)
        Module1::DiscImg.SetByte(at, static_cast<std::uint8_t>(byte()));
}

void FillRepeating(std::string_view pattern) {
    FillWith([=, at = 0U]() mutable { return pattern[at++ % pattern.size()]; });
}

/// 10 IF i%*i%>size% THEN 120 and 20 PRINT "wrong", all over the drive.
void FillWithBasic() {
    constexpr auto lines = std::to_array<std::uint8_t>(
        {0,   10,   0,   0xE7, ' ',  'i', '%',  '*',  'i',  '%',  '>', 's', 'i',
         'z', 'e',  '%', ' ',  0x8C, ' ', 0x8D, 0x44, 0x78, 0x40, 13,  0,   20,
         0,   0xF1, ' ', '"',  'w',  'r', 'o',  'n',  'g',  '"',  13});
    Module1::DiscImg.SetByte(0, 13);
    for (int at = 1; at < kDriveBytes; at += static_cast<int>(lines.size()))
        Module1::DiscImg.Write(at, lines);
}

void MeasureView(const char* name, void (*renderer)(int, std::uint32_t, ViewSink&)) {
    Measure(name, 100, [&] {
        CountingSink sink;
        renderer(0, kDriveBytes, sink);
        return sink.bytes;
    });
}

void MeasureViews() {
    FillWithBasic();
    MeasureView("View/Basic", ListBasic);
    FillWith([at = 0]() mutable { return at++ % 64 == 0 ? 13 : 7; });
    MeasureView("View/BasicOfControlCodes", ListBasic); // each byte becomes eight characters
    FillWith(std::minstd_rand());
    MeasureView("View/Disassembly", [](int base, std::uint32_t length, ViewSink& sink) {
        Disassemble(base, length, 0x1900, sink);
    });
    FillRepeating("A line of a text as one meets it, about sixty characters.\r\n");
    MeasureView("View/Hex", ListHex);
    MeasureView("View/TextInLines", ListText);
    FillRepeating("\r");
    MeasureView("View/TextInEmptyLines", ListText);
    FillRepeating("no line end anywhere ");
    MeasureView("View/TextInOneLine", ListText);
    Module1::gOffset = 512;
    Module1::gSize = PutProse();
    Measure("WordWiseProse", 20, [] {
        CountingSink sink;
        WordWise::FormatDocument(sink);
        return std::int64_t{Module1::gSize};
    });
}

using Track = std::array<std::uint8_t, kTrackLength>;

/// Runs of up to so many equal bytes; of 1, random bytes.
Track TrackOfRuns(std::size_t longest) {
    std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same track each time
    Track track{};
    for (std::size_t i = 0; i < track.size();) {
        const auto value = static_cast<std::uint8_t>(random());
        for (std::size_t left = 1 + random() % longest; left > 0 && i < track.size(); --left)
            track[i++] = value;
    }
    return track;
}

void MeasureCodec(std::size_t longest) {
    const Track track = TrackOfRuns(longest);
    const TrackPacket packet(track);
    std::int32_t sent = 0;
    const auto name = [&](const char* what) { return what + std::to_string(longest); };
    Measure(name("EncodeTrack/").c_str(), 100, [&] {
        const TrackPacket again(track);
        sent = 0;
        for (const std::uint8_t byte : again.bytes())
            CalcCrc(sent, byte);
        return std::ssize(again.bytes());
    });
    Measure(name("DecodeTrack/").c_str(), 100, [&] {
        TrackBuffer decoded{};
        std::int32_t crc = 0;
        TrackDecoder decoder(decoded, crc);
        for (const std::uint8_t byte : packet.bytes())
            decoder.Take(byte);
        Check(decoder.state() == TrackState::Good && crc == sent, "a packet is taken");
        return std::ssize(packet.bytes());
    });
}

} // namespace

} // namespace quoravel

int main() {
    const quoravel::RealClockHost desktop;
    quoravel::MeasureViews();
    for (const std::size_t longest : {1, 8, 4000})
        quoravel::MeasureCodec(longest);
    return 0;
}
