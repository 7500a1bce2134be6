// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/parallel_encoding.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <stop_token>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "media/movie/stopping.h"

namespace vantoro::media {

namespace {

/// Threads that code segments ahead of the thread that takes them in order.
class SegmentWorkers {
public:
    SegmentWorkers(const AacCodec& codec, const Mix& mix, std::int64_t firstSegment,
                   unsigned threads, std::stop_token stop)
        : codec_(codec),
          mix_(mix),
          stop_(std::move(stop)),
          segments_(segmentsOf(framesOf(mix))),
          maxLead_(2 * std::int64_t{threads}),
          claimed_(firstSegment),
          taken_(firstSegment) {
        for (unsigned thread = 0; thread < threads && thread < segments_ - firstSegment; ++thread) {
            try {
                workers_.emplace_back([this](const std::stop_token& ended) { work(ended); });
            } catch (const std::system_error&) {
                break; // no more threads are available
            }
        }
    }

    SegmentWorkers(const SegmentWorkers&) = delete;
    SegmentWorkers& operator=(const SegmentWorkers&) = delete;

    ~SegmentWorkers() {
        for (std::jthread& worker : workers_) { // stop all before joining the first
            worker.request_stop();
        }
    }

    std::int64_t segments() const noexcept { return segments_; }

    /// The next segment. While it waits it calls `packetsDone` with the number of packets encoded.
    EncodedSegment take(const std::function<void(std::int64_t)>& packetsDone) {
        if (workers_.empty()) {
            auto segment = encode(taken_++, stop_, [this] { ++packetsDone_; });
            throwIfStopped(stop_);
            packetsDone(packetsDone_);
            return segment;
        }
        std::unique_lock lock(mutex_);
        for (;;) {
            const std::int64_t done = packetsDone_;
            lock.unlock();
            packetsDone(done);
            lock.lock();
            changed_.wait(lock, stop_, [&] {
                return failure_ || done_.contains(taken_) || packetsDone_ >= done + reportInterval;
            });
            throwIfStopped(stop_);
            if (failure_) {
                std::rethrow_exception(failure_);
            }
            if (auto node = done_.extract(taken_)) {
                ++taken_;
                leadShrank_.notify_all();
                return std::move(node.mapped());
            }
        }
    }

private:
    static constexpr std::int64_t reportInterval = 32;

    /// One whole segment; incomplete after a stop request.
    EncodedSegment encode(std::int64_t segment, const std::stop_token& stop,
                          const std::function<void()>& packetDone) const {
        SegmentEncoder encoder(codec_, mix_, segment);
        encoder.encode(framesOf(mix_), stop, packetDone);
        return encoder.take();
    }

    void work(const std::stop_token& stop) {
        try {
            while (const auto segment = claim(stop)) {
                auto encoded = encode(*segment, stop, [this] { countPacket(); });
                const std::scoped_lock lock(mutex_);
                done_.emplace(*segment, std::move(encoded));
                changed_.notify_one();
            }
        } catch (...) {
            const std::scoped_lock lock(mutex_);
            failure_ = std::current_exception();
            changed_.notify_one();
        }
    }

    std::optional<std::int64_t> claim(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        const bool canContinue = leadShrank_.wait(lock, stop, [this] {
            return failure_ || claimed_ == segments_ || claimed_ < taken_ + maxLead_;
        });
        if (!canContinue || stop.stop_requested() || failure_ || claimed_ == segments_) {
            return std::nullopt;
        }
        return claimed_++;
    }

    void countPacket() {
        const std::scoped_lock lock(mutex_);
        if (++packetsDone_ % reportInterval == 0) {
            changed_.notify_one();
        }
    }

    const AacCodec& codec_;
    const Mix& mix_;
    const std::stop_token stop_; // of the thread that takes the segments
    const std::int64_t segments_;
    const std::int64_t maxLead_; // of what is claimed before what is taken: it is kept in memory

    std::mutex mutex_; // guards all below except the threads
    std::condition_variable_any leadShrank_;
    std::condition_variable_any changed_;
    std::int64_t claimed_;
    std::int64_t taken_;
    std::int64_t packetsDone_ = 0;
    std::map<std::int64_t, EncodedSegment> done_;
    std::exception_ptr failure_;

    std::vector<std::jthread> workers_; // last, because they use the above
};

} // namespace

void encodeInParallel(const AacCodec& codec, const Mix& mix, std::int64_t firstSegment,
                      unsigned threads, SegmentSplicer& splicer, const ExportProgress& progress,
                      const std::stop_token& stop) {
    const auto packets = static_cast<double>(packetsOf(framesOf(mix)));
    std::int64_t reported = -1;
    const auto report = [&](std::int64_t done) {
        if (progress && done > reported) {
            progress(std::min(1.0, static_cast<double>(done) / packets));
            reported = done;
        }
    };
    const std::int64_t packetsBefore = firstSegment * segmentPackets;
    report(packetsBefore); // before the first packet
    SegmentWorkers workers(codec, mix, firstSegment, std::max(threads, 1U), stop);
    for (std::int64_t segment = firstSegment; segment < workers.segments(); ++segment) {
        splicer.add(workers.take([&](std::int64_t done) { report(packetsBefore + done); }));
        report((segment + 1) * segmentPackets);
    }
    splicer.finish();
}

} // namespace vantoro::media
