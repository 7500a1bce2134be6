// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/graph_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture/graph/channel_fold.h"

namespace vantoro::testing {
namespace {

using namespace capture;

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ObjectId speakers = 10;
constexpr ObjectId headphones = 11;
constexpr ObjectId virtualMicrophone = 12;
constexpr ObjectId microphone = 13;
constexpr ObjectId speakersTap = 20;
constexpr ObjectId headphonesTap = 21;
constexpr ObjectId microphoneStream = 22;
constexpr ObjectId application = 30;
constexpr ObjectId applicationClient = 60;

/// Two outputs with taps, two microphones, and one stereo application.
class GraphRules : public ::testing::Test {
protected:
    void SetUp() override {
        addNode(speakers, "Audio/Sink", "speakers");
        addNode(headphones, "Audio/Sink", "headphones");
        addNode(virtualMicrophone, "Audio/Source/Virtual", "virtual");
        addNode(microphone, "Audio/Source", "mic");
        addNode(speakersTap, "Stream/Input/Audio", "tap");
        addNode(headphonesTap, "Stream/Input/Audio", "tap");
        addNode(microphoneStream, "Stream/Input/Audio", "mic-stream");
        addNode(application, "Stream/Output/Audio", "app");
        graph.nodes[application].client = applicationClient;
        graph.nodes[application].autoconnect = true;
        graph.defaultOutput = "speakers";
        addTapPorts(100, speakersTap);
        addTapPorts(110, headphonesTap);
        graph.ports[200] = {application, PortDirection::output, "FL"};
        graph.ports[201] = {application, PortDirection::output, "FR"};
        graph.ports[300] = {microphone, PortDirection::output, "FL"};
        graph.ports[301] = {microphone, PortDirection::output, "FR"};
        graph.ports[310] = {microphoneStream, PortDirection::input, "MONO"};
        own.tapOfOutput = {{identity(speakers), speakersTap},
                           {identity(headphones), headphonesTap}};
    }

    void addNode(ObjectId id, const char* mediaClass, const char* name) {
        Node node;
        node.mediaClass = mediaClass;
        node.name = name;
        node.serial = id + 1000;
        graph.nodes[id] = node;
    }

    Identity identity(ObjectId node) const { return {node, graph.nodes.at(node).serial}; }

    void addTapPorts(ObjectId first, ObjectId tap) {
        for (const std::string_view channel : tapChannels) {
            graph.ports[first++] = {tap, PortDirection::input, std::string(channel)};
        }
    }

    void connect(ObjectId from, ObjectId to) {
        graph.links[static_cast<ObjectId>(400 + graph.links.size())] = {from, to};
    }

    using LinkedIds = std::set<std::pair<ObjectId, ObjectId>>;

    /// The port ids of the wanted links.
    LinkedIds links(bool excludesOwnSound = true) {
        LinkedIds ids;
        for (const auto& link : wantedLinks(graph, self, own, excludesOwnSound)) {
            ids.emplace(link.output.id, link.input.id);
        }
        return ids;
    }

