#include <gtest/gtest.h>

#include <cmath>

#include "tests/unit/DesktopLink/Samples.h"

namespace desktop_link {

namespace {

std::optional<Value> RoundTrip(const Value& value) {
    Request request;
    request.value = value;
    const auto bytes = Encode(request);
    const auto decoded = DecodeRequest(bytes.data(), bytes.size());
    return decoded ? std::optional(decoded->value) : std::nullopt;
}

Value NestedArrays(std::size_t depth) {
    Value value{std::int64_t{1}};
    for (std::size_t i = 0; i < depth; ++i) {
        value = Value{Array{std::move(value)}};
    }
    return value;
}

TEST(Codec, DefaultRequestComesBackUnchanged) {
    const auto bytes = Encode(Request{});
    EXPECT_EQ(DecodeRequest(bytes.data(), bytes.size()), Request{});
}

TEST(Codec, RequestWithEveryFieldAndEveryTypeOfValueComesBackUnchanged) {
    const auto bytes = Encode(FullRequest());
    EXPECT_EQ(DecodeRequest(bytes.data(), bytes.size()), FullRequest());
}

TEST(Codec, EveryOperationComesBackUnchanged) {
    for (int operation = 1; operation <= static_cast<int>(Operation::script); ++operation) {
        Request request;
        request.operation = static_cast<Operation>(operation);
        const auto bytes = Encode(request);
        EXPECT_EQ(DecodeRequest(bytes.data(), bytes.size()), request) << operation;
    }
}

TEST(Codec, ReplyWithEveryFieldComesBackUnchanged) {
    const auto bytes = Encode(FullReply());
    EXPECT_EQ(DecodeReply(bytes.data(), bytes.size()), FullReply());
    const auto empty = Encode(Reply{});
    EXPECT_EQ(DecodeReply(empty.data(), empty.size()), Reply{});
}

TEST(Codec, SessionWithoutFrontApplicationComesBackUnchanged) {
    Reply reply;
    reply.session = Session{std::nullopt, 6.0};
    const auto bytes = Encode(reply);
    EXPECT_EQ(DecodeReply(bytes.data(), bytes.size()), reply);
}

TEST(Codec, NotificationsComeBackUnchanged) {
    for (const Notification& notification : {FullNotification(), Notification{}}) {
        const auto bytes = Encode(notification);
        EXPECT_EQ(DecodeNotification(bytes.data(), bytes.size()), notification);
    }
}

TEST(Codec, WholeFloatingNumberStaysAFloatingNumber) {
    EXPECT_EQ(RoundTrip({5.0}), Value{5.0});
    EXPECT_NE(RoundTrip({5.0}), Value{std::int64_t{5}});
}

TEST(Codec, NotANumberStaysNotANumber) {
    const auto value = RoundTrip({std::nan("")});
    ASSERT_TRUE(value && std::holds_alternative<double>(value->content));
    EXPECT_TRUE(std::isnan(std::get<double>(value->content)));
}

TEST(Codec, TrueStaysApartFromOne) {
    EXPECT_EQ(RoundTrip({true}), Value{true});
    EXPECT_NE(RoundTrip({true}), Value{std::int64_t{1}});
}

TEST(Codec, ValuesNestAsDeepAsPromised) {
    EXPECT_EQ(RoundTrip(NestedArrays(kDeepestValue)), NestedArrays(kDeepestValue));
}

TEST(Codec, WhatLiesTooDeepIsWrittenAsTheNullObject) {
    Value expected{std::monostate{}};
    for (std::size_t i = 0; i <= kDeepestValue; ++i) {
        expected = Value{Array{std::move(expected)}};
    }
    EXPECT_EQ(RoundTrip(NestedArrays(kDeepestValue + 100)), expected);
}

TEST(Codec, TextThatIsNotUtf8IsWrittenAsEmptyText) {
    EXPECT_EQ(RoundTrip({std::string("caf\xE9")}), Value{std::string()});
}

TEST(Codec, MessagesOfOneKindAreNotDecodedAsAnother) {
    const auto request = Encode(FullRequest());
    const auto reply = Encode(FullReply());
    const auto notification = Encode(FullNotification());
    EXPECT_FALSE(DecodeReply(request.data(), request.size()));
    EXPECT_FALSE(DecodeNotification(request.data(), request.size()));
    EXPECT_FALSE(DecodeRequest(reply.data(), reply.size()));
    EXPECT_FALSE(DecodeNotification(reply.data(), reply.size()));
    EXPECT_FALSE(DecodeRequest(notification.data(), notification.size()));
    EXPECT_FALSE(DecodeReply(notification.data(), notification.size()));
}

TEST(Codec, ListOfAHundredThousandElementsComesBackUnchanged) {
    Array children;
    for (std::uint64_t id = 1; id <= 100000; ++id) {
        children.push_back({ElementReference{501, id}});
    }
    EXPECT_EQ(RoundTrip({children}), Value{children});
}

}  // namespace

}  // namespace desktop_link
