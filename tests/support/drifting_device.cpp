// SPDX-License-Identifier: GPL-3.0-or-later

// A sound card whose clock is its own, in the private desktop: a microphone or an output that
// drives its part of the graph at a rate that is off by so many millionths of the true one. Also an
// application for such an output. Until it is ended by a signal; SIGUSR1 makes a device's clock
// stand still for two seconds.
//
//     drifting_device source NAME PPM WANDERING_PPM_A_MINUTE pulses|HERTZ
//     drifting_device sink NAME PPM WANDERING_PPM_A_MINUTE
//     drifting_device player NAME OUTPUT pulses|HERTZ
//
// A pulse is a short tone around each full second of CLOCK_MONOTONIC, whatever the device's clock
// says; a tone has so many hertz by the device's clock, that is to say exactly as many as a device
// without a drift would hear.

#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <numbers>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <sched.h>

#include <spa/param/audio/format-utils.h>

#include "capture/samples/frame_clock.h"
#include "platform/pipewire/connection.h"
#include "tests/support/drifting_clock.h"

namespace vantoro::testing {

namespace {

using namespace vantoro::pipewire;

constexpr double nanosecondsPerSecond = 1e9;
constexpr std::uint64_t secondsOfAStandstill = 2;

/// Newer servers ask for a length of the next cycle, older ones set it.
template <class Clock>
std::uint64_t framesOfNextCycle(const Clock& clock) {
    if constexpr (requires { clock.target_duration; }) {
        return clock.target_duration;
    } else {
        return clock.duration;
    }
}

struct Settings {
    bool isDevice = true;
    bool makesSound = true;
    std::string name;
    std::string output;   ///< that an application plays to
    double frequency = 0; ///< 0: pulses
    double millionths = 0;
    double millionthsAMinute = 0;
};

class Sound {
public:
    /// Between pulses a hum goes on, since no microphone is quite silent.
    explicit Sound(double frequency)
        : isPulses_(frequency == 0),
          step_(2 * std::numbers::pi * (isPulses_ ? 100 : frequency) / capture::framesPerSecond) {}

    /// What is heard from a moment on, at so many frames a nanosecond.
    void fill(std::span<float> samples, double nanoseconds, double frames) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double pulses =
                isPulses_ ? pulse(nanoseconds + (static_cast<double>(i) / frames)) : 0;
            samples[i] = static_cast<float>(pulses + tone());
        }
    }

private:
    double tone() {
        phase_ = std::fmod(phase_ + step_, 2 * std::numbers::pi);
        return (isPulses_ ? 0.001 : 0.5) * std::sin(phase_);
    }

    /// Symmetrical about the second, so that the middle of its energy lies there.
    static double pulse(double nanoseconds) {
        constexpr double width = 0.001; // s
        constexpr double frequency = 2000;
        const double seconds = std::remainder(nanoseconds, nanosecondsPerSecond) * 1e-9;
        return 0.5 * std::exp(-0.5 * std::pow(seconds / width, 2)) *
               std::cos(2 * std::numbers::pi * frequency * seconds);
    }

    bool isPulses_;
    double step_;
    double phase_ = 0;
};

PropertiesPointer propertiesOf(const Settings& settings) {
    PropertiesPointer properties(pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_NODE_NAME,
                                                   settings.name.c_str(), PW_KEY_NODE_DESCRIPTION,
                                                   settings.name.c_str(), nullptr));
    auto* const all = properties.get();
    if (settings.isDevice) {
        pw_properties_set(all, PW_KEY_MEDIA_CLASS,
                          settings.makesSound ? "Audio/Source" : "Audio/Sink");
        pw_properties_set(all, PW_KEY_NODE_DRIVER, "true");
        pw_properties_set(all, PW_KEY_PRIORITY_DRIVER, "3000");
        pw_properties_set(all, "priority.session", "100"); // never the default one
        pw_properties_set(all, "clock.name", settings.name.c_str());
    } else {
        pw_properties_set(all, PW_KEY_MEDIA_CATEGORY, "Playback");
        pw_properties_set(all, "target.object", settings.output.c_str());
    }
    return properties;
}

