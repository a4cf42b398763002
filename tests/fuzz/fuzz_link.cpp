#include "disc/module1.h"
#include "link/replies.h"
#include "link/ring.h"
#include "link/serial.h"
#include "link/star_command.h"
#include "link/trace.h"
#include "link/track_link.h"
#include "link/transfer.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

// Any bytes come down the line at any pace. The first byte of the input chooses what the host does;
// then come lumps: how long the line is silent before it, how long the lump is, the lump.

namespace quoravel {

namespace {

using namespace std::chrono_literals;

/// Ends the run at the input that breaks a promise.
void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

class NoisyLine : public Serial, public Timer, public TransferDesk, public TracePane {
  public:
    explicit NoisyLine(std::string_view lumps) : lumps_(lumps) {
        InstallLink(this, this);
        InstallTracePane(this);
        desktop.on_pump = [this] { Pump(); };
        desktop.files = {folder.path() / "disc.ssd"};
        folder.File("disc.ssd", std::string(3000, 'x'));
    }

    ~NoisyLine() override {
        InstallTracePane(nullptr);
        InstallLink(nullptr, nullptr);
    }

    void SetProfile(const SerialProfile&) override {}

    [[nodiscard]] SerialProfile Profile() const override { return kTransferProfile; }

    bool Open() override { return true; }

    void Close() override {}

    void Write(std::string_view) override {}

    [[nodiscard]] std::string ReadAll() override { return std::exchange(waiting_, {}); }

    void Poll() override {}

    void SetPeriod(int milliseconds) override { period_ = std::chrono::milliseconds(milliseconds); }

    void SetEnabled(bool enabled) override {
        enabled_ = enabled;
        due_ = desktop.now + period_;
    }

    [[nodiscard]] bool Enabled() const override { return enabled_; }

    [[nodiscard]] std::shared_ptr<TransferWindow> NewTransferWindow() override {
        return std::make_shared<NoWindow>();
    }

    [[nodiscard]] bool PlaysWave() const override { return false; }

    [[nodiscard]] int TextLength() const override { return length_; }

    void CutOldest(int characters) override { length_ -= characters; }

    void Append(std::string_view utf8) override { length_ += static_cast<int>(utf8.size()); }

    ScriptedHost desktop;

  private:
    class NoWindow : public TransferWindow {
        void SetTitle(std::string_view) override {}

        void SetTtl(std::string_view) override {}

        void SetRX(std::string_view) override {}

        void SetProgress(int percent) override {
            Require(percent >= 0 && percent <= 100, "a share of the whole");
        }

        void Close() override {}
    };

    /// Cancels once the line has been silent for a minute: nothing more will come.
    void Pump() {
        if (desktop.now >= next_lump_ && !lumps_.empty())
            TakeLump();
        if (lumps_.empty() && desktop.now > next_lump_ + 60s)
            Module1::TXAbort = true;
        if (!waiting_.empty())
            Serial1_DataAvailable();
        if (enabled_ && desktop.now >= due_)
            Timer4_Action();
        Require(desktop.now < 3600s, "every conversation ends");
    }

    std::size_t TakeNumber() {
        const auto number = static_cast<unsigned char>(lumps_.empty() ? '\0' : lumps_.front());
        lumps_.remove_prefix(lumps_.empty() ? 0 : 1);
        return number;
    }

    /// The silence before the first lump is none.
    void TakeLump() {
        const std::size_t length = TakeNumber();
        waiting_ += lumps_.substr(0, length);
        lumps_.remove_prefix(std::min(length, lumps_.size()));
        next_lump_ = desktop.now + 40ms * TakeNumber();
    }

    const TempFolder& folder = Folder();

    static const TempFolder& Folder() {
        static const TempFolder the_folder;
        return the_folder;
    }

    std::string_view lumps_;
    std::string waiting_;
    std::chrono::nanoseconds next_lump_{0}, due_{0}, period_{0};
    bool enabled_ = false;
    int length_ = 0;
};

void Converse(unsigned what, NoisyLine& line) {
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
        static_cast<void>(NumberOf(reply));
        return;
    case 2:
        return static_cast<void>(RX_SSD(0, line, file));
    case 3:
        return static_cast<void>(RX_DSD(1, line, file));
    case 4:
        return TX_DISC(0, true, line);
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
    Module1::Init();
    Module1::TXAbort = Module1::gSerialPortOpen = Module1::RXTimeout = false;
    Module1::gTraceWindow = data[0] % 2 != 0;
    NoisyLine line({reinterpret_cast<const char*>(data) + 1, size - 1});
    Converse(data[0] / 2U, line);
    return 0;
}
