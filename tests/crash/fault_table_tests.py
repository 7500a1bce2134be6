#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Each call of a recording, its stop and a salvage on the recording folder fails, in each way."""

import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import faults  # noqa: E402
import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from faults import WRITTEN, FED_RECORDER, ONCE, Fault, Folder, named, problems_of  # noqa: E402
from movie_boxes import whole_frames  # noqa: E402

FRAMES = 12 * sound.RATE
# The recorder's calls on a disk. It truncates a file only after a failed write.
KINDS = {"open", "lock", "pwrite", "fdatasync", "fsync", "close", "rename", "link", "unlink", "mkdir", "statvfs",
         "ftruncate"}
FEWEST_CALLS = 90
ATTEMPTS = 3


class Recording:
    """A recording and its stop."""

    name = "recording"

    def __init__(self, place):
        self._place = place / self.name
        self._frames_at = {0: 0}

    def folder(self, name):
        return Folder(self._place / name)

    def command(self, folder):
        return [FED_RECORDER, folder.path, FRAMES]

    def is_in_the_table(self, _):
        return True

    def calls(self):
        """The calls of a run without faults."""
        folder = self.folder("without a fault")
        outcome = faults.run(self.command(folder), folder.path)
        problems = self.problems(folder, Fault("none", "EIO"), outcome)
        if problems or outcome.errors:
            raise AssertionError(f"without any fault: {outcome.errors} {problems}")
        self._learn_lengths(outcome)
        calls = [named(call) for call in outcome.calls if self.is_in_the_table(call)]
        # A thread that mixes ahead, or gives up, checks the free space a varying number of times.
        others = [set(map(named, faults.run(self.command(again), again.path).calls))
                  for again in (self.folder(f"once more {number}") for number in range(4))]
        return [call for call in calls if all(call in other for other in others)]

    def _learn_lengths(self, outcome):
        """Learns how many frames the temporary file has at each synced length."""
        folder = self.folder("dead at its end")
        faults.run(self.command(folder), folder.path, Fault(WRITTEN, "die"))
        path, = folder.temporaries()
        data = path.read_bytes()
        for call in filter(faults.is_sync, outcome.calls):
            self._frames_at[call.size] = min(whole_frames(data[:call.size]).values(), default=0)
        if max(self._frames_at.values()) != FRAMES:
            raise AssertionError(f"the temporary file is not all of the sound: {self._frames_at}")

    def synced(self, outcome):
        """The minimum number of frames that are certainly on disk."""
        size = max((call.size for call in outcome.calls if faults.is_sync(call)), default=0)
        return self._frames_at[max(known for known in self._frames_at if known <= size)]

    def problems(self, folder, fault, outcome):
        """What is wrong after a run, and after a salvage that follows it."""
        told = self._problems_of_what_is_told(folder, fault, outcome)
        left = problems_of_what_is_left(folder, fault)
        return told + left + folder.recover() + self._problems_of_what_is_saved(folder, fault, outcome)

    def _problems_of_what_is_told(self, folder, fault, outcome):
        if fault.how == "die":
            return []
        printed = [Path(line) for line in outcome.output.splitlines()]
        problems = [f"{path} was printed, and is not there" for path in printed if path not in folder.finals()]
        if outcome.status != 0:
            # If it is told to end before it has recorded anything, while it looks for leftovers, it need not say more.
            has_begun = any(call.kind == "pwrite" and call.role == "temporary" for call in outcome.calls)
            if outcome.status != 1 or (has_begun or fault.how != "hang") and not outcome.errors.strip():
                problems.append("it fails without a word")
            return problems
        if len(printed) != 1:
            return [*problems, f"it succeeds with {len(printed)} files"]
        frames, not_whole = problems_of(printed[0])
        if not outcome.errors and frames != FRAMES:
            problems.append(f"it says that all is well with {frames} frames")
        return problems + not_whole

    def _problems_of_what_is_saved(self, folder, fault, outcome):
        results = [problems_of(path) for path in folder.finals()]
        problems = [problem for _, found in results for problem in found]
        best = max((frames for frames, _ in results), default=0)
        if best < self.synced(outcome):
            problems.append(f"{self.synced(outcome)} frames were synced, {best} are left")
        if len(results) > 1 and fault.how in ONCE and not fault.call.startswith("unlink temporary"):
            problems.append("it was saved twice")
        return problems


class MixedAhead(Recording):
    """A recording that is mixed ahead, into an unnamed file."""

    name = "mix made ahead"

    def command(self, folder):
        return [*super().command(folder), "ahead"]

    def is_in_the_table(self, call):
        return call.role == "unnamed" or call.kind in ("link", "statvfs")


