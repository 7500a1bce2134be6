// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "control/ports/power_management.h"

namespace vantoro::testing {

class FakePower final : public PowerManagement {
public:
    std::vector<std::string> reasons; ///< of each hold, in order

    /// What the system does before it sleeps.
    void sleep() {
        if (willSleep_) {
            willSleep_();
        }
    }

    void wake() {
        if (didWake_) {
            didWake_();
        }
    }

    bool isHeldOff() const { return holds_ > 0; }

    bool isObserved() const { return static_cast<bool>(willSleep_); }

    std::unique_ptr<PowerObservation> observe(std::function<void()> willSleep,
                                              std::function<void()> didWake) override {
        willSleep_ = std::move(willSleep);
        didWake_ = std::move(didWake);
        return std::make_unique<Observation>(*this);
    }

    std::unique_ptr<SleepHold> holdOffSleep(const std::string& reason) override {
        reasons.push_back(reason);
        return std::make_unique<Hold>(holds_);
    }

private:
    struct Observation final : PowerObservation {
        explicit Observation(FakePower& observedPower) : power(observedPower) {}

        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;

        ~Observation() override {
            power.willSleep_ = nullptr;
            power.didWake_ = nullptr;
        }

        FakePower& power;
    };

    struct Hold final : SleepHold {
        explicit Hold(int& holds) : all(holds) { ++all; }

        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

        ~Hold() override { --all; }

        int& all;
    };

    std::function<void()> willSleep_;
    std::function<void()> didWake_;
    int holds_ = 0;
};

} // namespace vantoro::testing
