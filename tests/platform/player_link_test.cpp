#include "platform/player_link.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <poll.h>
#include <random>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "support/byte_builder.h"
#include "support/temp_folder.h"

namespace clipfix::platform {
namespace {

using test::ByteBuilder;
using test::TempFolder;

ByteVector AsVector(const PlayerRecordBytes& record) {
    return {record.begin(), record.end()};
}

// A record whose path field holds `field`, filled up with zeros.
ByteVector RecordOfField(ByteBuilder field, std::uint8_t length = 1) {
    field.Zeros(520 - field.Size());
    return field.Zeros(8).Zeros(4).U8(length).Zeros(3).Take();
}

TEST(PlayerRecord, HoldsThePathAsWideTextAndItsLength) {
    const ByteVector expected = ByteBuilder()
                                    .Bytes({'/', 0, 'a', 0, '.', 0, 'm', 0, 'o', 0, 'v', 0})
                                    .Zeros(508)
                                    .Zeros(8)
                                    .Zeros(4)
                                    .U8(6)
                                    .Zeros(3)
                                    .Take();
    ASSERT_EQ(expected.size(), 536U);
    EXPECT_EQ(AsVector(BuildPlayerRecord("/a.mov")), expected);
}

TEST(PlayerRecord, CountsLettersBeyondAsciiInWideUnits) {
    // "ü" is U+00FC, "語" is U+8A9E, the film camera U+1F3A5 is the pair D83C DFA5.
    const ByteVector expected = RecordOfField(
        ByteBuilder().Bytes({'/', 0, 0xFC, 0, 0x9E, 0x8A, 0x3C, 0xD8, 0xA5, 0xDF}), 5);
    EXPECT_EQ(AsVector(BuildPlayerRecord("/\xC3\xBC\xE8\xAA\x9E\xF0\x9F\x8E\xA5")), expected);
}

TEST(PlayerRecord, HoldsOnlyTheLowByteOfTheLength) {
    const std::string path = "/" + std::string(257, 'x');
    const PlayerRecordBytes record = BuildPlayerRecord(path);
    EXPECT_EQ(record[532], 258 - 256);
    EXPECT_EQ(ParsePlayerRecord(record)->path, path);
}

TEST(PlayerRecord, TakesAPathOf259UnitsWholeAndCutsALongerOne) {
    const std::string whole = "/" + std::string(258, 'x');
    EXPECT_EQ(ParsePlayerRecord(BuildPlayerRecord(whole))->path, whole);
    const PlayerRecordBytes record = BuildPlayerRecord(whole + "y");
    EXPECT_EQ(record[518], 0);
    EXPECT_EQ(record[519], 0);
    EXPECT_EQ(record[532], 260 - 256);
    EXPECT_EQ(ParsePlayerRecord(record)->path, whole);
}

TEST(PlayerRecord, CutsNoPairInTwo) {
    const std::string path = std::string(258, 'x') + "\xF0\x9F\x8E\xA5";
    const PlayerRecordBytes record = BuildPlayerRecord(path);
    EXPECT_EQ(ParsePlayerRecord(record)->path, std::string(258, 'x'));
    EXPECT_EQ(record[516], 0);
    EXPECT_EQ(record[532], 260 - 256);
    EXPECT_TRUE(ParsePlayerRecord(record)->StandsFor(path));
}

TEST(PlayerRecord, BringsBackBytesThatAreNotUtf8) {
    const std::string path = "/caf\xE9/\xF0\x9F/\xED\xA0\x80/\xC0\xAF";
    const PlayerRecordBytes record = BuildPlayerRecord(path);
    EXPECT_EQ(ReadLittle16(record, 8), 0xDCE9);
    EXPECT_EQ(ParsePlayerRecord(record)->path, path);
}

TEST(PlayerRecord, StandsForThePathThatItWasMadeOf) {
    const std::string tooLong = "/" + std::string(300, 'x');
    for (const std::string& path : {std::string("/a.mov"), tooLong}) {
        const auto record = ParsePlayerRecord(BuildPlayerRecord(path));
        ASSERT_TRUE(record);
        EXPECT_TRUE(record->StandsFor(path));
        EXPECT_FALSE(record->StandsFor(path + "x"));
        EXPECT_FALSE(record->StandsFor("/b.mov"));
        EXPECT_FALSE(record->StandsFor(""));
    }
    // A long path that only begins like a short one is another file.
    EXPECT_FALSE(
        ParsePlayerRecord(BuildPlayerRecord("/x"))->StandsFor("/x" + std::string(256, 'y')));
}

TEST(PlayerRecord, OfAnotherSizeIsRefused) {
    ByteVector record = AsVector(BuildPlayerRecord("/a.mov"));
    EXPECT_TRUE(ParsePlayerRecord(record));
    record.push_back(0);
    EXPECT_FALSE(ParsePlayerRecord(record));
    record.resize(535);
    EXPECT_FALSE(ParsePlayerRecord(record));
    EXPECT_FALSE(ParsePlayerRecord({}));
}

TEST(PlayerRecord, WithoutAClosingZeroIsRefused) {
    EXPECT_FALSE(ParsePlayerRecord(RecordOfField(ByteBuilder().Fill(520, 'x'))));
    EXPECT_TRUE(ParsePlayerRecord(RecordOfField(ByteBuilder().Fill(518, 'x'))));
}

TEST(PlayerRecord, WithoutAPathIsRefused) {
    EXPECT_FALSE(ParsePlayerRecord(RecordOfField(ByteBuilder(), 0)));
}

TEST(PlayerRecord, WithHalfOfAPairIsRefused) {
    EXPECT_FALSE(ParsePlayerRecord(RecordOfField(ByteBuilder().Little16(0xD83C).Little16('x'))));
    EXPECT_FALSE(ParsePlayerRecord(RecordOfField(ByteBuilder().Little16(0xDFA5).Little16('x'))));
    EXPECT_FALSE(ParsePlayerRecord(RecordOfField(ByteBuilder().Little16(0xDC41))));
    EXPECT_TRUE(ParsePlayerRecord(RecordOfField(ByteBuilder().Little16(0xD83C).Little16(0xDFA5))));
    // The high half in the field's last place, with the low half behind the field.
    ByteVector bytes(536, 0xDF);
    std::fill(bytes.begin(), bytes.begin() + 518, std::uint8_t{'x'});
    StoreLittle16(bytes, 518, 0xD83C);
    EXPECT_FALSE(ParsePlayerRecord(bytes));
}

TEST(PlayerRecord, IgnoresWhatIsReservedAndKeepsTheValue) {
    ByteVector bytes = AsVector(BuildPlayerRecord("/a.mov"));
    StoreLittle(bytes, 520, 0x0102030405060708, 8);
    std::fill(bytes.begin() + 528, bytes.begin() + 532, std::uint8_t{0xAA});
    std::fill(bytes.begin() + 533, bytes.end(), std::uint8_t{0xAA});
    const auto record = ParsePlayerRecord(bytes);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->path, "/a.mov");
    EXPECT_EQ(record->value, 0x0102030405060708U);
    EXPECT_EQ(record->length, 6);
}

TEST(PlayerRecord, OfRandomBytesIsReadWithoutHarmAndComesBackTheSame) {
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        ByteVector bytes(round % 3 == 0 ? random() % 600 : 536);
        const auto kind = random() % 3;
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(kind == 0 ? random() : random() % 3);
        }
        if (kind == 2) {
            for (std::size_t at = 1; at < bytes.size(); at += 2) {
                bytes[at] = static_cast<std::uint8_t>(random() % 2 == 0 ? 0xD8 + random() % 8 : 0);
            }
        }
        const auto record = ParsePlayerRecord(bytes);
        if (record) {
            ASSERT_EQ(bytes.size(), 536U);
            const auto again = ParsePlayerRecord(BuildPlayerRecord(record->path));
            ASSERT_TRUE(again);
            EXPECT_EQ(again->path, record->path);
        }
    }
}

