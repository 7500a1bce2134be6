// SPDX-License-Identifier: GPL-3.0-or-later

#include "chosen_mutant.h"

#include <array>
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>

namespace {

constexpr std::size_t mostMutants = 65536;

int chosenByEnvironment() {
    const char* const number = std::getenv("VANTORO_MUTANT");
    return number == nullptr ? 0 : std::atoi(number);
}

// A file in memory, so that what a process came by that died is known too.
unsigned char* reachedByEnvironment() {
    static std::array<unsigned char, mostMutants> nowhere;
    const char* const path = std::getenv("VANTORO_MUTANTS_REACHED");
    if (path == nullptr) {
        return nowhere.data();
    }
    void* const memory =
        mmap(nullptr, mostMutants, PROT_READ | PROT_WRITE, MAP_SHARED, open(path, O_RDWR), 0);
    if (memory == MAP_FAILED) {
        std::abort();
    }
    return static_cast<unsigned char*>(memory);
}

} // namespace

const int vantoroChosenMutant = chosenByEnvironment();
volatile unsigned char* const vantoroReached = reachedByEnvironment();
