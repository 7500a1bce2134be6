// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/parallel_coding.h"

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

/// Chunks that threads code ahead of the one who takes them in their order.
class Workshop {
public:
    Workshop(const Coding& coding, const Mix& mix, std::int64_t firstChunk, unsigned threads,
             std::stop_token stop)
        : coding_(coding),
          mix_(mix),
          stop_(std::move(stop)),
          chunks_(chunksOf(framesOf(mix))),
          largestLead_(2 * std::int64_t{threads}),
          claimed_(firstChunk),
          taken_(firstChunk) {
        for (unsigned thread = 0; thread < threads && thread < chunks_ - firstChunk; ++thread) {
            try {
                workers_.emplace_back([this](const std::stop_token& ended) { work(ended); });
            } catch (const std::system_error&) {
                break; // there are no more threads to be had
            }
        }
    }

    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    ~Workshop() {
        for (std::jthread& worker : workers_) { // all of them, before the first is waited for
            worker.request_stop();
        }
    }

    std::int64_t chunks() const noexcept { return chunks_; }

    /// The next chunk. Meanwhile `packetsDone` is told of how many packets are coded.
    CodedChunk take(const std::function<void(std::int64_t)>& packetsDone) {
        if (workers_.empty()) {
            auto chunk = codeChunk(coding_, mix_, taken_++, stop_, [this] { ++packetsDone_; });
            throwIfStopped(stop_);
            packetsDone(packetsDone_);
            return chunk;
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
                room_.notify_all();
                return std::move(node.mapped());
            }
        }
    }

private:
    static constexpr std::int64_t reportInterval = 32;

    void work(const std::stop_token& stop) {
        try {
            while (const auto chunk = claim(stop)) {
                auto coded = codeChunk(coding_, mix_, *chunk, stop, [this] { countPacket(); });
                const std::scoped_lock lock(mutex_);
                done_.emplace(*chunk, std::move(coded));
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
        const bool mayGoOn = room_.wait(lock, stop, [this] {
            return failure_ || claimed_ == chunks_ || claimed_ < taken_ + largestLead_;
        });
        if (!mayGoOn || stop.stop_requested() || failure_ || claimed_ == chunks_) {
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

    const Coding& coding_;
    const Mix& mix_;
    const std::stop_token stop_; // of the one who takes the chunks
    const std::int64_t chunks_;
    const std::int64_t
        largestLead_; // of what is claimed before what is taken: it is kept in memory

    std::mutex mutex_; // guards all below but the threads
    std::condition_variable_any room_;
    std::condition_variable_any changed_;
    std::int64_t claimed_;
    std::int64_t taken_;
    std::int64_t packetsDone_ = 0;
    std::map<std::int64_t, CodedChunk> done_;
    std::exception_ptr failure_;

    std::vector<std::jthread> workers_; // last: they use the above
};

} // namespace

void codeInParallel(const Coding& coding, const Mix& mix, std::int64_t firstChunk, unsigned threads,
                    ChunkSplicer& splicer, const ExportProgress& progress,
                    const std::stop_token& stop) {
    const auto packets = static_cast<double>(packetsOf(framesOf(mix)));
    std::int64_t reported = -1;
    const auto report = [&](std::int64_t done) {
        if (progress && done > reported) {
            progress(std::min(1.0, static_cast<double>(done) / packets));
            reported = done;
        }
    };
    const std::int64_t packetsBefore = firstChunk * chunkPackets;
    report(packetsBefore); // before any of it can be done
    Workshop workshop(coding, mix, firstChunk, std::max(threads, 1U), stop);
    for (std::int64_t chunk = firstChunk; chunk < workshop.chunks(); ++chunk) {
        splicer.add(workshop.take([&](std::int64_t done) { report(packetsBefore + done); }));
        report((chunk + 1) * chunkPackets);
    }
    splicer.finish();
}

} // namespace vantoro::media
