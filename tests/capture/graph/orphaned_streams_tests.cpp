// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/orphaned_streams.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

class OrphanedStreamsTest : public ::testing::Test {
protected:
    static constexpr ObjectId speakers = 10;
    static constexpr ObjectId tap = 20;
    static constexpr ObjectId player = 30;
    static constexpr ObjectId manager = 40;

    void SetUp() override {
        addNode(speakers, "Audio/Sink");
        addNode(tap, "Stream/Input/Audio");
        addNode(player, "Stream/Output/Audio").autoconnect = true;
        addPort(300, player, PortDirection::output);
        addPort(200, tap, PortDirection::input);
        addPort(310, speakers, PortDirection::output);
        graph.defaultsOfSessionManager = manager;
        connect(player, speakers);
        connect(player, tap);
        update();
    }

    Node& addNode(ObjectId id, const char* mediaClass) {
        Node& node = graph.nodes[id];
        node.mediaClass = mediaClass;
        node.serial = id + 1000;
        return node;
    }

    void addPort(ObjectId id, ObjectId node, PortDirection direction) {
        Port& port = graph.ports[id];
        port.node = node;
        port.direction = direction;
        port.serial = id + 1000;
    }

    void connect(ObjectId from, ObjectId to) {
        Link& link = graph.links[1000 + (from * 100) + to];
        link.outputNode = from;
        link.inputNode = to;
    }

    void disconnect(ObjectId from, ObjectId to) { graph.links.erase(1000 + (from * 100) + to); }

    void update(double second = 0) {
        orphans.update(graph, static_cast<std::uint64_t>((100 + second) * 1e9));
    }

    /// Whether the player is still recorded.
    bool isTaken() {
        const PortLink fromPlayer{{300, 1300}, {200, 1200}};
        const PortLink another{{310, 1310}, {200, 1200}};
        std::set<PortLink> wanted{fromPlayer, another};
        orphans.removeOrphans(wanted, graph);
        EXPECT_TRUE(wanted.contains(another));
        return wanted.contains(fromPlayer);
    }

    /// Its links go with it.
    void endManager() {
        graph.defaultsOfSessionManager.reset();
        disconnect(player, speakers);
        update();
    }

    Graph graph;
    OrphanedStreams orphans;
};

TEST_F(OrphanedStreamsTest, takesNothingAwayWhileASessionManagerIsThere) {
    EXPECT_TRUE(isTaken());
    disconnect(player, speakers); // moving to another output
    update();
    EXPECT_TRUE(isTaken());
}

TEST_F(OrphanedStreamsTest, leavesAStreamAloneUntilItIsConnectedAgain) {
    endManager();
    EXPECT_FALSE(isTaken());
    graph.defaultsOfSessionManager = manager + 1;
    update();
    EXPECT_FALSE(isTaken());
    disconnect(player, tap);
    update();
    EXPECT_FALSE(isTaken());
    connect(player, speakers);
    update();
    EXPECT_TRUE(isTaken());
    disconnect(player, speakers);
    update();
    EXPECT_TRUE(isTaken()) << "no longer an orphan";
}

TEST_F(OrphanedStreamsTest, leavesAloneWhatComesWhileThereIsNoSessionManager) {
    graph.defaultsOfSessionManager.reset();
    update();
    EXPECT_TRUE(isTaken()) << "still connected";
    graph.nodes[player].serial = 7;
    disconnect(player, speakers);
    update();
    EXPECT_FALSE(isTaken());
}

TEST_F(OrphanedStreamsTest, forgetsAStreamThatHasGone) {
    endManager();
    graph.defaultsOfSessionManager = manager + 1;
    graph.nodes[player].serial = 7; // another node in its place
    update();
    EXPECT_TRUE(isTaken());
}

TEST_F(OrphanedStreamsTest, leavesWhatConnectsItselfAsItIs) {
    graph.nodes[player].autoconnect = false;
    endManager();
    EXPECT_TRUE(isTaken());
}

TEST_F(OrphanedStreamsTest, awaitsTheSessionManagerForFiveSeconds) {
    EXPECT_FALSE(orphans.awaitsManager());
    graph.defaultsOfSessionManager.reset();
    update(10);
    EXPECT_TRUE(orphans.awaitsManager());
    update(14.999);
    EXPECT_TRUE(orphans.awaitsManager());
    update(15);
    EXPECT_FALSE(orphans.awaitsManager());
    graph.defaultsOfSessionManager = manager + 1;
    update(20);
    EXPECT_FALSE(orphans.awaitsManager());
    graph.defaultsOfSessionManager.reset();
    update(21);
    EXPECT_TRUE(orphans.awaitsManager());
    graph.defaultsOfSessionManager = manager + 2;
    update(22);
    EXPECT_FALSE(orphans.awaitsManager());
}

TEST_F(OrphanedStreamsTest, knowsOfNoOrphansWhereNoSessionManagerEverWas) {
    orphans = {};
    endManager();
    EXPECT_TRUE(isTaken());
    EXPECT_FALSE(orphans.awaitsManager());
}

} // namespace
} // namespace vantoro::testing
