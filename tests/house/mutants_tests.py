#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""tools/mutants reports the changes that no test detects, and no others."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

BUILD = """
cmake_minimum_required(VERSION 3.25)
project(sample LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 23)
add_library(vantoro_engine STATIC engine/sample.cpp)
target_include_directories(vantoro_engine PUBLIC ${PROJECT_SOURCE_DIR})
add_executable(engine_tests tests/engine/sample_tests.cpp)
target_link_libraries(engine_tests vantoro_engine gtest gtest_main)
set_target_properties(engine_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/engine)
"""
HEADER = """
#pragma once
#include <array>
inline constexpr int limit = 3;
constexpr int twice(int value) { return value * 2; }
constexpr int twiceTheFirst(const int (&values)[2]) { return twice(values[0]); }
static_assert(twice(1) == 2);
int atMost(int value);
int calls();
void call();
"""
SOURCE = """
#include "engine/sample.h"
namespace {
std::array<int, 2> counted{};
}
int atMost(int value) {
    while (value > limit) {
        --value;
    }
    return value;
}
int calls() { return counted[1]; }
void call() {
    if (const int before = counted[1]; before >= 0) {
        counted[1] = before + 1;
    }
}
"""
TESTS = """
#include "engine/sample.h"
#include <gtest/gtest.h>
"""
TESTED = """
TEST(Sample, isAtMostThree) {
    EXPECT_EQ(atMost(2), 2);
    EXPECT_EQ(atMost(3), 3);
    EXPECT_EQ(atMost(9), 3);
}
TEST(Sample, twice) {
    volatile int three = 3;
    EXPECT_EQ(twice(three), 6);
    EXPECT_EQ(twiceTheFirst({three, 4}), 6);
}
TEST(Sample, countsCalls) {
    EXPECT_EQ(calls(), 0);
    call();
    EXPECT_EQ(calls(), 1);
    call();
    EXPECT_EQ(calls(), 2);
}
"""
LOOSELY_TESTED = TESTED.replace("    EXPECT_EQ(atMost(3), 3);\n    EXPECT_EQ(atMost(9), 3);\n", "")
# Without numbers above three.
SURVIVORS = (
    ("engine/sample.cpp", 7, "atMost", "while (value [> => >=] limit) {", "no test fails"),
    ("engine/sample.cpp", 8, "atMost", "[--value; => ]", "no test comes by"),
    ("engine/sample.cpp", 8, "atMost", "[-- => ++]value;", "no test comes by"),
    ("engine/sample.h", 4, "limit", "inline constexpr int limit = [3 => 4];", "no test fails"),
    ("engine/sample.h", 4, "limit", "inline constexpr int limit = [3 => 2];", "no test fails"),
)
AS_EQUIVALENT = "\n".join(
    f"{file} {function}\n{change}\nNobody cares.\n" for file, _, function, change, _ in SURVIVORS)


class MutantsTests(unittest.TestCase):
    def tried(self, tests, equivalent=""):
        with tempfile.TemporaryDirectory() as name:
            root = Path(name)
            for path, text in (("CMakeLists.txt", BUILD), ("engine/sample.h", HEADER), ("engine/sample.cpp", SOURCE),
                               ("tests/engine/sample_tests.cpp", TESTS + tests),
                               ("tools/mutants.equivalent", equivalent)):
                (root / path).parent.mkdir(parents=True, exist_ok=True)
                (root / path).write_text(text)
            subprocess.run(["git", "init", "--quiet", root], timeout=60, check=True)
            return subprocess.run([ROOT / "tools/mutants", "--root", root, "engine"], capture_output=True, text=True,
                                  timeout=170, check=False)

    def test_whatIsTestedLeavesNoSurvivor(self):
        result = self.tried(TESTED)
        self.assertEqual((result.returncode, result.stdout),
                         (0, "engine: 23 mutants, 23 found, 0 equivalent, 0 survive\n"), result)

    def test_whatIsTestedLooselyLeavesSurvivors(self):
        result = self.tried(LOOSELY_TESTED)
        told = "".join(f"{file}:{line}: {function}: {change} ({why})\n"
                       for file, line, function, change, why in SURVIVORS)
        self.assertEqual((result.returncode, result.stdout),
                         (1, told + "engine: 23 mutants, 18 found, 0 equivalent, 5 survive\n"), result)

    def test_survivorsThatAreListedAsEquivalentAreNoFault(self):
        result = self.tried(LOOSELY_TESTED, "# Why they are.\n\n" + AS_EQUIVALENT)
        self.assertEqual((result.returncode, result.stdout),
                         (0, "engine: 23 mutants, 18 found, 5 equivalent, 0 survive\n"), result)

    def test_whatIsListedAsEquivalentButFoundIsToldAsWell(self):
        result = self.tried(TESTED, "engine/sample.cpp call\ncounted[1] = before + [1 => 2];\nNo longer.\n")
        self.assertEqual((result.returncode, result.stdout), (
            1, "listed as equivalent, but not missed: engine/sample.cpp call: counted[1] = before + [1 => 2];\n"
               "engine: 23 mutants, 23 found, 0 equivalent, 0 survive\n"), result)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"MutantsTests.test_{name}" for name in sys.argv[1:])])
