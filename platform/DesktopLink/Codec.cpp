#include <limits>
#include <msgpack.hpp>

#include "platform/DesktopLink/CodecReader.h"
#include "platform/DesktopLink/CodecWriter.h"
#include "platform/DesktopLink/Messages.h"

// Every message is an array of its fields in the order of their declaration. An optional field that
// is missing, and an empty event, are nil.

namespace desktop_link {

namespace {

constexpr auto kLargestOperation = static_cast<std::int64_t>(Operation::script);
constexpr std::int64_t kLowest32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighest32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kHighestUnsigned32 = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kLowest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest64 = std::numeric_limits<std::int64_t>::max();

std::int32_t ReadInt32(CodecReader& reader) {
    return static_cast<std::int32_t>(reader.ReadInteger(kLowest32, kHighest32));
}

std::uint32_t ReadUInt32(CodecReader& reader) {
    return static_cast<std::uint32_t>(reader.ReadInteger(0, kHighestUnsigned32));
}

void Write(CodecWriter& writer, const Event& event) {
    if (event == Event{}) {
        writer.WriteNil();
        return;
    }
    writer.WriteArray(11);
    writer.WriteInteger(event.type);
    writer.WritePoint(event.position);
    writer.WriteUnsigned(event.flags);
    writer.WriteInteger(event.keyCode);
    writer.WriteInteger(event.button);
    writer.WriteInteger(event.sourceState);
    writer.WriteBoolean(event.hasSource);
    writer.WriteBoolean(event.flagsWereSet);
    writer.WriteInteger(event.tap);
    writer.WriteInteger(event.scrollUnit);
    writer.WriteArray(event.wheels.size());
    for (const std::int32_t wheel : event.wheels) {
        writer.WriteInteger(wheel);
    }
}

Event ReadEvent(CodecReader& reader) {
    Event event;
    if (reader.SkipNil()) {
        return event;
    }
    reader.ReadArray(11);
    event.type = ReadUInt32(reader);
    event.position = reader.ReadPoint();
    event.flags = reader.ReadUnsigned();
    event.keyCode = reader.ReadInteger(kLowest64, kHighest64);
    event.button = reader.ReadInteger(kLowest64, kHighest64);
    event.sourceState = ReadInt32(reader);
    event.hasSource = reader.ReadBoolean();
    event.flagsWereSet = reader.ReadBoolean();
    event.tap = ReadUInt32(reader);
    event.scrollUnit = ReadUInt32(reader);
    for (std::size_t left = reader.ReadArray(); left != 0 && !reader.Failed(); --left) {
        event.wheels.push_back(ReadInt32(reader));
    }
    return event;
}

void WriteOptionalText(CodecWriter& writer, const std::optional<std::string>& text) {
    if (text) {
        writer.WriteText(*text);
    } else {
        writer.WriteNil();
    }
}

std::optional<std::string> ReadOptionalText(CodecReader& reader) {
    if (reader.SkipNil()) {
        return std::nullopt;
    }
    return reader.ReadText();
}

void Write(CodecWriter& writer, const std::optional<Application>& application) {
    if (!application) {
        writer.WriteNil();
        return;
    }
    writer.WriteArray(4);
    writer.WriteInteger(application->pid);
    WriteOptionalText(writer, application->bundleIdentifier);
    WriteOptionalText(writer, application->bundlePath);
    writer.WriteText(application->name);
}

std::optional<Application> ReadApplication(CodecReader& reader) {
    if (reader.SkipNil()) {
        return std::nullopt;
    }
    Application application;
    reader.ReadArray(4);
    application.pid = ReadInt32(reader);
    application.bundleIdentifier = ReadOptionalText(reader);
    application.bundlePath = ReadOptionalText(reader);
    application.name = reader.ReadText();
    return application;
}

void Write(CodecWriter& writer, const std::optional<Session>& session) {
    if (!session) {
        writer.WriteNil();
        return;
    }
    writer.WriteArray(2);
    Write(writer, session->frontApplication);
    writer.WriteDouble(session->messagingTimeout);
}

std::optional<Session> ReadSession(CodecReader& reader) {
    if (reader.SkipNil()) {
        return std::nullopt;
    }
    Session session;
    reader.ReadArray(2);
    session.frontApplication = ReadApplication(reader);
    session.messagingTimeout = reader.ReadDouble();
    return session;
}

}  // namespace

std::vector<std::uint8_t> Encode(const Request& request) {
    CodecWriter writer;
    writer.WriteArray(8);
    writer.WriteInteger(static_cast<std::int64_t>(request.operation));
    writer.WriteElement(request.element);
    writer.WriteArray(request.names.size());
    for (const std::string& name : request.names) {
        writer.WriteText(name);
    }
    writer.WriteBoolean(request.flag);
    writer.WriteInteger(request.number);
    writer.WriteValue(request.value);
    Write(writer, request.event);
    writer.WriteText(request.text);
    return writer.TakeBytes();
}

std::vector<std::uint8_t> Encode(const Reply& reply) {
    CodecWriter writer;
    writer.WriteArray(5);
    writer.WriteInteger(reply.error);
    writer.WriteBoolean(reply.flag);
    writer.WriteArray(reply.values.size());
    for (const Value& value : reply.values) {
        writer.WriteValue(value);
    }
    writer.WriteText(reply.text);
    Write(writer, reply.session);
    return writer.TakeBytes();
}

std::vector<std::uint8_t> Encode(const Notification& notification) {
    CodecWriter writer;
    writer.WriteArray(1);
    Write(writer, notification.activated);
    return writer.TakeBytes();
}

std::optional<Request> DecodeRequest(const std::uint8_t* bytes, std::size_t length) {
    CodecReader reader(bytes, length);
    Request request;
    reader.ReadArray(8);
    request.operation = static_cast<Operation>(reader.ReadInteger(1, kLargestOperation));
    request.element = reader.ReadElement();
    for (std::size_t left = reader.ReadArray(); left != 0 && !reader.Failed(); --left) {
        request.names.push_back(reader.ReadText());
    }
    request.flag = reader.ReadBoolean();
    request.number = reader.ReadInteger(kLowest64, kHighest64);
    request.value = reader.ReadValue();
    request.event = ReadEvent(reader);
    request.text = reader.ReadText();
    return reader.Finished() ? std::optional(std::move(request)) : std::nullopt;
}

std::optional<Reply> DecodeReply(const std::uint8_t* bytes, std::size_t length) {
    CodecReader reader(bytes, length);
    Reply reply;
    reader.ReadArray(5);
    reply.error = ReadInt32(reader);
    reply.flag = reader.ReadBoolean();
    for (std::size_t left = reader.ReadArray(); left != 0 && !reader.Failed(); --left) {
        reply.values.push_back(reader.ReadValue());
    }
    reply.text = reader.ReadText();
    reply.session = ReadSession(reader);
    return reader.Finished() ? std::optional(std::move(reply)) : std::nullopt;
}

std::optional<Notification> DecodeNotification(const std::uint8_t* bytes, std::size_t length) {
    CodecReader reader(bytes, length);
    Notification notification;
    reader.ReadArray(1);
    notification.activated = ReadApplication(reader);
    return reader.Finished() ? std::optional(std::move(notification)) : std::nullopt;
}

}  // namespace desktop_link
