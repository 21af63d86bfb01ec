#include <CoreMIDI/CoreMIDI.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "platform/Variants/MidiFaults.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"

namespace {

using desktop_link::Operation;
using platform_testing::FailMidiCreation;
using platform_testing::MidiCreation;
using test_support::ScriptedDesktop;

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

// A source with the id 3, which refuses connections with this error unless it is 0.
std::string BusWithSource(OSStatus connectError) {
    return R"({"midi": {"devices": [{"id": 1, "name": "KRT-9 USB", "entities": [{"id": 2,
        "name": "Private", "sources": [{"id": 3, "name": "in", "connectError": )" +
           std::to_string(connectError) + "}]}]}]}}";
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
    ScriptedDesktop desktop(BusWithSource(0));
    desktop.Restart();
    const MIDIPortRef port = InputPort();
    EXPECT_EQ(MIDIPortConnectSource(port, 3, nullptr), 0);
    EXPECT_EQ(MIDIClientDispose(client_), 0);
    EXPECT_EQ(MIDIPortConnectSource(port, 3, nullptr), kMIDIInvalidPort);
    EXPECT_EQ(MIDIClientDispose(client_), kMIDIInvalidClient);
}

TEST_F(MidiClients, ConnectingTellsTheDesktopWhichSource) {
    ScriptedDesktop desktop(BusWithSource(0));
    desktop.Restart();
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 3, nullptr), 0);
    ASSERT_EQ(desktop.Exchanges().size(), 1u);
    EXPECT_EQ(desktop.Exchanges()[0].request.operation, Operation::midiConnectSource);
    EXPECT_EQ(desktop.Exchanges()[0].request.number, 3);
}

TEST_F(MidiClients, ConnectingAnswersTheDesktopsError) {
    const ScriptedDesktop desktop(BusWithSource(kMIDIServerStartErr));
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 3, nullptr), kMIDIServerStartErr);
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 99, nullptr), kMIDIUnknownEndpoint);
}

TEST_F(MidiClients, ConnectingThatIsNotAnsweredInTimeFails) {
    ScriptedDesktop desktop(BusWithSource(0));
    desktop.onReply = [](std::size_t, auto& exchange) { exchange.reply.reset(); };
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 3, nullptr), kMIDIMessageSendErr);
}

TEST_F(MidiClients, ConnectingWithoutADesktopFindsNoSuchEndpoint) {
    const test_support::SessionFixture session;
    desktop_link::SetTransport(nullptr);
    EXPECT_EQ(MIDIPortConnectSource(InputPort(), 3, nullptr), kMIDIUnknownEndpoint);
    desktop_link::SetTransport(nullptr);
}

TEST_F(MidiClients, OnlyAnInputPortCanBeConnected) {
    ScriptedDesktop desktop(BusWithSource(0));
    desktop.Restart();
    MIDIPortRef output = 0;
    MIDIOutputPortCreate(client_, CFSTR("Output"), &output);
    EXPECT_EQ(MIDIPortConnectSource(output, 3, nullptr), kMIDIInvalidPort);
    EXPECT_EQ(MIDIPortConnectSource(0, 3, nullptr), kMIDIInvalidPort);
    EXPECT_TRUE(desktop.Exchanges().empty());
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
