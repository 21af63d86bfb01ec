#include <CoreMIDI/CoreMIDI.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/Variants/MidiFaults.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/SessionFixture.h"

namespace {

using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;
using platform_testing::FailMidiCreation;
using platform_testing::MidiCreation;
using test_support::ScriptedTransport;

void Ignore(const MIDIPacketList*, void*, void*) {}

class MidiClients : public testing::Test {
  protected:
    MidiClients() { EXPECT_EQ(MIDIClientCreate(CFSTR("KRT9"), nullptr, nullptr, &client_), 0); }
    ~MidiClients() override {
        MIDIClientDispose(client_);
        platform_testing::ForgetMidiFaults();
    }

    MIDIPortRef InputPort() {
        MIDIPortRef port = 0;
        EXPECT_EQ(MIDIInputPortCreate(client_, CFSTR("Input"), Ignore, nullptr, &port), 0);
        return port;
    }

    MIDIClientRef client_ = 0;
};

// Every connection attempt gets this result.
ScriptedTransport::Script Connecting(std::optional<OSStatus> status) {
    return [status](const Request&) -> std::optional<Reply> {
        if (!status) {
            return std::nullopt;
        }
        Reply reply;
        reply.error = *status;
        return reply;
    };
}

TEST_F(MidiClients, ReferencesOfClientsAndPortsAreUniqueAndNeverZero) {
    MIDIClientRef other = 0;
    MIDIPortRef output = 0;
    EXPECT_EQ(MIDIClientCreate(CFSTR("KRT9"), nullptr, nullptr, &other), 0);
    EXPECT_EQ(MIDIOutputPortCreate(client_, CFSTR("Output"), &output), 0);
    const std::set<MIDIObjectRef> references = {client_, other, output, InputPort(), InputPort()};
    EXPECT_EQ(references.size(), 5u);
    EXPECT_FALSE(references.contains(0));
    MIDIClientDispose(other);
}

TEST_F(MidiClients, PortOfAnUnknownClientIsRefused) {
    MIDIPortRef port = 77;
    EXPECT_EQ(MIDIInputPortCreate(0, CFSTR("Input"), Ignore, nullptr, &port), kMIDIInvalidClient);
    EXPECT_EQ(MIDIOutputPortCreate(12345, CFSTR("Output"), &port), kMIDIInvalidClient);
    EXPECT_EQ(port, 77u);
}

TEST_F(MidiClients, NullArgumentsAreRefused) {
    MIDIPortRef port = 77;
    MIDIClientRef client = 77;
    EXPECT_NE(MIDIClientCreate(nullptr, nullptr, nullptr, &client), 0);
    EXPECT_NE(MIDIClientCreate(CFSTR("KRT9"), nullptr, nullptr, nullptr), 0);
    EXPECT_NE(MIDIInputPortCreate(client_, nullptr, Ignore, nullptr, &port), 0);
    EXPECT_NE(MIDIInputPortCreate(client_, CFSTR("Input"), nullptr, nullptr, &port), 0);
    EXPECT_NE(MIDIOutputPortCreate(client_, CFSTR("Output"), nullptr), 0);
    EXPECT_EQ(port, 77u);
    EXPECT_EQ(client, 77u);
}

TEST_F(MidiClients, PortsGoWithTheirClient) {
    ScriptedTransport desktop(Connecting(0));
    const MIDIPortRef port = InputPort();
    EXPECT_EQ(MIDIPortConnectSource(port, 3, nullptr), 0);
    EXPECT_EQ(MIDIClientDispose(client_), 0);
    EXPECT_EQ(MIDIPortConnectSource(port, 3, nullptr), kMIDIInvalidPort);
    EXPECT_EQ(MIDIClientDispose(client_), kMIDIInvalidClient);
}

TEST_F(MidiClients, ConnectingTellsTheDesktopWhichSource) {
    ScriptedTransport desktop(Connecting(0));
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 3, nullptr), 0);
    ASSERT_EQ(desktop.Requests().size(), 1u);
    EXPECT_EQ(desktop.Requests()[0].operation, Operation::midiConnectSource);
    EXPECT_EQ(desktop.Requests()[0].number, 3);
}

TEST_F(MidiClients, ConnectingAnswersTheDesktopsError) {
    ScriptedTransport desktop(Connecting(kMIDIUnknownEndpoint));
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 99, nullptr), kMIDIUnknownEndpoint);
}

TEST_F(MidiClients, ConnectingThatIsNotAnsweredInTimeFails) {
    ScriptedTransport desktop(Connecting(std::nullopt));
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 3, nullptr), kMIDIMessageSendErr);
}

TEST_F(MidiClients, ConnectingWithoutADesktopFindsNoSuchEndpoint) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 3, nullptr), kMIDIUnknownEndpoint);
    desktop_link::SetTransport(nullptr);
}

TEST_F(MidiClients, OnlyAnInputPortCanBeConnected) {
    ScriptedTransport desktop(Connecting(0));
    MIDIPortRef output = 0;
    MIDIOutputPortCreate(client_, CFSTR("Output"), &output);
    EXPECT_EQ(MIDIPortConnectSource(output, 3, nullptr), kMIDIInvalidPort);
    EXPECT_EQ(MIDIPortConnectSource(0, 3, nullptr), kMIDIInvalidPort);
    EXPECT_TRUE(desktop.Requests().empty());
}

TEST_F(MidiClients, NthCreationOfAKindCanBeMadeToFail) {
    FailMidiCreation(MidiCreation::client, 1);
    FailMidiCreation(MidiCreation::inputPort, 2);
    FailMidiCreation(MidiCreation::outputPort, 1);
    MIDIClientRef client = 0;
    MIDIPortRef port = 0;
    EXPECT_EQ(MIDIClientCreate(CFSTR("KRT9"), nullptr, nullptr, &client), kMIDIServerStartErr);
    EXPECT_EQ(client, 0u);
    EXPECT_NE(InputPort(), 0u);
    EXPECT_EQ(MIDIInputPortCreate(client_, CFSTR("Input"), Ignore, nullptr, &port),
              kMIDIServerStartErr);
    EXPECT_EQ(MIDIOutputPortCreate(client_, CFSTR("Output"), &port), kMIDIServerStartErr);
    EXPECT_EQ(port, 0u);
    EXPECT_EQ(MIDIOutputPortCreate(client_, CFSTR("Output"), &port), 0) << "a failure happens once";
}

}  // namespace
