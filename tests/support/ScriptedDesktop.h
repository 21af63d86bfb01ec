// A simulated desktop in the test's own process, in place of the session's. A test can remember
// what is asked of it, and step in: change it before a request is answered, answer in its place,
// alter or drop a reply, and let time pass while none comes.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Desktop.h"
#include "desktop/InProcessTransport.h"
#include "platform/DesktopLink/Messages.h"
#include "tests/support/TemporaryFolder.h"

namespace test_support {

struct Exchange {
    desktop_link::Request request;
    std::optional<desktop_link::Reply> reply;  // none: it never came
    double timeout = 0;                        // seconds that the process was ready to wait
};

class ScriptedDesktop {
  public:
    // Is the transport of this process for the lifetime of the object.
    explicit ScriptedDesktop(const std::string& scene = "{}");

    // An empty desktop in whose place `script` replies. Remembers the exchanges.
    using Script =
        std::function<std::optional<desktop_link::Reply>(const desktop_link::Request& request)>;
    explicit ScriptedDesktop(Script script);

    ~ScriptedDesktop();
    ScriptedDesktop(const ScriptedDesktop&) = delete;
    ScriptedDesktop& operator=(const ScriptedDesktop&) = delete;

    desktop::Desktop& operator*() { return *desktop_; }
    desktop::Desktop* operator->() { return desktop_.get(); }

    // Replaces the desktop by another one without notifying the process, and restarts.
    void Load(const std::string& scene);

    // Runs a script command. What it changed in front is known to the process when this returns.
    // Throws std::invalid_argument when the desktop refuses the command.
    std::string Run(const std::string& command);

    // The same, but the process learns what changed in front only with DeliverNotifications(), as
    // when its run loop runs.
    std::string RunUnnoticed(const std::string& command);
    void DeliverNotifications();

    // Delivers a notification that the desktop did not send.
    void Deliver(const desktop_link::Notification& notification);

    // Forgets the exchanges and the hooks but onHello and onSilence; exchanges are counted from 0
    // again and, from now on, remembered.
    void Restart();

    // Since the last Restart(); `hello` is none. Empty when there was no Restart(): a test that
    // makes millions of exchanges could not keep them.
    const std::vector<Exchange>& Exchanges() const { return exchanges_; }

    // Before each request.
    std::function<void(const desktop_link::Request& request)> onRequest;

    // Replies in the desktop's place; nothing means that no reply comes. Unlike the desktop's own,
    // such a reply arrives as it is, even if it could not travel.
    Script replyInstead;

    // May change the reply to the exchange with that number.
    std::function<void(std::size_t number, Exchange& exchange)> onReply;

    // No reply came for this many seconds, all the time that the process waits.
    std::function<void(double seconds)> onSilence;

    // May change the reply to `hello`.
    std::function<void(desktop_link::Reply& reply)> onHello;

    // False: no desktop runs. No request gets a reply then.
    bool reachable = true;

  private:
    class Link;

    std::optional<desktop_link::Reply> Answer(const desktop_link::Request& request, double timeout);

    TemporaryFolder bundles_;
    std::unique_ptr<desktop::Desktop> desktop_;
    std::unique_ptr<desktop::InProcessTransport> transport_;
    std::function<void(const desktop_link::Notification&)> handler_;
    std::vector<Exchange> exchanges_;
    std::size_t count_ = 0;  // exchanges since the last restart
    bool remembers_ = false;
};

}  // namespace test_support
