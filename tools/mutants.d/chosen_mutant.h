// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// Of the program that all mutants were built into: the number of the one that it is to be, 0 for
/// none.
extern const int vantoroChosenMutant;
/// For each number, whether the program came by.
extern volatile unsigned char* const vantoroReached;

inline bool vantoroMutant(int number) noexcept {
    vantoroReached[number] = 1;
    return number == vantoroChosenMutant;
}

/// For what the compiler may calculate as well.
constexpr bool vantoroMutantOrConstant(int number) noexcept {
    if consteval {
        return false;
    } else {
        return vantoroMutant(number);
    }
}
