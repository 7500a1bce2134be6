// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/microphones.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

using Presence = FollowedMicrophone::Presence;

const Microphone desk{.device = {.id = 13, .serial = 1013}, .channel = {}};

Node device(const char* name, const char* mediaClass, std::uint64_t serial) {
    Node node;
    node.name = name;
    node.mediaClass = mediaClass;
    node.serial = serial;
    return node;
}

class FollowedMicrophoneTest : public ::testing::Test {
protected:
    Presence after(double seconds) {
        constexpr std::uint64_t now = 7'000'000'000;
        return followed.update(graph, now + static_cast<std::uint64_t>(seconds * 1e9));
    }

    void SetUp() override {
        graph.nodes[13] = device("desk", "Audio/Source", 1013);
        graph.nodes[14] = device("headset", "Audio/Source", 1014);
    }

    Graph graph;
    FollowedMicrophone followed{"desk", desk};
};

TEST_F(FollowedMicrophoneTest, isHereWhileItsNodeIs) {
    EXPECT_EQ(after(0), Presence::here);
    EXPECT_EQ(after(1000), Presence::here);
    EXPECT_EQ(followed.source(), desk);
}

TEST_F(FollowedMicrophoneTest, isGoneAfterFourSecondsAway) {
    graph.nodes.erase(13);
    EXPECT_EQ(after(10), Presence::away);
    EXPECT_EQ(after(13.999), Presence::away);
    EXPECT_EQ(after(14), Presence::gone);
    EXPECT_EQ(followed.source(), desk);
}

TEST_F(FollowedMicrophoneTest, returnsAsANewNodeWithTheSameName) {
    graph.nodes.erase(13);
    EXPECT_EQ(after(0), Presence::away);
    graph.nodes[20] = device("desk", "Audio/Source", 1020);
    EXPECT_EQ(after(3), Presence::here);
    EXPECT_EQ(followed.source(), (Microphone{{.id = 20, .serial = 1020}, ""}));
    graph.nodes.erase(20);
    EXPECT_EQ(after(5), Presence::away) << "the count restarts";
    EXPECT_EQ(after(8.9), Presence::away);
    EXPECT_EQ(after(9), Presence::gone);
}

TEST_F(FollowedMicrophoneTest, returnsWithTheSameId) {
    graph.nodes[13].serial = 1020;
    EXPECT_EQ(after(0), Presence::here);
    EXPECT_EQ(followed.source(), (Microphone{{.id = 13, .serial = 1020}, ""}));
}

TEST_F(FollowedMicrophoneTest, ignoresOtherMicrophonesAndOutputs) {
    graph.nodes[13] = device("other", "Audio/Source", 1020);
    EXPECT_EQ(after(0), Presence::away);
    graph.nodes[13] = device("desk", "Audio/Sink", 1021);
    EXPECT_EQ(after(1), Presence::away);
    EXPECT_EQ(after(4), Presence::gone);
}

TEST_F(FollowedMicrophoneTest, staysTheSameOfTwoWithOneName) {
    graph.nodes[5] = device("desk", "Audio/Source", 1005);
    EXPECT_EQ(after(0), Presence::here);
    EXPECT_EQ(followed.source(), desk);
}

} // namespace
} // namespace vantoro::testing