TEST(PlayerRecord, BringsBackRandomPaths) {
    std::mt19937 random(11);
    for (int round = 0; round < 20000; ++round) {
        std::string path(1 + random() % 60, 'x');
        for (char& letter : path) {
            letter = static_cast<char>(1 + random() % 255);
        }
        const auto record = ParsePlayerRecord(BuildPlayerRecord(path));
        ASSERT_TRUE(record);
        EXPECT_EQ(record->path, path);
    }
}

// A player's ear that notes each message, on a thread of its own.
class Listener {
  public:
    explicit Listener(const std::filesystem::path& socket)
        : ear_(std::move(PlayerEar::Open(socket)).Value()), thread_([this] { Run(); }) {}
    ~Listener() {
        stop_ = true;
        thread_.join();
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    std::vector<ByteVector> TakeMessages() {
        stop_ = true;
        thread_.join();
        thread_ = std::thread([] {});
        return messages_;
    }

  private:
    void Run() {
        while (!stop_) {
            pollfd knock{ear_.Handle(), POLLIN, 0};
            if (::poll(&knock, 1, 10) <= 0) {
                continue;
            }
            while (const auto connection = ear_.Accept()) {
                Hear(*connection);
            }
        }
    }
    void Hear(int connection) {
        ByteVector message;
        for (;;) {
            pollfd more{connection, POLLIN, 0};
            (void)::poll(&more, 1, 1000);
            std::array<std::uint8_t, 100> piece{};
            const ssize_t got = ::read(connection, piece.data(), piece.size());
            if (got <= 0) {
                break;
            }
            AppendBytes(message, ByteView(piece).first(static_cast<std::size_t>(got)));
        }
        messages_.push_back(message);
        ::close(connection);
    }

    PlayerEar ear_;
    std::vector<ByteVector> messages_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

TEST(PlayerLink, FindsNoPlayerWhereNoneListens) {
    const TempFolder folder;
    const auto socket = folder / "kc-mplayer";
    EXPECT_FALSE(IsPlayerRunning(socket));
    EXPECT_FALSE(SendFileToPlayer(socket, "/a.mov"));
    EXPECT_TRUE(ClosePlayer(socket));
}

TEST(PlayerLink, CarriesTheRecordAsItIs) {
    const TempFolder folder;
    const auto socket = folder / "kc-mplayer";
    Listener player(socket);
    EXPECT_TRUE(IsPlayerRunning(socket));
    EXPECT_TRUE(SendFileToPlayer(socket, "/a.mov"));
    EXPECT_TRUE(ClosePlayer(socket));
    const std::vector<ByteVector> messages = player.TakeMessages();
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_TRUE(messages[0].empty());
    EXPECT_EQ(messages[1], AsVector(BuildPlayerRecord("/a.mov")));
    EXPECT_EQ(messages[2], ByteBuilder().Text("close").Take());
}

TEST(PlayerLink, DoesNotWaitForEverForAPlayerThatHangs) {
    const TempFolder folder;
    const auto socket = folder / "kc-mplayer";
    const auto ear = PlayerEar::Open(socket);
    ASSERT_TRUE(ear);
    EXPECT_TRUE(IsPlayerRunning(socket));
    EXPECT_FALSE(ClosePlayer(socket));
    EXPECT_FALSE(SendFileToPlayer(socket, "/a.mov"));
}

TEST(PlayerEar, GoesWithItsOwner) {
    const TempFolder folder;
    const auto socket = folder / "kc-mplayer";
    {
        auto ear = PlayerEar::Open(socket);
        ASSERT_TRUE(ear);
        const PlayerEar moved = std::move(ear).Value();
        EXPECT_TRUE(IsPlayerRunning(socket));
    }
    EXPECT_FALSE(std::filesystem::exists(socket));
}

TEST(PlayerEar, TakesOverFromAPlayerThatWasKilledOrIsStillThere) {
    const TempFolder folder;
    const auto socket = folder / "kc-mplayer";
    auto first = PlayerEar::Open(socket);
    ASSERT_TRUE(first);
    auto second = PlayerEar::Open(socket);
    ASSERT_TRUE(second);
    // The first one goes later than the second came: it may not take the socket along.
    { const PlayerEar goes = std::move(first).Value(); }
    EXPECT_TRUE(IsPlayerRunning(socket));
    EXPECT_EQ(std::filesystem::status(socket).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(PlayerEar, TouchesNothingThatIsNoSocket) {
    const TempFolder folder;
    const auto place = folder / "kc-mplayer";
    test::WriteFile(place, ByteBuilder().Text("mine").Take());
    EXPECT_FALSE(PlayerEar::Open(place));
    EXPECT_EQ(test::ReadFile(place), ByteBuilder().Text("mine").Take());
}

TEST(PlayerEar, IsRefusedAPathThatNoSocketCanHave) {
    const TempFolder folder;
    EXPECT_FALSE(PlayerEar::Open({}));
    EXPECT_FALSE(PlayerEar::Open(folder / std::string(150, 'x')));
    EXPECT_FALSE(PlayerEar::Open(folder / "missing/kc-mplayer"));
    EXPECT_TRUE(PlayerEar::Open(folder / "kc-mplayer"));
}

TEST(PlayerLink, IsNamedLikeThePlayersWindow) {
    EXPECT_EQ(PlayerSocketPath().filename(), "kc-mplayer");
}

}  // namespace
}  // namespace clipfix::platform
