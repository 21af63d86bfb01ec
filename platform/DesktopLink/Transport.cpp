#include "platform/DesktopLink/Transport.h"

#include <utility>

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/SocketTransport.h"

namespace desktop_link {

namespace {

unsigned long exchangeCount = 0;

class CountingTransport final : public Transport {
  public:
    explicit CountingTransport(std::unique_ptr<Transport> counted) : counted_(std::move(counted)) {}

    std::optional<Reply> Exchange(const Request& request, double timeout) override {
        if (request.operation != Operation::hello) {
            ++exchangeCount;
        }
        return counted_->Exchange(request, timeout);
    }

    bool Unreachable() const override { return counted_->Unreachable(); }

    void SetNotificationHandler(std::function<void(const Notification&)> handler) override {
        counted_->SetNotificationHandler(std::move(handler));
    }

  private:
    std::unique_ptr<Transport> counted_;
};

// Never destroyed: the process may end in the middle of a call.
std::unique_ptr<Transport>& Slot() {
    static auto* slot = new std::unique_ptr<Transport>;
    return *slot;
}

}  // namespace

Transport& CurrentTransport() {
    std::unique_ptr<Transport>& slot = Slot();
    if (!slot) {
        slot = std::make_unique<CountingTransport>(std::make_unique<SocketTransport>());
    }
    return *slot;
}

void SetTransport(std::unique_ptr<Transport> transport) {
    std::unique_ptr<Transport>& slot = Slot();
    slot.reset();
    if (transport) {
        slot = std::make_unique<CountingTransport>(std::move(transport));
    }
    ForgetSession();
}

unsigned long ExchangeCount() {
    return exchangeCount;
}

}  // namespace desktop_link
