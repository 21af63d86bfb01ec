#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>

#include <csignal>
#include <string>
#include <vector>

#include "platform/LocalSocket/Socket.h"
#include "tests/adversary/AllocationMeter.h"
#include "tests/unit/LocalSocket/SocketPair.h"

namespace local_socket {
namespace {

std::span<const std::uint8_t> Bytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

class FrameWriterTest : public SocketPair {
  protected:
    std::optional<std::string> Received() {
        FrameReader::Status status = FrameReader::Status::open;
        while (!reader_.HasFrame()) {
            const std::size_t before = reader_.Buffered();
            status = reader_.ReadFrom(far_.get());
            if (status != FrameReader::Status::open || reader_.Buffered() == before) {
                return std::nullopt;
            }
        }
        const auto payload = reader_.Next();
        return std::string(payload->begin(), payload->end());
    }

    FrameWriter writer_;
    FrameReader reader_{std::size_t{64} << 20};
};

TEST_F(FrameWriterTest, HeadAndRestTravelAsOnePayload) {
    EXPECT_EQ(writer_.Write(near_.get(), Bytes("head "), Bytes("rest")), FrameWriter::Status::done);
    EXPECT_EQ(writer_.Write(near_.get(), Bytes("alone")), FrameWriter::Status::done);
    EXPECT_EQ(writer_.Write(near_.get(), {}), FrameWriter::Status::done);
    EXPECT_EQ(Received(), "head rest");
    EXPECT_EQ(Received(), "alone");
    EXPECT_EQ(Received(), "");
    EXPECT_EQ(Received(), std::nullopt);
}

TEST_F(FrameWriterTest, QueuesWhatAPeerDoesNotReadAndGoesOnLater) {
    std::vector<std::string> sent;
    FrameWriter::Status status = FrameWriter::Status::done;
    while (status == FrameWriter::Status::done) {
        sent.push_back(std::string(50'000, static_cast<char>('a' + sent.size())));
        status = writer_.Write(near_.get(), Bytes(sent.back()));
    }
    ASSERT_EQ(status, FrameWriter::Status::pending);
    EXPECT_GT(writer_.Queued(), 0U);
    sent.push_back("last");
    EXPECT_EQ(writer_.Write(near_.get(), Bytes("la"), Bytes("st")), FrameWriter::Status::pending);
    for (const auto& expected : sent) {
        auto received = Received();
        while (!received) {
            ASSERT_NE(writer_.Flush(near_.get()), FrameWriter::Status::closed);
            received = Received();
        }
        EXPECT_EQ(received, expected);
    }
    EXPECT_EQ(writer_.Flush(near_.get()), FrameWriter::Status::done);
    EXPECT_EQ(writer_.Queued(), 0U);
}

TEST_F(FrameWriterTest, MemoryOfALongQueueIsFreedWhenAllIsSent) {
    const adversary::AllocationMeter meter;
    EXPECT_EQ(writer_.Write(near_.get(), std::vector<std::uint8_t>(8'000'000)),
              FrameWriter::Status::pending);
    EXPECT_GT(meter.SoFar().live, 4'000'000);
    while (!Received()) {
        ASSERT_NE(writer_.Flush(near_.get()), FrameWriter::Status::closed);
    }
    EXPECT_EQ(writer_.Queued(), 0U);
    reader_ = FrameReader(1);
    EXPECT_LT(meter.SoFar().live, 1'000'000);
}

TEST_F(FrameWriterTest, WhatWasSentIsNotKeptWhileTheQueueIsNeverEmpty) {
    const std::vector<std::uint8_t> payload(50'000);
    while (writer_.Queued() < 1'000'000) {
        ASSERT_NE(writer_.Write(near_.get(), payload), FrameWriter::Status::closed);
    }
    const adversary::AllocationMeter meter;
    for (int i = 0; i < 400; ++i) {
        ASSERT_EQ(writer_.Write(near_.get(), payload), FrameWriter::Status::pending);
        ASSERT_TRUE(Received());
        ASSERT_EQ(writer_.Flush(near_.get()), FrameWriter::Status::pending);
    }
    EXPECT_LT(meter.SoFar().live, 5'000'000);
}

TEST_F(FrameWriterTest, FrameLargerThanTheKernelHoldsArrivesWhole) {
    std::string large(8'000'000, '\0');
    for (std::size_t i = 0; i < large.size(); ++i) {
        large[i] = static_cast<char>(i * 2654435761U >> 13);
    }
    FrameWriter::Status status = writer_.Write(near_.get(), Bytes(large));
    auto received = Received();
    while (!received) {
        ASSERT_EQ(status, FrameWriter::Status::pending);
        status = writer_.Flush(near_.get());
        received = Received();
    }
    EXPECT_TRUE(received == large) << "the bytes differ";
}

TEST_F(FrameWriterTest, PeerThatWentAwayIsAnErrorAndNoSignal) {
    std::signal(SIGPIPE, SIG_DFL);
    far_.reset();
    EXPECT_EQ(writer_.Write(near_.get(), Bytes("lost")), FrameWriter::Status::closed);
}

TEST_F(FrameWriterTest, PeerThatGoesAwayWithBytesQueuedIsAnErrorAndNoSignal) {
    std::signal(SIGPIPE, SIG_DFL);
    ASSERT_EQ(writer_.Write(near_.get(), Bytes(std::string(8'000'000, 'x'))),
              FrameWriter::Status::pending);
    far_.reset();
    EXPECT_EQ(writer_.Flush(near_.get()), FrameWriter::Status::closed);
}

TEST_F(FrameWriterTest, FrameOfWhichNothingWasSentCanBeTakenBack) {
    const std::string filling(1000, 'f');
    while (send(near_.get(), filling.data(), filling.size(), MSG_DONTWAIT) > 0) {
    }
    ASSERT_EQ(writer_.Write(near_.get(), Bytes("back")), FrameWriter::Status::pending);
    EXPECT_TRUE(writer_.TakeBack());
    EXPECT_EQ(writer_.Queued(), 0U);
    EXPECT_EQ(writer_.Flush(near_.get()), FrameWriter::Status::done);
}

TEST_F(FrameWriterTest, FrameOfWhichAPartWasSentCannotBeTakenBack) {
    const std::string large(8'000'000, 'x');
    ASSERT_EQ(writer_.Write(near_.get(), Bytes(large)), FrameWriter::Status::pending);
    const std::size_t queued = writer_.Queued();
    ASSERT_LT(queued, large.size());
    EXPECT_FALSE(writer_.TakeBack());
    EXPECT_EQ(writer_.Queued(), queued) << "the peer would never find the next frame";
}

// Only the addresses are reserved: reading the bytes would crash.
TEST_F(FrameWriterTest, PayloadThatTheLengthCannotTellIsRefusedUnseen) {
    constexpr std::size_t kSize = std::size_t{1} << 32;
    void* const memory =
        mmap(nullptr, kSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    const std::span payload(static_cast<const std::uint8_t*>(memory), kSize);
    EXPECT_EQ(writer_.Write(near_.get(), payload), FrameWriter::Status::closed);
    EXPECT_EQ(writer_.Queued(), 0U);
    EXPECT_EQ(Received(), std::nullopt);
    munmap(memory, kSize);
}

}  // namespace
}  // namespace local_socket