pw_stream_flags flagsOf(const Settings& settings) {
    constexpr unsigned always = static_cast<unsigned>(PW_STREAM_FLAG_MAP_BUFFERS) |
                                static_cast<unsigned>(PW_STREAM_FLAG_RT_PROCESS);
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): flags are there to combine
    return static_cast<pw_stream_flags>(
        always | (settings.isDevice ? PW_STREAM_FLAG_DRIVER : PW_STREAM_FLAG_AUTOCONNECT));
}

void sleepUntil(double nanoseconds) {
    const timespec until{.tv_sec = static_cast<time_t>(nanoseconds / nanosecondsPerSecond),
                         .tv_nsec =
                             static_cast<long>(std::fmod(nanoseconds, nanosecondsPerSecond))};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr);
}

/// The node, for as long as it lives.
class Node {
public:
    explicit Node(const Settings& settings)
        : settings_(settings),
          sound_(settings.frequency),
          clock_(settings.millionths, settings.millionthsAMinute),
          connection_({.lost = [] { std::quick_exit(1); }, .identified = [] {}}),
          stream_(pw_stream_new(connection_.core(), settings.name.c_str(),
                                propertiesOf(settings).release())) {
        pw_stream_add_listener(stream_.get(), hook_.emplace().get(), &events, this);
        std::array<std::uint8_t, 512> memory{};
        spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
        spa_audio_info_raw info{};
        info.format = SPA_AUDIO_FORMAT_F32P;
        info.rate = static_cast<std::uint32_t>(capture::framesPerSecond);
        info.channels = 1;
        info.position[0] = SPA_AUDIO_CHANNEL_MONO;
        std::array<const spa_pod*, 1> parameters{
            spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
        if (pw_stream_connect(
                stream_.get(), settings.makesSound ? PW_DIRECTION_OUTPUT : PW_DIRECTION_INPUT,
                PW_ID_ANY, flagsOf(settings), parameters.data(), parameters.size()) < 0) {
            throw std::runtime_error("no stream");
        }
        connection_.run();
    }

    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    ~Node() {
        const LoopLock lock(connection_.threadLoop());
        hook_.reset();
        stream_.reset();
    }

    /// One cycle of a device's clock, or a moment without one.
    void cycle() {
        spa_io_clock* const clock = ownClock_.load();
        if (!drives_ || clock == nullptr) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            return;
        }
        const double begin =
            clock_.begin(static_cast<double>(capture::nanosecondsOn(CLOCK_MONOTONIC)));
        sleepUntil(begin);
        const std::uint64_t frames = framesOfNextCycle(*clock);
        clock->nsec = static_cast<std::uint64_t>(begin);
        clock->rate = {1, static_cast<std::uint32_t>(capture::framesPerSecond)};
        clock->position += clock->duration;
        clock->duration = frames;
        clock->delay = 0;
        clock->rate_diff = clock_.rate();
        clock->next_nsec = static_cast<std::uint64_t>(clock_.advance(frames));
        pw_stream_trigger_process(stream_.get());
    }

    void standStill() { clock_.standStill(secondsOfAStandstill * nanosecondsPerSecond); }

private:
    static void stateChanged(void* data, pw_stream_state /*before*/, pw_stream_state now,
                             const char* error) {
        auto& self = *static_cast<Node*>(data);
        if (now == PW_STREAM_STATE_ERROR) {
            std::cerr << "drifting_device: " << (error != nullptr ? error : "failed") << '\n';
        }
        self.drives_ = now == PW_STREAM_STATE_STREAMING && pw_stream_is_driving(self.stream_.get());
    }