class Tracks(Recording):
    """A recording whose sources are kept apart, too."""

    name = "tracks"

    def command(self, folder):
        return [*super().command(folder), "tracks"]

    def is_in_the_table(self, call):
        return call.role.startswith("track")

    def problems(self, folder, fault, outcome):
        of_tracks = problems_of_tracks(folder, outcome, [FRAMES])  # before the salvage that follows
        return of_tracks + super().problems(folder, fault, outcome)


class IntoANewFolder(Recording):
    """A recording into a folder that does not exist yet."""

    name = "new folder"

    def command(self, folder):
        return [FED_RECORDER, folder.path / "made by it", FRAMES]

    def is_in_the_table(self, call):
        return call.kind == "mkdir"

    def problems(self, folder, fault, outcome):
        if (folder.path / "made by it").is_dir():
            return self._problems_of_what_is_told(folder, fault, outcome)
        return [] if outcome.status == 1 and outcome.errors.strip() or fault.how == "die" else ["it fails without a word"]


class Salvage:
    """A salvage of two recordings."""

    name = "salvage"

    deaths = {FRAMES: "pwrite temporary 3", 2 * sound.RATE: "pwrite temporary 2"}

    def __init__(self, place):
        self._place = place / self.name
        self._leftovers = faults.Leftovers(place / "leftovers", self.deaths)

    def folder(self, name):
        folder = Folder(self._place / name)
        self._leftovers.put_into(folder.path)
        return folder

    def command(self, folder):
        return [recorder.PROGRAM, "recover", "--folder", folder.path]

    def calls(self):
        folder = self.folder("without a fault")
        outcome = faults.run(self.command(folder), folder.path)
        problems = self.problems(folder, Fault("none", "EIO"), outcome)
        if problems or outcome.errors or outcome.status != 0:
            raise AssertionError(f"without any fault: {outcome.errors} {problems}")
        return [named(call) for call in outcome.calls]

    def problems(self, folder, fault, outcome):
        told = self._problems_of_what_is_told(folder, fault, outcome)
        left = problems_of_what_is_left(folder, fault)
        return told + left + folder.recover() + self._problems_of_what_is_saved(folder, fault)

    def _problems_of_what_is_told(self, folder, fault, outcome):
        if fault.how == "die":
            return []
        printed = [Path(line) for line in outcome.output.splitlines()]
        problems = [f"{path} was printed, and is not there" for path in printed if path not in folder.finals()]
        if len(set(printed)) != len(printed):
            problems.append("it prints a file twice")
        if fault.how in ONCE and set(printed) != set(folder.finals()):
            problems.append(f"it prints {len(printed)} of {len(folder.finals())} files")
        if outcome.status != 0 and (outcome.status != 1 or not outcome.errors.strip()):
            problems.append("it fails without a word")
        if outcome.status == 0 and len(printed) != len(self._leftovers.frames):
            problems.append(f"it says that all is well with {len(printed)} recordings saved")
        return problems

    def _problems_of_what_is_saved(self, folder, fault):
        results = [problems_of(path) for path in folder.finals()]
        problems = [problem for _, found in results for problem in found]
        frames = sorted(frames for frames, _ in results)
        wanted = sorted(self._leftovers.frames)
        if (frames if fault.how in ONCE else sorted(set(frames))) != wanted:
            problems.append(f"of recordings of {wanted} frames it makes files of {frames}")
        return problems


class SalvageOfTracks(Salvage):
    """A salvage that keeps the sources apart, too."""

    name = "salvage of tracks"
    deaths = {FRAMES: "pwrite temporary 3"}

    def command(self, folder):
        return [*super().command(folder), "--tracks"]

    def calls(self):
        return [call for call in super().calls() if call.split()[1].startswith("track")]

    def problems(self, folder, fault, outcome):
        of_tracks = problems_of_tracks(folder, outcome, self._leftovers.frames)
        return of_tracks + super().problems(folder, fault, outcome)


def problems_of_tracks(folder, outcome, lengths):
    """Each recording has both of its tracks, whole, or a file that has them; or it is to be salvaged."""
    tracks, kept = folder.tracks(), folder.kept()
    if outcome.status == 0 and (len(tracks) != 2 * len(lengths) or kept):
        return [f"it says that all is well with {len(tracks)} tracks and {len(kept)} originals"]
    if outcome.status == 1 and len(tracks) < 2 * len(lengths) and not kept and not folder.with_sound():
        return ["the tracks are lost"]
    problems = []
    for path in tracks:
        attempts = [faults.problems_of_track(path, frames) for frames in lengths]
        problems += min(attempts, key=len)
    return problems


def problems_of_what_is_left(folder, fault):
    problems = folder.foreigners.problems()
    if fault.how in ONCE:
        problems += [f"{path.name} is left" for path in folder.stagings()]
    return problems


