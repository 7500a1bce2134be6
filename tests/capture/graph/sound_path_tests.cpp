// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/sound_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "capture/graph/channel_fold.h"
#include "capture/graph/graph_rules.h"

namespace vantoro::testing {
namespace {

using namespace capture;

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// A desktop's graph, described by names. Ports are created when linked.
class Desktop {
public:
    void output(const std::string& name, bool isOfDevice = false) {
        const ObjectId id = add(name, "Audio/Sink");
        graph_.nodes[id].isOfDevice = isOfDevice;
        const ObjectId tap = add("tap of " + name, "Stream/Input/Audio");
        for (const std::string_view channel : tapChannels) {
            port(tap, PortDirection::input, std::string(channel));
        }
        own_.tapOfOutput[{id, graph_.nodes[id].serial}] = tap;
    }

    ObjectId add(const std::string& name, const std::string& mediaClass,
                 const std::string& group = {}) {
        const ObjectId id = next_++;
        Node node;
        node.name = name;
        node.mediaClass = mediaClass;
        node.linkGroup = group;
        node.serial = id + 1000;
        graph_.nodes[id] = node;
        names_[name] = id;
        return id;
    }

    /// Ends are "node" or "node:channel".
    void link(const std::string& from, const std::string& to) {
        const ObjectId output = portCalled(from, PortDirection::output);
        const ObjectId input = portCalled(to, PortDirection::input);
        graph_.links[next_++] = {.outputNode = graph_.ports[output].node,
                                 .inputNode = graph_.ports[input].node,
                                 .outputPort = output,
                                 .inputPort = input};
    }

    /// A player linked to both sides of an output.
    void play(const std::string& name, const std::string& output) {
        add(name, "Stream/Output/Audio");
        link(name + ":FL", output + ":FL");
        link(name + ":FR", output + ":FR");
    }

    Node& node(const std::string& name) { return graph_.nodes.at(names_.at(name)); }

    Graph& graph() { return graph_; }

    ObjectId id(const std::string& name) const { return names_.at(name); }

    /// The recorded links, as "node:channel > output:tap channel".
    std::set<std::string> recorded() const {
        std::set<std::string> result;
        for (const PortLink& link :
             wantedLinks(graph_, {.client = 1, .processId = "1"}, own_, true)) {
            std::string tap = textOf(link.input.id);
            tap.erase(0, std::string("tap of ").size());
            result.insert(textOf(link.output.id) + " > " + tap);
        }
        return result;
    }

private:
    ObjectId port(ObjectId node, PortDirection direction, const std::string& channel) {
        const ObjectId id = next_++;
        graph_.ports[id] = {.node = node, .direction = direction, .channel = channel};
        return id;
    }

    ObjectId portCalled(const std::string& name, PortDirection direction) {
        const auto colon = name.find(':');
        const ObjectId node = names_.at(name.substr(0, colon));
        const std::string channel = colon == std::string::npos ? "" : name.substr(colon + 1);
        for (const auto& [id, known] : graph_.ports) {
            if (known.node == node && known.direction == direction && known.channel == channel) {
                return id;
            }
        }
        return port(node, direction, channel);
    }

    std::string textOf(ObjectId id) const {
        const Port& port = graph_.ports.at(id);
        return graph_.nodes.at(port.node).name + ":" + port.channel;
    }

    Graph graph_;
    OwnNodes own_;
    std::map<std::string, ObjectId> names_;
    ObjectId next_ = 10;
};

class SoundPathTest : public ::testing::Test {
protected:
    SoundPathTest() {
        desktop.output("speakers");
        desktop.output("headphones");
        desktop.add("mic", "Audio/Source");
    }

    Desktop desktop;
};

TEST_F(SoundPathTest, aClientWithoutAClassIsHeardOnThePortsThatItIsLinkedTo) {
    desktop.add("metronome", "");
    EXPECT_THAT(desktop.recorded(), IsEmpty()) << "linked to nothing, it is not heard";
    desktop.link("metronome", "headphones:FL");
    EXPECT_THAT(desktop.recorded(), ElementsAre("metronome: > headphones:FL"));
    desktop.link("metronome", "headphones:FR");
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("metronome: > headphones:FL", "metronome: > headphones:FR"));
}

TEST_F(SoundPathTest, portsOnOutputsWithoutPositionsKeepTheirOwnOrTheOrder) {
    desktop.add("synthesizer", "");
    desktop.link("synthesizer:FL", "speakers:AUX0");
    desktop.link("synthesizer:FR", "speakers:AUX1");
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("synthesizer:FL > speakers:FL", "synthesizer:FR > speakers:FR"));
    desktop.graph().links.clear();
    desktop.link("synthesizer:AUX7", "speakers:AUX1");
    desktop.link("synthesizer:AUX8", "speakers:AUX0");
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("synthesizer:AUX7 > speakers:FR", "synthesizer:AUX8 > speakers:FL"));
}