    static void ioChanged(void* data, std::uint32_t id, void* area, std::uint32_t /*size*/) {
        auto& self = *static_cast<Node*>(data);
        if (id == SPA_IO_Clock) {
            self.ownClock_ = static_cast<spa_io_clock*>(area);
        } else if (id == SPA_IO_Position) {
            self.position_ = static_cast<spa_io_position*>(area);
        }
    }

    static void process(void* data) {
        auto& self = *static_cast<Node*>(data);
        pw_buffer* const buffer = pw_stream_dequeue_buffer(self.stream_.get());
        const spa_io_position* const position = self.position_.load();
        if (buffer == nullptr || position == nullptr) {
            return;
        }
        if (self.settings_.makesSound) {
            self.make(*buffer, position->clock);
        }
        pw_stream_queue_buffer(self.stream_.get(), buffer);
    }

    void make(const pw_buffer& buffer, const spa_io_clock& clock) {
        const spa_data& target = buffer.buffer->datas[0];
        const std::size_t room = target.maxsize / sizeof(float);
        const std::size_t frames =
            std::min<std::size_t>(room, buffer.requested > 0 ? buffer.requested : clock.duration);
        const double rate = clock.rate_diff > 0 ? clock.rate_diff : 1;
        sound_.fill({static_cast<float*>(target.data), frames}, static_cast<double>(clock.nsec),
                    capture::framesPerSecond * rate / nanosecondsPerSecond);
        target.chunk->offset = 0;
        target.chunk->stride = sizeof(float);
        target.chunk->size = static_cast<std::uint32_t>(frames * sizeof(float));
    }

    static constexpr pw_stream_events events = [] {
        pw_stream_events table{};
        table.version = PW_VERSION_STREAM_EVENTS;
        table.state_changed = stateChanged;
        table.io_changed = ioChanged;
        table.process = process;
        return table;
    }();

    const Settings settings_;
    Sound sound_;
    DriftingClock clock_;
    std::atomic<bool> drives_ = false;
    std::atomic<spa_io_clock*> ownClock_ = nullptr;
    std::atomic<spa_io_position*> position_ = nullptr;
    Connection connection_;
    StreamPointer stream_;
    std::optional<Hook> hook_;
};

volatile std::sig_atomic_t isEnding = 0;
volatile std::sig_atomic_t isToStandStill = 0;

void run(const Settings& settings) {
    Node node(settings);
    while (isEnding == 0) {
        if (!settings.isDevice) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            continue;
        }
        if (isToStandStill != 0) {
            isToStandStill = 0;
            node.standStill();
        }
        node.cycle();
    }
}

Settings settingsOf(const std::vector<std::string>& arguments) {
    const std::string& kind = arguments.at(0);
    Settings settings;
    settings.isDevice = kind != "player";
    settings.makesSound = kind != "sink";
    settings.name = arguments.at(1);
    if (settings.isDevice) {
        settings.millionths = std::stod(arguments.at(2));
        settings.millionthsAMinute = std::stod(arguments.at(3));
    } else {
        settings.output = arguments.at(2);
    }
    if (settings.makesSound && arguments.back() != "pulses") {
        settings.frequency = std::stod(arguments.back());
    }
    return settings;
}

} // namespace

} // namespace vantoro::testing

int main(int count, char** arguments) {
    std::signal(SIGTERM, [](int) { vantoro::testing::isEnding = 1; });
    std::signal(SIGINT, [](int) { vantoro::testing::isEnding = 1; });
    std::signal(SIGUSR1, [](int) { vantoro::testing::isToStandStill = 1; });
    // Before all others, as a sound card is: a busy machine is not to hold its clock up. Where that
    // is not allowed it goes without.
    const sched_param priority{.sched_priority = 20};
    static_cast<void>(sched_setscheduler(0, SCHED_RR, &priority));
    try {
        vantoro::testing::run(vantoro::testing::settingsOf({arguments + 1, arguments + count}));
    } catch (const std::exception& error) {
        std::cerr << "drifting_device: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