def try_fault(scenario, fault):
    """What is wrong with the fault, and the kinds of calls that it causes."""
    for attempt in range(ATTEMPTS):
        folder = scenario.folder(f"{fault.how} {fault.call} {attempt}")
        outcome = faults.run(scenario.command(folder), folder.path, fault)
        if faults.is_met(outcome, fault):
            problems = outcome.problems + scenario.problems(folder, fault, outcome)
            told = f"status {outcome.status}, {outcome.output!r}, {outcome.errors!r}".replace(f"{folder.path}/", "")
            return [f"{scenario.name}, {fault.how} at {fault.call!r}: {problem} ({told})" for problem in problems]
    return [f"{scenario.name}: no run meets {fault.call!r}"]


class FaultTable(RecordingCase):
    def setUp(self):
        super().setUp()
        self.folder = self.folder.resolve()

    def go_through(self, how, *kinds):
        """Makes each of these calls fail in this way."""
        scenarios = [kind(self.folder) for kind in kinds]
        cases = [(scenario, Fault(call, how)) for scenario in scenarios for call in scenario.calls()]
        self.assertTrue(cases)
        # Hanging runs only wait for the test's timeout.
        with ThreadPoolExecutor(16 if how == "hang" else 4) as pool:
            problems = [problem for found in pool.map(lambda case: try_fault(*case), cases) for problem in found]
        print(f"{len(cases)} calls, {len(problems)} problems", file=sys.stderr)
        self.assertEqual(problems, [], "\n" + "\n".join(problems))

    def test_everyCallOfTheTableIsMet(self):
        scenarios = [kind(self.folder) for kind in (Recording, MixedAhead, Tracks, IntoANewFolder, Salvage)]
        calls = [call for scenario in scenarios for call in scenario.calls()]
        folder = Folder(self.folder / "failed write")
        failed = faults.run([FED_RECORDER, folder.path, FRAMES], folder.path, Fault("pwrite temporary 2", "EIO"))
        kinds = {call.split()[0] for call in calls} | {call.kind for call in failed.calls}
        self.assertEqual(KINDS - kinds, set())
        self.assertGreaterEqual(len(calls), FEWEST_CALLS)

    def test_recordingWithAnyCallFailingIsKept(self):
        self.go_through("EIO", Recording)

    def test_recordingWithAnyCallFindingNoSpaceIsKept(self):
        self.go_through("ENOSPC", Recording)

    def test_recordingWithAnyCallHangingIsKept(self):
        self.go_through("hang", Recording)

    def test_recordingWhoseDiskVanishesAtAnyCallIsKept(self):
        self.go_through("gone", Recording)

    def test_recordingThatDiesAtAnyCallIsKept(self):
        self.go_through("die", Recording)

    def test_mixMadeAheadWithAnyCallFailingIsMadeAgain(self):
        self.go_through("EIO", MixedAhead, IntoANewFolder)

    def test_mixMadeAheadWithAnyCallFindingNoSpaceIsMadeAgain(self):
        self.go_through("ENOSPC", MixedAhead, IntoANewFolder)

    def test_mixMadeAheadWithAnyCallHangingLosesNothing(self):
        self.go_through("hang", MixedAhead, IntoANewFolder)

    def test_mixMadeAheadWhoseDiskVanishesAtAnyCallLosesNothing(self):
        self.go_through("gone", MixedAhead, IntoANewFolder)

    def test_mixMadeAheadThatDiesAtAnyCallLosesNothing(self):
        self.go_through("die", MixedAhead, IntoANewFolder)

    def test_salvageWithAnyCallFailingCanBeRepeated(self):
        self.go_through("EIO", Salvage)

    def test_salvageWithAnyCallFindingNoSpaceCanBeRepeated(self):
        self.go_through("ENOSPC", Salvage)

    def test_salvageWithAnyCallHangingCanBeRepeated(self):
        self.go_through("hang", Salvage)

    def test_salvageWhoseDiskVanishesAtAnyCallCanBeRepeated(self):
        self.go_through("gone", Salvage)

    def test_salvageThatDiesAtAnyCallCanBeRepeated(self):
        self.go_through("die", Salvage)

    def test_tracksWithAnyCallFailingAreKeptTogether(self):
        self.go_through("EIO", Tracks, SalvageOfTracks)

    def test_tracksWithAnyCallFindingNoSpaceAreKeptTogether(self):
        self.go_through("ENOSPC", Tracks, SalvageOfTracks)

    def test_tracksWithAnyCallHangingLoseNothing(self):
        self.go_through("hang", Tracks, SalvageOfTracks)

    def test_tracksWhoseDiskVanishesAtAnyCallAreNotLost(self):
        self.go_through("gone", Tracks, SalvageOfTracks)

    def test_tracksOfARecordingThatDiesAtAnyCallAreNotLost(self):
        self.go_through("die", Tracks, SalvageOfTracks)


if __name__ == "__main__":
    main(FaultTable)
