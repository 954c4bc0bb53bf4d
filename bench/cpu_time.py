"""The CPU time of programs that a benchmark runs."""
import os
import subprocess
import sys

ATTEMPTS = 4


def of_children():
    """User and system seconds of all programs that have ended so far."""
    times = os.times()
    return times.children_user + times.children_system


def on_one_core(command, patience):
    """CPU seconds of a run on the last core, which is started again after `patience` seconds."""
    core = str(max(os.sched_getaffinity(0)))
    for _ in range(ATTEMPTS):
        before = of_children()
        try:
            subprocess.run(["taskset", "-c", core, *command], check=True, timeout=patience,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            return of_children() - before
        except subprocess.TimeoutExpired:
            # melt, held to one core, now and then sleeps for ever before its first frame.
            print(f"{command[0]} hung and is started again", file=sys.stderr)
    sys.exit(f"{command[0]} hung {ATTEMPTS} times")
