#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "atoms/kind_tags.h"
#include "atoms/memory_sink.h"
#include "atoms/moov.h"
#include "atoms/reference_movie.h"
#include "support/temp_folder.h"

namespace clipfix {
namespace {

using ::testing::ElementsAre;

std::unique_ptr<CMoov> SmallMovie() {
    MovieRead read;
    CMoov reference(test::Moov({test::VideoTrak(), test::AacTrak()}), read);
    CAtomCreationRequest video;
    video.requestType = kVideoRequest;
    CAtomCreationRequest audio;
    audio.requestType = kAudioRequest;
    return reference.CreateMoov(video, audio);
}

TEST(WriteMoov, WritesSizeTypeHeaderAndTracksInThisOrder) {
    const auto moov = SmallMovie();
    test::MemorySink sink;
    EXPECT_TRUE(moov->WriteMoov(sink));
    const auto piece = [](std::size_t size) { return "append " + std::to_string(size); };
    EXPECT_THAT(sink.Steps(), ElementsAre(piece(4), piece(4), piece(108), "flush",
                                          piece(moov->tracks[0]->data.size()),
                                          piece(moov->tracks[1]->data.size()), "flush"));
    EXPECT_EQ(ReadBig32(sink.Bytes(), 0), sink.Bytes().size());
}

TEST(WriteMoov, MakesTheMovieHeaderAnew) {
    const auto moov = SmallMovie();
    moov->mvhd->duration = 0x01020304;
    test::MemorySink sink;
    EXPECT_TRUE(moov->WriteMoov(sink));
    EXPECT_EQ(ReadBig32(sink.Bytes(), 8 + 24), 0x01020304U);
}

TEST(WriteMoov, PassesOverAPieceThatCannotBeWrittenAndTellsTheFirstFailure) {
    const auto moov = SmallMovie();
    test::MemorySink whole;
    ASSERT_TRUE(moov->WriteMoov(whole));
    test::MemorySink sink;
    sink.FailAppend(2);
    sink.FailAppend(3);
    const auto outcome = moov->WriteMoov(sink);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.Failure().kind, ErrorKind::NoSpace);
    EXPECT_EQ(outcome.Failure().text, "append 2");
    EXPECT_EQ(sink.Steps().size(), whole.Steps().size());
    EXPECT_EQ(sink.Bytes().size(), 8 + moov->tracks[1]->data.size());
}

TEST(FileMoovSink, AppendsBehindWhatTheFileHolds) {
    const test::TempFolder folder;
    auto file = platform::File::Create(folder.Path() / "movie", platform::File::Existing::Refuse);
    ASSERT_TRUE(file);
    const ByteVector media(1016, 0x5A);
    ASSERT_TRUE(file.Value().WriteAt(0, media));
    const auto moov = SmallMovie();
    FileMoovSink sink(file.Value());
    ASSERT_TRUE(moov->WriteMoov(sink));

    test::MemorySink memory;
    ASSERT_TRUE(moov->WriteMoov(memory));
    ByteVector read(memory.Bytes().size());
    ASSERT_EQ(file.Value().CurrentSize().Value(), 1016 + read.size());
    ASSERT_EQ(file.Value().ReadAt(1016, read).Value(), read.size());
    EXPECT_EQ(read, memory.Bytes());
}

}  // namespace
}  // namespace clipfix
