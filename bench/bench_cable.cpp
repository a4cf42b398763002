#include "disc/module1.h"
#include "link/ring.h"
#include "link/serial.h"
#include "link/track_link.h"
#include "measure.h"
#include "platform/qt/qt_host.h"
#include "platform/qt/serial_port.h"

#include <QApplication>

#include <array>
#include <atomic>
#include <cstdlib>
#include <ctime>
#include <pty.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

// How fast tracks go over the cable, a pseudo terminal whose other end keeps the time of a line at
// 19200 baud. The program's own thread alone counts for the load.

namespace quoravel {

namespace {

using namespace std::chrono_literals;

constexpr int kTracks = 8;
constexpr double kWireRate = 1920; // bytes a second: 19200 baud, ten bits each

struct Load {
    double seconds;
    double cpu;
};

double CpuOfThread() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

template<class Work>
Load Measure(Work work) {
    const double cpu = CpuOfThread();
    const double seconds = Seconds(work);
    return {seconds, CpuOfThread() - cpu};
}

/// A track that no run shortens.
std::array<std::uint8_t, kTrackLength> RandomTrack() {
    std::array<std::uint8_t, kTrackLength> track{};
    for (std::size_t i = 0; i < track.size(); ++i)
        track[i] = static_cast<std::uint8_t>(i % 2 == 0 ? i * 7 % 25 : 100 + i % 90);
    return track;
}

void BenchSend(int master) {
    std::atomic<int> got{0};
    std::thread reader([&] {
        std::array<char, 4096> buffer{};
        while (got < kTracks * (static_cast<int>(kTrackLength) + 2))
            got += static_cast<int>(::read(master, buffer.data(), buffer.size()));
    });
    const auto track = RandomTrack();
    const Load load = Measure([&] {
        std::int32_t crc = 0;
        for (int i = 0; i < kTracks; ++i)
            Send_Track(track, crc);
    });
    reader.join();
    const double rate = got / load.seconds;
    std::printf("send: %.0f bytes a second, %.1f %% of one a millisecond (at least 90), "
                "%.1f %% of a core (under 10)\n",
                rate, rate / 10, load.cpu / load.seconds * 100);
}

void BenchReceive(int master) {
    const TrackPacket packet(RandomTrack());
    const auto bytes = packet.bytes();
    std::thread writer([&] {
        const auto start = Clock::now();
        std::int64_t sent = 0;
        for (int i = 0; i < kTracks; ++i) {
            for (const std::uint8_t byte : bytes) {
                std::this_thread::sleep_until(start + ++sent * 520833ns);
                static_cast<void>(!::write(master, &byte, 1));
            }
        }
    });
    int good = 0;
    const Load load = Measure([&] {
        TrackBuffer track{};
        std::int32_t crc = 0;
        for (int i = 0; i < kTracks; ++i)
            good += Get_Track(track, crc) ? 1 : 0;
    });
    writer.join();
    const double rate = static_cast<double>(bytes.size()) * kTracks / load.seconds;
    std::printf("receive: %d of %d tracks good, %.0f bytes a second, %.1f %% of the wire "
                "(at least 98), %.1f %% of a core (under 10)\n",
                good, kTracks, rate, rate / kWireRate * 100, load.cpu / load.seconds * 100);
}

} // namespace

} // namespace quoravel

int main(int argc, char** argv) {
    using namespace quoravel;
    const QApplication app(argc, argv);
    const QtHost host;
    int master = -1;
    int line = -1;
    termios raw{};
    ::cfmakeraw(&raw);
    Check(::openpty(&master, &line, nullptr, &raw, nullptr) == 0, "there is a terminal");
    QtSerial serial([] { Serial1_DataAvailable(); }, [](const QString&) {});
    QtTimer timer([] { Timer4_Action(); });
    InstallLink(&serial, &timer);
    serial.Bind(QString::fromLocal8Bit(::ptsname(master)));
    serial.SetProfile(kTransferProfile);
    BenchSend(master);
    BenchReceive(master);
    InstallLink(nullptr, nullptr);
    return 0;
}