TEST_F(SoundPathTest, lastClientInAChainIsHeard) {
    desktop.add("synthesizer", "");
    desktop.add("reverb", "");
    desktop.link("synthesizer", "reverb:in");
    desktop.link("reverb:L", "speakers:FL");
    EXPECT_THAT(desktop.recorded(), ElementsAre("reverb:L > speakers:FL"));
    desktop.link("synthesizer", "speakers:FR"); // and directly as well
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("reverb:L > speakers:FL", "synthesizer: > speakers:FR"));
}

TEST_F(SoundPathTest, aPortThatIsHeardOnTwoOutputsIsRecordedOnce) {
    desktop.add("metronome", "");
    desktop.link("metronome", "headphones:FL");
    desktop.link("metronome", "speakers:FR");
    EXPECT_THAT(desktop.recorded(), ElementsAre("metronome: > speakers:FR"));
}

TEST_F(SoundPathTest, aMicrophoneThatIsLinkedToAnOutputByHandIsHeard) {
    desktop.link("mic:MONO", "speakers:FL");
    desktop.link("mic:MONO", "speakers:FR");
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("mic:MONO > speakers:FL", "mic:MONO > speakers:FR"));
}

TEST_F(SoundPathTest, aStreamThatPlaysIntoAFilterIsHeardBehindIt) {
    desktop.play("player", "speakers");
    desktop.graph().links.clear();
    desktop.node("player").autoconnect = true;
    desktop.graph().defaultOutput = "speakers";
    desktop.add("equalizer", "");
    desktop.link("player:FL", "equalizer:in");
    desktop.link("equalizer:out", "speakers:FL");
    EXPECT_THAT(desktop.recorded(), ElementsAre("equalizer:out > speakers:FL"));
}

TEST_F(SoundPathTest, filtersBehindAnOutputsMonitorPassOnWhatWasPlayedToIt) {
    desktop.output("effects");
    desktop.play("player", "effects");
    desktop.add("equalizer", "");
    desktop.add("limiter", "");
    desktop.link("effects:FL", "equalizer:in");
    desktop.link("equalizer:out", "limiter:in");
    desktop.link("limiter:out", "speakers:FL");
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("player:FL > effects:FL", "player:FR > effects:FR"));
}

TEST_F(SoundPathTest, outputsThatAreLinkedToOneAnotherPassOnWhatIsPlayed) {
    desktop.play("player", "headphones");
    desktop.link("headphones:FL", "speakers:FL");
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("player:FL > headphones:FL", "player:FR > headphones:FR"));
}

/// A capture and a playback stream of one link group.
class SoundPathOfPair : public SoundPathTest {
protected:
    SoundPathOfPair() {
        desktop.add("listener", "Stream/Input/Audio", "pair");
        desktop.add("talker", "Stream/Output/Audio", "pair");
        desktop.node("talker").autoconnect = true;
        desktop.graph().defaultOutput = "headphones";
        desktop.play("player", "speakers");
    }

    std::set<std::string> ofPair() const {
        auto recorded = desktop.recorded();
        std::erase_if(recorded,
                      [](const std::string& link) { return !link.starts_with("talker"); });
        return recorded;
    }
};

TEST_F(SoundPathOfPair, whatListensToAnOutputIsNotHeardTwice) {
    desktop.link("speakers:FL", "listener:FL");
    desktop.link("talker:FL", "headphones:FL");
    EXPECT_THAT(desktop.recorded(),
                ElementsAre("player:FL > speakers:FL", "player:FR > speakers:FR"));
}

TEST_F(SoundPathOfPair, whatListensToAMicrophoneIsHeard) {
    desktop.link("mic:MONO", "listener:FL");
    desktop.link("talker:FL", "headphones:FL");
    EXPECT_THAT(ofPair(), ElementsAre("talker:FL > headphones:FL"));
}

TEST_F(SoundPathOfPair, isIgnoredBeforeItListens) {
    desktop.link("talker:FL", "headphones:FL");
    desktop.graph().links.erase(std::prev(desktop.graph().links.end())); // the port stays
    EXPECT_THAT(ofPair(), IsEmpty());
    desktop.link("mic:MONO", "listener:FL");
    EXPECT_THAT(ofPair(), ElementsAre("talker:FL > headphones:FL"));
}

TEST_F(SoundPathOfPair, theOutputOfItsGroupIsItsOtherSide) {
    desktop.output("combined");
    desktop.node("combined").linkGroup = "pair";
    desktop.link("talker:FL", "headphones:FL");
    desktop.link("mic:MONO", "listener:FL"); // an echo canceller's, for its other output
    EXPECT_THAT(ofPair(), IsEmpty());
}

TEST_F(SoundPathOfPair, aMicrophoneOfTheGroupGivesWhatItsListenerTakes) {
    desktop.output("echo canceller's output");
    desktop.node("echo canceller's output").linkGroup = "pair";
    desktop.add("cleaned", "Audio/Source", "pair");
    desktop.link("mic:MONO", "listener:FL");
    desktop.link("cleaned:FL", "headphones:FL");
    EXPECT_TRUE(desktop.recorded().contains("cleaned:FL > headphones:FL"));
}

