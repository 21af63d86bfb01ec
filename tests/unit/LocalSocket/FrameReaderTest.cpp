#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "platform/LocalSocket/Socket.h"
#include "tests/unit/LocalSocket/SocketPair.h"

namespace local_socket {
namespace {

std::string Text(std::span<const std::uint8_t> bytes) {
    return {bytes.begin(), bytes.end()};
}

std::string Frame(const std::string& payload) {
    const std::size_t length = payload.size();
    std::string frame;
    for (int i = 0; i < 4; ++i) {
        frame += static_cast<char>(length >> (8 * i));
    }
    return frame + payload;
}

class FrameReaderTest : public SocketPair {
  protected:
    void Arrive(const std::string& bytes) {
        ASSERT_EQ(write(far_.get(), bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }

    FrameReader::Status Read() { return reader_.ReadFrom(near_.get()); }

    std::optional<std::string> NextText() {
        const auto payload = reader_.Next();
        return payload ? std::optional(Text(*payload)) : std::nullopt;
    }

    FrameReader reader_{100'000};
};

TEST_F(FrameReaderTest, NothingThereLeavesItOpenAndEmpty) {
    EXPECT_EQ(Read(), FrameReader::Status::open);
    EXPECT_FALSE(reader_.HasFrame());
    EXPECT_FALSE(reader_.Next());
    EXPECT_FALSE(reader_.Take());
}

// The kernel says that the connection was reset, not that it has ended.
TEST_F(FrameReaderTest, PeerThatLeavesWithoutReadingHasClosed) {
    ASSERT_EQ(write(near_.get(), "unread", 6), 6);
    far_.reset();
    EXPECT_EQ(Read(), FrameReader::Status::closed);
    EXPECT_FALSE(reader_.HasFrame());
}

TEST_F(FrameReaderTest, AnswersFramesInTheirOrder) {
    Arrive(Frame("one") + Frame("") + Frame("three"));
    EXPECT_EQ(Read(), FrameReader::Status::open);
    EXPECT_EQ(NextText(), "one");
    EXPECT_EQ(NextText(), "");
    EXPECT_EQ(NextText(), "three");
    EXPECT_EQ(NextText(), std::nullopt);
}

TEST_F(FrameReaderTest, WaitsForTheRestOfAFrameThatComesByteByByte) {
    const std::string bytes = Frame("slow");
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        EXPECT_FALSE(reader_.HasFrame()) << "after " << i << " bytes";
        Arrive(bytes.substr(i, 1));
        EXPECT_EQ(Read(), FrameReader::Status::open);
    }
    EXPECT_EQ(NextText(), "slow");
}

TEST_F(FrameReaderTest, KeepsTheBeginningOfTheNextFrame) {
    const std::string second = Frame("second");
    Arrive(Frame("first") + second.substr(0, 6));
    Read();
    EXPECT_EQ(NextText(), "first");
    EXPECT_EQ(NextText(), std::nullopt);
    Arrive(second.substr(6));
    Read();
    EXPECT_EQ(NextText(), "second");
}

TEST_F(FrameReaderTest, ReadsFramesLargerThanItsFirstMemory) {
    const std::string large(90'000, 'x');
    Arrive(Frame(large));
    while (!reader_.HasFrame()) {
        ASSERT_EQ(Read(), FrameReader::Status::open);
    }
    EXPECT_EQ(NextText(), large);
    Arrive(Frame("after"));
    Read();
    EXPECT_EQ(NextText(), "after");
}

TEST_F(FrameReaderTest, TakenPayloadOutlivesFurtherReads) {
    Arrive(Frame("first"));
    Read();
    const auto alone = reader_.Take();
    Arrive(Frame("second") + Frame("third"));
    Read();
    const auto accompanied = reader_.Take();
    EXPECT_EQ(NextText(), "third");
    Arrive(Frame("fourth"));
    Read();
    ASSERT_TRUE(alone && accompanied);
    EXPECT_EQ(Text(alone->bytes), "first");
    EXPECT_EQ(Text(accompanied->bytes), "second");
    EXPECT_EQ(NextText(), "fourth");
}

TEST_F(FrameReaderTest, AcceptsTheLargestPayloadAndNotOneByteMore) {
    Arrive(Frame(std::string(100'000, 'x')));
    while (!reader_.HasFrame()) {
        ASSERT_EQ(Read(), FrameReader::Status::open);
    }
    reader_.Next();
    Arrive(Frame(std::string(100'001, 'x')).substr(0, 4));
    EXPECT_EQ(Read(), FrameReader::Status::oversized);
}

TEST_F(FrameReaderTest, AnnouncedLengthCostsNoMemory) {
    FrameReader reader(0xFFFFFFFF);
    Arrive(std::string("\xff\xff\xff\xff", 4) + "few");
    EXPECT_EQ(reader.ReadFrom(near_.get()), FrameReader::Status::open);
    EXPECT_FALSE(reader.HasFrame());
    EXPECT_EQ(reader.Buffered(), 7U);
}

TEST_F(FrameReaderTest, FramesBeforeAnOversizedOneAreStillAnswered) {
    Arrive(Frame("good") + "\xff\xff\xff\xff");
    EXPECT_EQ(Read(), FrameReader::Status::oversized);
    EXPECT_EQ(NextText(), "good");
    EXPECT_EQ(NextText(), std::nullopt);
    EXPECT_EQ(Read(), FrameReader::Status::open) << "nothing new has come";
    Arrive("more");
    EXPECT_EQ(Read(), FrameReader::Status::oversized) << "garbage never becomes a frame";
}

TEST_F(FrameReaderTest, PeerThatClosesInTheMiddleOfAFrameGivesNoFrame) {
    Arrive(Frame("whole") + Frame("half").substr(0, 6));
    far_.reset();
    EXPECT_EQ(Read(), FrameReader::Status::open);
    EXPECT_EQ(Read(), FrameReader::Status::closed);
    EXPECT_EQ(NextText(), "whole");
    EXPECT_EQ(NextText(), std::nullopt);
}

TEST_F(FrameReaderTest, DescriptorsSentAlongAreDropped) {
    int passed = open("/dev/null", O_RDONLY);
    std::string bytes = Frame("with a descriptor");
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof passed)] = {};
    iovec part{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof passed);
    *reinterpret_cast<int*>(CMSG_DATA(header)) = passed;
    ASSERT_GT(sendmsg(far_.get(), &message, 0), 0);
    close(passed);
    Read();
    EXPECT_EQ(NextText(), "with a descriptor");
    const int next = open("/dev/null", O_RDONLY);
    EXPECT_EQ(next, passed) << "the descriptor that came with the bytes was kept";
    close(next);
}

}  // namespace
}  // namespace local_socket
