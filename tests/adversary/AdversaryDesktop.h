// A desktop in the test's own process that turns against the driver while it is being asked, and
// remembers every exchange.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Desktop.h"
#include "platform/DesktopLink/Messages.h"

namespace adversary {

struct Exchange {
    desktop_link::Request request;
    std::optional<desktop_link::Reply> reply;  // none: it never came
    double timeout = 0;                        // seconds that the process was ready to wait
};

class AdversaryDesktop {
  public:
    // Is the transport of this process for the lifetime of the object; nothing is in front yet.
    AdversaryDesktop();
    ~AdversaryDesktop();
    AdversaryDesktop(const AdversaryDesktop&) = delete;
    AdversaryDesktop& operator=(const AdversaryDesktop&) = delete;

    // Replaces the desktop by another one, without notifying the process.
    void Load(const std::string& scene);

    // Throws when the desktop refuses the command.
    void Run(const std::string& command);

    // Of the application in front. Throws when there is no such element.
    desktop_link::ElementReference Find(const std::string& address);
    bool Has(const std::string& address);

    // Forgets the exchanges and both adversaries below; counting starts again.
    void Restart();

    // Called at every moment of a request in progress: inside each attribute read, of which
    // one exchange may hold several, and before and after each setting and action. Counted from 1.
    std::function<void(unsigned moment)> onMoment;

    // May change the reply to an exchange, counted from 0.
    std::function<void(std::size_t exchange, std::optional<desktop_link::Reply>& reply)> onReply;

    // An exchange was not answered for this many seconds, all the time that the process waits.
    // Restart() leaves it.
    std::function<void(double seconds)> onSilence;

    unsigned Moments() const;
    const std::vector<Exchange>& Exchanges() const;

    // What became of the front application reaches the process only now, as when its run loop runs.
    void DeliverNotifications();

  private:
    struct State;
    class Forwarding;

    std::shared_ptr<State> state_;
};

}  // namespace adversary
