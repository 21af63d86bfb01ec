// Bytes that no well-behaved peer sends.
#include <gtest/gtest.h>

#include <random>

#include "platform/DesktopLink/Utf8.h"
#include "tests/unit/DesktopLink/Samples.h"

namespace desktop_link {

namespace {

using ByteVector = std::vector<std::uint8_t>;

// Decodes a copy in memory of exactly that size, so that a sanitizer sees any read beyond it.
bool AnyDecoderAccepts(const ByteVector& bytes) {
    const ByteVector exact(bytes.begin(), bytes.end());
    const bool request = DecodeRequest(exact.data(), exact.size()).has_value();
    const bool reply = DecodeReply(exact.data(), exact.size()).has_value();
    const bool notification = DecodeNotification(exact.data(), exact.size()).has_value();
    return request || reply || notification;
}

std::vector<ByteVector> ValidMessages() {
    return {Encode(FullRequest()), Encode(FullReply()), Encode(FullNotification()),
            Encode(Request{}),     Encode(Reply{}),     Encode(Notification{})};
}

// A valid request up to its value, which the test appends.
ByteVector RequestUpToValue() {
    const ByteVector whole = Encode(Request{});
    return {whole.begin(), whole.end() - 3};  // value, event and text are one byte each
}

bool RequestWithValueBytesIsAccepted(const ByteVector& value) {
    ByteVector bytes = RequestUpToValue();
    bytes.insert(bytes.end(), value.begin(), value.end());
    bytes.push_back(0xC0);
    bytes.push_back(0xA0);
    return DecodeRequest(bytes.data(), bytes.size()).has_value();
}

TEST(HostileCodec, MessageTruncatedAtAnyLengthIsRefused) {
    for (const ByteVector& message : ValidMessages()) {
        for (std::size_t length = 0; length < message.size(); ++length) {
            EXPECT_FALSE(AnyDecoderAccepts({message.begin(), message.begin() + long(length)}))
                << length << " of " << message.size() << " bytes were accepted";
        }
    }
}

TEST(HostileCodec, ByteTooManyIsRefused) {
    for (ByteVector message : ValidMessages()) {
        message.push_back(0xC0);
        EXPECT_FALSE(AnyDecoderAccepts(message));
    }
}

TEST(HostileCodec, EveryFlippedBitIsSurvived) {
    for (const ByteVector& message : ValidMessages()) {
        for (std::size_t bit = 0; bit < message.size() * 8; ++bit) {
            ByteVector flipped = message;
            flipped[bit / 8] = static_cast<std::uint8_t>(flipped[bit / 8] ^ (1u << (bit % 8)));
            AnyDecoderAccepts(flipped);
        }
    }
}

TEST(HostileCodec, EveryByteReplacedByEveryOtherIsSurvived) {
    const ByteVector message = Encode(FullReply());
    for (std::size_t at = 0; at < message.size(); ++at) {
        ByteVector changed = message;
        for (unsigned byte = 0; byte < 256; ++byte) {
            changed[at] = static_cast<std::uint8_t>(byte);
            AnyDecoderAccepts(changed);
        }
    }
}

TEST(HostileCodec, WhatIsAcceptedComesBackTheSameWhenEncodedAgain) {
    std::mt19937 random(9);
    const ByteVector message = Encode(FullRequest());
    int accepted = 0;
    for (int round = 0; round < 4000; ++round) {
        ByteVector changed = message;
        changed[random() % changed.size()] = static_cast<std::uint8_t>(random());
        if (const auto request = DecodeRequest(changed.data(), changed.size())) {
            ++accepted;
            const ByteVector again = Encode(*request);
            EXPECT_EQ(Encode(*DecodeRequest(again.data(), again.size())), again);
        }
    }
    EXPECT_GT(accepted, 200) << "the changes hit nothing that may vary";
}

TEST(HostileCodec, RandomBytesAreSurvived) {
    std::mt19937 random(1);
    for (int round = 0; round < 10000; ++round) {
        ByteVector bytes(random() % 64);
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(random());
        }
        if (!bytes.empty() && round % 2 == 0) {
            bytes[0] = static_cast<std::uint8_t>(0x90 + (round / 2) % 10);  // a plausible envelope
        }
        AnyDecoderAccepts(bytes);
    }
}

TEST(HostileCodec, NoBytesAtAllAreRefused) {
    EXPECT_FALSE(DecodeRequest(nullptr, 0));
    EXPECT_FALSE(DecodeReply(nullptr, 0));
    EXPECT_FALSE(DecodeNotification(nullptr, 0));
}

TEST(HostileCodec, AnnouncedCountsAllocateNothing) {
    // Four thousand million items, text bytes, data bytes, pairs; nested as well.
    const ByteVector array = {0xDD, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_FALSE(RequestWithValueBytesIsAccepted(array));
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xDB, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xC6, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xDF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xC9, 0xFF, 0xFF, 0xFF, 0xFF, 0x01}));
    ByteVector nested;
    for (int i = 0; i < 40; ++i) {
        nested.insert(nested.end(), array.begin(), array.end());
    }
    EXPECT_FALSE(RequestWithValueBytesIsAccepted(nested));
}

