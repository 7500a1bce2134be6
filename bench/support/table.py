# SPDX-License-Identifier: GPL-3.0-or-later
"""Rows of the table that all benchmarks print; `bench/run` prints the table's head."""


def row(measured, aim, work, ours, other):
    """What was measured, usually as a ratio; its limit; the work; and the figures behind the ratio."""
    print(f"| {measured} | {aim} | {work} | {ours} | {other} |", flush=True)


def times(ours, other):
    return f"{ours / other:.2f} ×"
