// What goes wrong on the line and in the drives: Tavrilo is back and waiting each time, without
// a key pressed, or says on its screen what it needs; and no wrong bytes pass for right ones.

#include "beeb_test.h"
#include "disc/module1.h"
#include "link/replies.h"
#include "link/transfer.h"

#include <algorithm>
#include <array>

namespace quoravel {

namespace {

using testing::Values;

class OneMicro : public Running {
  protected:
    OneMicro() {
        Insert(0, folder.File("source.ssd", image));
        Insert(1, "formatted40");
    }

    const Bytes image = MixedImage(40);
};

/// What depends on the controller of the drives.
class BothControllers : public OneMicro {};

INSTANTIATE_TEST_SUITE_P(Micros, OneMicro, Values("B-DFS1.2"));
INSTANTIATE_TEST_SUITE_P(Micros, BothControllers, Values("B-DFS1.2", "B1770"));

TEST_P(OneMicro, HalfACommandIsForgottenAndARequestAskedTwiceIsAnsweredOnce) {
    const std::string track = Say("G0\r0\r", 3000);
    EXPECT_TRUE(track.ends_with("\n\r"));
    for (const char* half :
         {"G",       "G0",       "G0\r",     "G0\r1",     "g",        "g1\r",      "*",
          "*CA",     "N",        "\x1b",     "\x1b\x02",  "-----BBC", "Gx\r",      "G0\rx\r",
          "G4\r0\r", "G00\r0\r", "G0\r-1\r", "G0\r1E1\r", "G0\r80\r", "g0\r199\r", "Q"}) {
        EXPECT_EQ(Say(half, 2000), "") << half;
        EXPECT_EQ(Say("G0\r0\r", 3000), track) << half;
    }
    EXPECT_THAT(Screen(), HasSubstr("There is no 80"));
    EXPECT_THAT(Screen(), HasSubstr("There is no 199"));
    EXPECT_THAT(Screen(), HasSubstr("The host has closed"));
    EXPECT_EQ(Say("G0\r0\rG0\r0\r", 3000), track);
}

TEST_P(OneMicro, NoiseOnTheLineDoesNoHarm) {
    const Bytes noise = Noise(1000);
    for (auto at = noise.begin(); at != noise.end(); at += 100) {
        static_cast<void>(Say(std::string(at, at + 100), 4500));
        ExpectWorks(image);
    }
}

TEST_P(OneMicro, ARequestThatTheLineHasChangedIsNotBelievedAtOnce) {
    for (const char* track : {"0", "1"})
        EXPECT_NE(Say(std::string("G0\r") + track + '\r', 3000), "");
    EXPECT_EQ(Say("G0\r12\r", 3000), ""); // meant 2, and the line put a digit before it
    EXPECT_NE(Say("G0\r2\r", 3000), "");
    EXPECT_EQ(Say("g1\r30\r", 3000), "");
    EXPECT_EQ(Say("g1\r30\r", 3000), std::string(kSuccessText) + '\r'); // asked twice, it is meant
    EXPECT_EQ(Say(kAbortMessage, 3000), "");
    ExpectWorks(image);
}

std::string Lost(char /*byte*/) {
    return {};
}

std::string Twice(char byte) {
    return {byte, byte};
}

template<int number>
std::string Plus(char byte) {
    return {static_cast<char>(byte + number)};
}

template<int number>
std::string Is(char /*byte*/) {
    return {static_cast<char>(number)};
}

struct PacketFault {
    const char* name;
    int first;
    int last;
    std::string (*change)(char byte);
};

/// One for each track, counted from the first byte of its packet.
constexpr auto kPacketFaults =
    std::to_array<PacketFault>({{"a changed byte", 40, 40, Plus<4>},
                                {"a lost byte", 300, 300, Lost},
                                {"a byte too many", 300, 300, Twice},
                                {"a length too small", 0, 0, Plus<-20>},
                                {"a length too large", 1, 1, Plus<8>},
                                {"an impossible length", 1, 1, Is<200>},
                                {"no length", 0, 1, Is<0>},
                                {"an ESC from nowhere", 30, 30, Is<27>},
                                {"nothing from there on", 300, 9999, Lost}});

TEST_P(BothControllers, APacketWithAFaultIsSentAgainAndLandsWhole) {
    const Bytes noise = Image(Noise(kPacketFaults.size() * kTrack), 40);
    to_micro = [](const OnCable& where, char byte) {
        const PacketFault& fault = kPacketFaults[where.track];
        const bool hit = where.time == 1 && where.at >= fault.first && where.at <= fault.last;
        return hit ? fault.change(byte) : NoFault(where, byte);
    };
    SendSide(1, noise);
    EXPECT_EQ(Dump(1, "written.ssd", kPacketFaults.size()), noise);
    for (std::size_t track = 0; track < kPacketFaults.size(); ++track)
        EXPECT_EQ(said[TrackMessage('g', 1, static_cast<int>(track))], 2)
            << kPacketFaults[track].name;
    ExpectClean();
}

TEST_P(OneMicro, ATrackThatComesToTheHostWithAFaultIsAskedForAgain) {
    constexpr std::array kPlaces{0, 1, 2, 100, 300};
    constexpr std::array kChanges{&Plus<16>, &Lost, &Twice};
    constexpr std::size_t kFaults = kPlaces.size() * kChanges.size();
    Bytes noise = Image(Noise(kFaults * kTrack), 40);
    noise.resize(image.size());
    Insert(0, folder.File("noise.ssd", noise));
    to_host = [&](const OnCable& where, char byte) {
        const bool hit = where.command == 'G' && where.track < kFaults && where.time == 1 &&
                         where.at == kPlaces[where.track % 5];
        return hit ? kChanges[where.track / 5](byte) : NoFault(where, byte);
    };
    EXPECT_EQ(ReceiveSide(0), noise);
    for (std::size_t track = 0; track < kFaults; ++track)
        EXPECT_EQ(said[TrackMessage('G', 0, static_cast<int>(track))], 2) << track;
}

TEST_P(BothControllers, APacketMayBeCancelledAnywhere) {
    Bytes escapes(kTrack);
    for (std::size_t i = 0; i < kTrack; ++i)
        escapes[i] = static_cast<std::uint8_t>(i % 20 < 8 || i % 20 % 2 == 1 ? 27 : i);
    for (const int at : {0, 1, 2, 3, 4, 5, 6, 9, 700}) {
        to_micro = [at](const OnCable& where, char byte) {
            if (where.command == 'g' && where.at == at)
                Cancel();
            return NoFault(where, byte);
        };
        SendSide(1, escapes);
        to_micro = NoFault;
        escapes[17] = static_cast<std::uint8_t>(at);
        SendSide(1, escapes);
        EXPECT_EQ(Dump(1, "written.ssd", 1), escapes) << at;
    }
    EXPECT_THAT(Screen(), HasSubstr("Given up by the host"));
    ExpectClean();
}

TEST_P(BothControllers, OfADamagedTrackComesWhatCanBeRead) {
    Bytes wanted = Image(Noise(40 * kTrack), 40);
    Insert(0, folder.File("damaged.ssd", wanted));
    for (const char* place : {"2 3", "2 9", "4"})
        beeb.Ask(std::string("damage 0 0 ") + place);
    std::fill_n(wanted.begin() + 2 * kTrack + 3 * 256, 256, 0);
    std::fill_n(wanted.begin() + 2 * kTrack + 9 * 256, 256, 0);
    std::fill_n(wanted.begin() + 4 * kTrack, kTrack, 0);
    EXPECT_EQ(ReceiveSide(0), wanted);
    EXPECT_THAT(Screen(), HasSubstr("\"Drive 0 track 2, zeros for: 3 9\""));
    EXPECT_THAT(Screen(), HasSubstr("\"Drive 0 track 4, zeros for: all\""));
}

TEST_P(BothControllers, TheUnformattedHalfOfTwoSidesCostsNoMinutes) {
    Bytes wanted = MixedImage(80);
    Insert(0, folder.File("half.dsd", wanted));
    std::filesystem::path file;
    desktop.files = {folder.path() / "got.dsd"};
    ASSERT_TRUE(RX_DSD(0, desk, file));
    wanted.resize(160 * kTrack);
    EXPECT_EQ(BytesOf(file), wanted);
    EXPECT_LT(Milliseconds(), 200000);
}

TEST_P(BothControllers, WithoutAFloppyItSaysSoAndGoesOnWhenThereIsOne) {
    Insert(0, "none");
    EXPECT_FALSE(Get(0, 0));
    EXPECT_THAT(Screen(), HasSubstr("drive 0 track 0 (disc in it?)"));
    Insert(0, folder.path() / "source.ssd");
    static_cast<void>(Say("", 8000));
    ExpectWorks(image);
}

TEST_P(BothControllers, AWriteProtectedFloppyIsToldAndWrittenWhenItNoLongerIs) {
    beeb.Ask("protect 1 yes");
    Later(6000, [&] {
        EXPECT_THAT(Screen(), HasSubstr("Drive 1 is write-protected"));
        beeb.Ask("protect 1 no");
    });
    SendSide(1, Tracks(image, 0, 2));
    EXPECT_EQ(Dump(1, "written.ssd", 2), Tracks(image, 0, 2));
    EXPECT_GT(said["g1\r0\r"], 1);
}

TEST_P(OneMicro, ADiscWithoutACatalogueHasNoSize) {
    Insert(0, "unformatted");
    std::filesystem::path file;
    desktop.files = {folder.path() / "got.ssd"};
    EXPECT_FALSE(RX_SSD(0, desk, file));
    EXPECT_EQ(desktop.TakeBoxTexts(), std::vector<std::string>{"Unknown Disc Size"});
}

TEST_P(OneMicro, TracksFullOfEscComeAcrossAsLongAsTheyFitAndAreNamedWhenNot) {
    Bytes escapes = Image(Noise(40 * kTrack), 40);
    for (std::size_t i = 0; i < kTrack; ++i) {
        escapes[kTrack + i] = 27;
        escapes[2 * kTrack + i] =
            static_cast<std::uint8_t>(i % 11 == 5 || i % 11 == 6 ? 27 : i % 7);
    }
    Insert(0, folder.File("escapes.ssd", escapes));
    for (const int track : {0, 1})
        EXPECT_EQ(Get(0, track), Tracks(escapes, static_cast<std::size_t>(track), 1));
    EXPECT_FALSE(Get(0, 2));
    EXPECT_THAT(Screen(), HasSubstr("Track 2 has too many bytes 27 to send"));
}

} // namespace

} // namespace quoravel