    const LinkedIds toSpeakersTap{{200, 100}, {201, 101}};
    const LinkedIds toHeadphonesTap{{200, 110}, {201, 111}};
    Graph graph;
    Self self{.client = 61, .processId = "4711"};
    OwnNodes own;
};

TEST_F(GraphRules, anApplicationIsHeardOnTheOutputThatItPlaysOn) {
    connect(application, headphones);
    EXPECT_EQ(links(), toHeadphonesTap);
}

TEST_F(GraphRules, ourOwnLinksSayNothingAboutWhereAnApplicationPlays) {
    connect(application, speakersTap);
    connect(application, headphones);
    EXPECT_EQ(links(), toHeadphonesTap);
}

TEST_F(GraphRules, beforeItIsConnectedAnApplicationIsExpectedOnTheDefaultOutput) {
    EXPECT_EQ(links(), toSpeakersTap);
    graph.defaultOutput = "headphones";
    EXPECT_EQ(links(), toHeadphonesTap);
    graph.defaultOutput = "";
    EXPECT_THAT(links(), IsEmpty());
}

TEST_F(GraphRules, beforeItIsConnectedAnApplicationIsExpectedWhereItAsksToGo) {
    graph.nodes[application].targetObject = "headphones";
    EXPECT_EQ(links(), toHeadphonesTap);
    graph.nodes[application].targetObject = "1011"; // the serial
    EXPECT_EQ(links(), toHeadphonesTap);
    graph.nodes[application].targetObject = "gone";
    EXPECT_EQ(links(), toSpeakersTap);
    graph.nodes[application].targetObject = "virtual";
    EXPECT_THAT(links(), IsEmpty());
}

TEST_F(GraphRules, beforeItIsConnectedAnApplicationIsExpectedWhereTheUserMovedIt) {
    graph.nodes[application].targetObject = "speakers";
    graph.targets[application] = "headphones";
    EXPECT_EQ(links(), toHeadphonesTap);
    graph.targets[application] = "-1";
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, nothingIsExpectedOfAStreamThatIsNotConnectedAutomatically) {
    graph.nodes[application].autoconnect = false;
    EXPECT_THAT(links(), IsEmpty());
    connect(application, speakers);
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, whatPlaysIntoAVirtualMicrophoneIsNotHeard) {
    connect(application, virtualMicrophone);
    EXPECT_THAT(links(), IsEmpty());
    connect(application, speakers);
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, anotherRecorderOfAnApplicationChangesNothing) {
    addNode(50, "Stream/Input/Audio", "another-recorder");
    connect(application, 50);
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, whereOthersPlaySaysNothingAboutAnApplication) {
    connect(31, headphones);
    connect(application, 999); // unknown so far
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, aStreamWithoutAClientIsNotOurs) {
    graph.nodes[application].client.reset();
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST(NodeProperties, areReadByTheirNames) {
    Node node;
    readProperties(node, {{"media.class", "Audio/Sink"},
                          {"node.name", "name"},
                          {"node.description", "description"},
                          {"object.serial", "1030"},
                          {"node.link-group", "group"},
                          {"node.target", "older"},
                          {"application.process.id", "4711"},
                          {"node.autoconnect", "true"},
                          {"client.id", "60"}});
    EXPECT_EQ(node.mediaClass, "Audio/Sink");
    EXPECT_EQ(node.name, "name");
    EXPECT_EQ(node.description, "description");
    EXPECT_EQ(node.serial, 1030U);
    EXPECT_EQ(node.linkGroup, "group");
    EXPECT_EQ(node.targetObject, "older");
    EXPECT_EQ(node.processId, "4711");
    EXPECT_TRUE(node.autoconnect);
    EXPECT_FALSE(node.markedAsOwn);
    EXPECT_EQ(node.client, 60U);

    readProperties(node, {{"node.target", "older"},
                          {"target.object", "newer"},
                          {"node.autoconnect", "false"},
                          {ownSoundProperty, "1"},
                          {"client.id", "nonsense"}});
    EXPECT_EQ(node.targetObject, "newer");
    EXPECT_FALSE(node.autoconnect);
    EXPECT_TRUE(node.markedAsOwn);
    EXPECT_EQ(node.client, 60U) << "an unreadable value changes nothing";
}

TEST(NodeProperties, thatAreMissingSayNo) {
    Node node;
    readProperties(node, {});
    EXPECT_FALSE(node.autoconnect);
    EXPECT_FALSE(node.markedAsOwn);
    EXPECT_FALSE(node.client);
}

TEST(Graph, permitsNothingUntilTheServerReplies) {
    const Graph graph;
    EXPECT_FALSE(graph.mayExecute);
    EXPECT_FALSE(graph.canMakeLinks);
}

TEST_F(GraphRules, anApplicationWithoutPortsOrTapWaits) {
    connect(application, headphones);
    own.tapOfOutput.erase(identity(headphones));
    EXPECT_THAT(links(), IsEmpty());
}

TEST_F(GraphRules, recreatedPortsAreLinkedAgain) {
    connect(application, speakers);
    graph.ports.erase(200);
    graph.ports.erase(201);
    EXPECT_THAT(links(), IsEmpty());
    graph.ports[205] = {application, PortDirection::output, "MONO"};
    EXPECT_EQ(links(), (LinkedIds{{205, 100}, {205, 101}}));
}

TEST_F(GraphRules, ourOwnSoundIsLeftOutHoweverItIsKnown) {
    const Graph foreign = graph;
    const auto expectOwn = [&] {
        EXPECT_THAT(links(), IsEmpty());
        EXPECT_EQ(links(false), toSpeakersTap);
        graph = foreign;
    };
    graph.nodes[application].client = self.client;
    expectOwn();
    graph.clients[applicationClient].processId = "4711";
    expectOwn();
    graph.nodes[application].processId = "4711";
    expectOwn();
    graph.nodes[application].markedAsOwn = true;
    expectOwn();
    graph.clients[applicationClient].processId = "471";
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, whatPassesOnAnOutputIsNotHeardTwice) {
    graph.nodes[application].linkGroup = "loopback-1";
    EXPECT_EQ(links(), toSpeakersTap);
    graph.nodes[microphoneStream].linkGroup = "loopback-1";
    connect(microphone, microphoneStream);
    EXPECT_EQ(links(), toSpeakersTap) << "a microphone that is played back is heard but once";
    graph.nodes[headphones].linkGroup = "loopback-1";
    EXPECT_THAT(links(), IsEmpty());
}

TEST_F(GraphRules, allChannelsOfTheMicrophoneReachItsStream) {
    graph.nodes.erase(application);
    own.microphone = Microphone{.device = identity(microphone), .channel = {}};
    own.microphoneStream = microphoneStream;
    EXPECT_EQ(links(), (LinkedIds{{300, 310}, {301, 310}}));
    own.microphoneStream = std::nullopt;
    EXPECT_THAT(links(), IsEmpty());
}

TEST_F(GraphRules, objectThatReusesTheMicrophonesIdIsNotLinked) {
    graph.nodes.erase(application);
    own.microphone = Microphone{.device = identity(microphone), .channel = {}};
    own.microphoneStream = microphoneStream;
    const Graph before = graph;

    struct Case {
        const char* mediaClass;
        std::uint64_t serial;
        bool isStillThere;
    };

    const std::uint64_t serial = own.microphone->device.serial;
    for (const Case& now :
         {Case{"Audio/Source", serial, true}, Case{"Audio/Duplex", serial, true},
          Case{"Audio/Source/Virtual", serial, true}, Case{"Audio/Source", serial + 1, false},
          Case{"Audio/Sink", serial + 1, false}, Case{"Audio/Sink", serial, false},
          Case{"", serial, false}}) {
        graph = before;
        graph.nodes[microphone].mediaClass = now.mediaClass;
        graph.nodes[microphone].serial = now.serial;
        EXPECT_EQ(deviceOf(graph, *own.microphone) != nullptr, now.isStillThere);
        EXPECT_EQ(links().size(), now.isStillThere ? 2U : 0U) << now.mediaClass << now.serial;
    }
    graph.nodes.erase(microphone);
    EXPECT_EQ(deviceOf(graph, *own.microphone), nullptr);
    EXPECT_THAT(links(), IsEmpty());
}

TEST_F(GraphRules, objectThatReusesAnIdIsLinkedAgain) {
    connect(application, speakers);
    graph.ports[200].serial = 5;
    const auto before = wantedLinks(graph, self, own, true);
    graph.ports[200].serial = 6;
    const auto after = wantedLinks(graph, self, own, true);
    EXPECT_TRUE(before.contains({{200, 5}, {100, 0}}));
    EXPECT_FALSE(after.contains({{200, 5}, {100, 0}}));
    EXPECT_TRUE(after.contains({{200, 6}, {100, 0}}));
}

TEST_F(GraphRules, anOutputThatReusesAnIdDoesNotGetTheOldTap) {
    connect(application, speakers);
    graph.nodes[speakers].serial = 5000;
    EXPECT_THAT(outputs(graph), ElementsAre(Identity{speakers, 5000}, identity(headphones)));
    EXPECT_THAT(links(), IsEmpty());
    own.tapOfOutput.emplace(identity(speakers), speakersTap);
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, aClientThatReusesAnIdDoesNotOwnTheOldStream) {
    graph.nodes[application].client = self.client;
    graph.nodes[application].serial = 70;
    graph.clients[*self.client] = {.processId = "4711", .serial = 69};
    EXPECT_THAT(links(), IsEmpty());
    graph.clients[*self.client].serial = 71;
    EXPECT_EQ(links(), toSpeakersTap);
}

TEST_F(GraphRules, outputsAreSinksOnly) {
    EXPECT_THAT(outputs(graph), ElementsAre(identity(speakers), identity(headphones)));
}

TEST(ReadProperties, updatesNamedFieldsAndKeepsTheRest) {
    Node node;
    readProperties(node, {{"media.class", "Audio/Sink"},
                          {"node.name", "a"},
                          {"client.id", "35"},
                          {"object.serial", "5000000000"}});
    readProperties(node, {{"node.link-group", "g"},
                          {"node.target", "old"},
                          {"node.autoconnect", "true"},
                          {"vantoro.own", "true"}});
    EXPECT_EQ(node.mediaClass, "Audio/Sink");
    EXPECT_EQ(node.client, 35U);
    EXPECT_EQ(node.serial, 5000000000U);
    EXPECT_EQ(node.linkGroup, "g");
    EXPECT_EQ(node.targetObject, "old");
    EXPECT_TRUE(node.autoconnect);
    EXPECT_TRUE(node.markedAsOwn);
    readProperties(node, {{"node.target", "old"}, {"target.object", "new"}});
    EXPECT_EQ(node.targetObject, "new");
}

} // namespace
} // namespace vantoro::testing
