"""usage: jobs.py KELTO PHOTO: times and weighs renders by one and by several processes."""
import os
import statistics
import subprocess
import sys
import time

ROUNDS = 3
COUNTS = (1, 2, 4)


def command(kelto, photo, jobs, size, frames):
    return [kelto, "render", photo, "-o", "-", "--format", "yuyv", "--size", size, "--frames",
            str(frames), "--from", "1", "--to", "2", "--filter", "ultra", "--jobs", str(jobs)]


def seconds(words):
    start = time.monotonic()
    subprocess.run(words, check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - start


def proportional_kib(process):
    """Memory of a process, each shared page by its share."""
    try:
        with open(f"/proc/{process}/smaps_rollup", encoding="ascii") as rollup:
            return next(int(line.split()[1]) for line in rollup if line.startswith("Pss:"))
    except (OSError, StopIteration):
        return 0


def children(process):
    try:
        with open(f"/proc/{process}/task/{process}/children", encoding="ascii") as file:
            return file.read().split()
    except OSError:
        return []


def peak_mib(words):
    """The most that a command and its workers had at any time that was looked at."""
    peak = 0
    with subprocess.Popen(words, stdout=subprocess.DEVNULL) as process:
        while process.poll() is None:
            everyone = [process.pid, *children(process.pid)]
            peak = max(peak, sum(proportional_kib(each) for each in everyone))
            time.sleep(0.02)
    return peak / 1024


def main(kelto, photo):
    cores = len(os.sched_getaffinity(0))
    times = {jobs: [] for jobs in COUNTS}
    for _ in range(ROUNDS):
        for jobs in COUNTS:
            times[jobs].append(seconds(command(kelto, photo, jobs, "3840x2160", 240)))
    alone = statistics.median(times[1])
    print(f"{cores} cores, load before {os.getloadavg()[0]:.1f}\n")
    print("| --jobs | seconds | times as fast | MiB, 1920 x 1080 |\n|---:|---:|---:|---:|")
    for jobs, values in times.items():
        took = statistics.median(values)
        peak = peak_mib(command(kelto, photo, jobs, "1920x1080", 100))
        print(f"| {jobs} | {took:.2f} | {alone / took:.2f} | {peak:.0f} |")


if __name__ == "__main__":
    main(*sys.argv[1:])
