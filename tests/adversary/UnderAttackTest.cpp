// Every operation of the driver, attacked at every point at which it depends on another process:
// operation x fault x point, from three lists.

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

#include "tests/adversary/AttackedOperation.h"

namespace adversary {

void PrintTo(const DriverOperation& operation, std::ostream* stream) {
    *stream << operation.name;
}

namespace {

constexpr int kMostFailures = 10;  // reported for one operation

// A run costs seventy times as much under the sanitizer, which walks the stack at every allocation:
// half an hour for all. There every 29th combination has its turn, a number that no list's length
// shares a factor with, so that no fault is left out; what the driver has to do is proved by the
// other build.
#if __has_feature(address_sanitizer)
constexpr unsigned kStride = 29;
#else
constexpr unsigned kStride = 1;
#endif

class UnderAttack : public testing::TestWithParam<DriverOperation> {
  protected:
    static void SetUpTestSuite() { driver_ = std::make_unique<DriverUnderAttack>(); }
    static void TearDownTestSuite() { driver_.reset(); }

    UnderAttack() {
        Try("no fault", "at all", [this] { return operation_.RunClean(); });
    }
    ~UnderAttack() override { RecordProperty("cases", cases_); }

    template <typename Attack>
    void Try(const std::string& fault, const std::string& point, Attack attack) {
        ++cases_;
        const std::string problem = attack();
        if (problem.empty()) {
            return;
        }
        operation_.LoseTrack();
        if (++failures_ <= kMostFailures) {
            ADD_FAILURE() << GetParam().name << ", " << fault << ", " << point << ":" << problem;
        }
    }

    // Whether the next combination of a fault and a point has its turn.
    bool HasTurn() { return turn_++ % kStride == 0; }

    std::string NameOf(std::size_t exchange) const {
        std::string name = "exchange " + std::to_string(exchange);
        for (const std::string& each : operation_.Exchanges()[exchange].request.names) {
            name += " " + each;
        }
        return name;
    }

    static std::unique_ptr<DriverUnderAttack> driver_;

    AttackedOperation operation_{*driver_, GetParam()};
    unsigned turn_ = 0;
    int cases_ = 0;
    int failures_ = 0;
};

std::unique_ptr<DriverUnderAttack> UnderAttack::driver_;

INSTANTIATE_TEST_SUITE_P(Operation, UnderAttack, testing::ValuesIn(AllOperations()),
                         [](const auto& info) { return info.param.name; });

}  // namespace

TEST_P(UnderAttack, ByTheSessionAtEveryMoment) {
    for (const Event& event : AllEvents()) {
        for (const std::string& control : GetParam().controls) {
            if (!event.concernsControl && control != GetParam().controls.front()) {
                continue;
            }
            for (unsigned moment = 1; moment <= operation_.Moments(); ++moment) {
                if (HasTurn()) {
                    Try(event.name + " (" + control + ")", "moment " + std::to_string(moment),
                        [&] { return operation_.RunWith(event, control, moment); });
                }
            }
        }
    }
}

TEST_P(UnderAttack, ByEveryFalseReplyAtEveryExchange) {
    for (std::size_t exchange = 0; exchange < operation_.Exchanges().size(); ++exchange) {
        for (const FalseReply& reply : AllFalseReplies()) {
            if (HasTurn()) {
                Try(reply.name, NameOf(exchange),
                    [&] { return operation_.RunWithReply(exchange, reply.falsify); });
            }
        }
    }
}

TEST_P(UnderAttack, ByEveryFalseValueAtEveryRead) {
    const std::vector<FalseValue> values = AllFalseValues();
    for (std::size_t index = 0; index < operation_.Exchanges().size(); ++index) {
        const Exchange exchange = operation_.Exchanges()[index];
        const std::size_t count = exchange.reply ? exchange.reply->values.size() : 0;
        for (std::size_t place = 0; place < count; ++place) {
            for (const FalseValue& value : values) {
                if (!HasTurn()) {
                    continue;
                }
                const desktop_link::Value made = value.make(exchange.request);
                Try(value.name + " as value " + std::to_string(place), NameOf(index), [&] {
                    return operation_.RunWithReply(
                        index, [&](auto& reply) { reply->values.at(place) = made; });
                });
            }
        }
    }
}

}  // namespace adversary