TEST(HostileCodec, MillionNestedArraysAreRefusedWithoutRecursion) {
    EXPECT_FALSE(RequestWithValueBytesIsAccepted(ByteVector(1000000, 0x91)));
    EXPECT_FALSE(AnyDecoderAccepts(ByteVector(1000000, 0x91)));
    EXPECT_FALSE(AnyDecoderAccepts(ByteVector(1000000, 0x81)));
}

TEST(HostileCodec, ExtensionOfWrongLengthOrUnknownTypeIsRefused) {
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xC7, 0x00, 0x01}));           // empty point
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xD4, 0x01, 0x00}));           // one byte
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xD6, 0x04, 0x00, 0, 0, 0}));  // short range
    EXPECT_TRUE(RequestWithValueBytesIsAccepted({0xD6, 0x05, 0x00, 0, 0, 0}));   // an error
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xD6, 0x07, 0x00, 0, 0, 0}));  // type 7
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xD6, 0xFF, 0x00, 0, 0, 0}));  // type -1
}

TEST(HostileCodec, NumberThatFitsNoSignedIntegerIsRefused) {
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xCF, 0x80, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(RequestWithValueBytesIsAccepted({0xCF, 0x7F, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(HostileCodec, ShortFloatsAreNoPartOfTheProtocol) {
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xCA, 0, 0, 0, 0}));
}

TEST(HostileCodec, KeyThatIsNoTextIsRefused) {
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0x81, 0x01, 0x01}));
    EXPECT_TRUE(RequestWithValueBytesIsAccepted({0x81, 0xA1, 'k', 0x01}));
}

TEST(HostileCodec, TextThatIsNotUtf8IsRefused) {
    EXPECT_FALSE(RequestWithValueBytesIsAccepted({0xA1, 0xE9}));
    EXPECT_TRUE(RequestWithValueBytesIsAccepted({0xA2, 0xC3, 0xA9}));
}

TEST(HostileCodec, OperationOutsideTheTableIsRefused) {
    ByteVector bytes = Encode(Request{});
    const auto last = static_cast<unsigned>(Operation::script);
    bytes[1] = static_cast<std::uint8_t>(last);
    EXPECT_TRUE(DecodeRequest(bytes.data(), bytes.size()));
    for (const unsigned operation : {0u, last + 1, 127u}) {
        bytes[1] = static_cast<std::uint8_t>(operation);
        EXPECT_FALSE(DecodeRequest(bytes.data(), bytes.size())) << operation;
    }
}

TEST(Utf8, AcceptsExactlyTheWellFormedSequences) {
    for (const std::string_view good :
         {"", "a", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
          "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(IsUtf8(good)) << testing::PrintToString(good);
    }
    for (const std::string_view bad :
         {"\x80", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x9F\xBF", "\xED\xA0\x80",
          "\xE2\x82", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF",
          "\xF0\x90\x80"}) {
        EXPECT_FALSE(IsUtf8(bad)) << testing::PrintToString(bad);
    }
}

}  // namespace

}  // namespace desktop_link
