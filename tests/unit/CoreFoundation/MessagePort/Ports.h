// Ports for tests. Each releases what it holds; data is given and returned as text.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <optional>
#include <string>

namespace message_port_test {

std::string Text(CFDataRef data);
CFDataRef MakeData(const std::string& text);    // the caller releases
CFStringRef MakeName(const std::string& utf8);  // the caller releases

// Serves a name on the current run loop.
class Server {
  public:
    // The answer to a request; nothing for a null reply.
    using Callback = std::function<std::optional<std::string>(SInt32 msgid, const std::string&)>;

    explicit Server(const std::string& name, Callback callback,
                    CFRunLoopMode mode = kCFRunLoopCommonModes);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();

    CFMessagePortRef Port() const { return port_; }
    int Requests() const { return requests_; }

  private:
    static CFDataRef Receive(CFMessagePortRef, SInt32 msgid, CFDataRef data, void* info);

    Callback callback_;
    CFMessagePortRef port_ = nullptr;
    CFRunLoopSourceRef source_ = nullptr;
    int requests_ = 0;
};

// The answer to every request: its own text.
std::optional<std::string> Echo(SInt32 msgid, const std::string& text);

// A client's end of a name.
class Client {
  public:
    explicit Client(const std::string& name);
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client();

    CFMessagePortRef Port() const { return port_; }  // null: no process serves the name

    struct Outcome {
        SInt32 result;
        std::optional<std::string> reply;  // none: nothing was written
        friend bool operator==(const Outcome&, const Outcome&) = default;
    };
    // Time-outs are seconds.
    Outcome Ask(const std::string& text, SInt32 msgid = 1, double receiveTimeout = 5,
                CFRunLoopMode replyMode = kCFRunLoopDefaultMode, double sendTimeout = 5) const;
    SInt32 Tell(const std::string& text, double sendTimeout = 5, SInt32 msgid = 1) const;

  private:
    CFMessagePortRef port_;
};

void PrintTo(const Client::Outcome& outcome, std::ostream* stream);

// Lets the run loop do what there is to do at once.
void RunPasses(int count = 10);

}  // namespace message_port_test