TEST_F(SoundPathOfPair, aMicrophoneOfTheGroupPassesOnWhatItsListenerHears) {
    desktop.add("virtual microphone", "Audio/Source", "pair");
    desktop.link("speakers:FL", "listener:FL");
    desktop.link("virtual microphone:FL", "headphones:FL");
    EXPECT_FALSE(desktop.recorded().contains("virtual microphone:FL > headphones:FL"));
}

TEST_F(SoundPathOfPair, whatListensToAPairIsBehindItToo) {
    desktop.link("speakers:FL", "listener:FL");
    desktop.add("filter", "");
    desktop.link("talker:FL", "filter:in");
    desktop.link("filter:out", "headphones:FL");
    EXPECT_FALSE(desktop.recorded().contains("filter:out > headphones:FL"));
}

/// A mixer that takes an output's sound and the microphone.
class SoundPathOfMix : public SoundPathTest {
protected:
    SoundPathOfMix() {
        desktop.output("virtual");
        desktop.play("player", "virtual");
        desktop.add("desk", "");
        desktop.link("virtual:FL", "desk:1");
        desktop.link("mic:MONO", "desk:2");
        desktop.link("desk:out", "speakers:FL");
    }

    const std::set<std::string> player{"player:FL > virtual:FL", "player:FR > virtual:FR"};
    const std::set<std::string> desk{"desk:out > speakers:FL"};

    static std::set<std::string> both(std::set<std::string> one, std::set<std::string> other) {
        one.merge(other);
        return one;
    }
};

TEST_F(SoundPathOfMix, replacesOutputsHeardOnlyInIt) {
    EXPECT_EQ(desktop.recorded(), desk);
}

TEST_F(SoundPathOfMix, doesNotReplaceADevicesOutput) {
    desktop.node("virtual").isOfDevice = true;
    EXPECT_EQ(desktop.recorded(), both(desk, player));
}

TEST_F(SoundPathOfMix, doesNotReplaceAnOutputThatIsPassedOnElsewhere) {
    desktop.add("filter", "");
    desktop.link("virtual:FL", "filter:in");
    desktop.link("filter:out", "headphones:FL");
    EXPECT_EQ(desktop.recorded(), both(desk, player));
}

TEST_F(SoundPathOfMix, doesNotReplaceAnOutputLinkedToAnotherByHand) {
    desktop.link("virtual:FL", "headphones:FL");
    EXPECT_EQ(desktop.recorded(), both(desk, player));
}

TEST_F(SoundPathOfMix, ofOurOwnChangesNothing) {
    desktop.node("desk").client = 1;
    EXPECT_EQ(desktop.recorded(), player);
}

TEST_F(SoundPathOfMix, losesNothingWhenTwoMixEachOther) {
    desktop.output("second");
    desktop.add("second desk", "");
    desktop.link("second:FL", "second desk:1");
    desktop.link("mic:MONO", "second desk:2");
    desktop.link("second desk:out", "virtual:FL");
    desktop.graph().links.erase(std::ranges::find_if(desktop.graph().links, [&](const auto& entry) {
        return entry.second.outputNode == desktop.id("desk");
    }));
    desktop.link("desk:out", "second:FL");
    const auto recorded = desktop.recorded();
    EXPECT_TRUE(std::ranges::includes(recorded, player));
    EXPECT_TRUE(recorded.contains("desk:out > second:FL"));
    EXPECT_TRUE(recorded.contains("second desk:out > virtual:FL"));
}

TEST_F(SoundPathTest, whatListensToTheOutputThatItPlaysToDoesNotPassItOn) {
    desktop.play("player", "speakers");
    desktop.add("workstation", "");
    desktop.link("speakers:FL", "workstation:in");
    desktop.link("workstation:out", "speakers:FL");
    EXPECT_THAT(desktop.recorded(),
                UnorderedElementsAre("player:FL > speakers:FL", "player:FR > speakers:FR",
                                     "workstation:out > speakers:FL"));
}

TEST_F(SoundPathTest, aRingOfFiltersWithoutASourceIsSilent) {
    desktop.add("one", "");
    desktop.add("other", "");
    desktop.link("one:out", "other:in");
    desktop.link("other:out", "one:in");
    desktop.link("other:out", "speakers:FL");
    EXPECT_THAT(desktop.recorded(), IsEmpty());
}

TEST_F(SoundPathTest, codedSoundOnItsWayToAnOutputIsNoticed) {
    desktop.add("player", "Stream/Output/Audio");
    Graph& graph = desktop.graph();
    graph.undividedPorts = {900, 901};
    EXPECT_FALSE(playsCodedSound(graph));
    graph.links[902] = {.outputNode = desktop.id("player"),
                        .inputNode = desktop.id("mic"),
                        .outputPort = 900,
                        .inputPort = 901};
    EXPECT_FALSE(playsCodedSound(graph)) << "not heard on any output";
    graph.links[902].inputNode = desktop.id("speakers");
    EXPECT_TRUE(playsCodedSound(graph));
    EXPECT_THAT(desktop.recorded(), IsEmpty());
    graph.undividedPorts = {901};
    EXPECT_FALSE(playsCodedSound(graph));
}

} // namespace
} // namespace vantoro::testing
