"""usage: motion.py KELTO PHOTO: what the laws of motion cost per frame.

A law should cost within 2 % of linear, and a frame of a long film what one of a short film does.
Ratios are of runs of the same round, which follow one another: their median, and in brackets the
quartiles, whose distance says how calm the machine was.
"""
import resource
import statistics
import subprocess
import sys

ROUNDS = 9
FRAMES = 250
LAWS = ("linear", "steady", "fly")
SHORT, LONG = 1000, 100000
# A pan at one zoom is the same film by linear and steady; fly draws back a little on the way.
WAY = ["--from", "1.5@-0.1,0", "--to", "1.5@0.1,0", "--in", "linear", "--out", "linear"]


def command(kelto, photo, law, length):
    return [kelto, "render", photo, "-o", "-", "--format", "yuyv", "--size", "1280x720",
            "--filter", "triangle", "--quiet", "--jobs", "1", "--motion", law, *WAY,
            "--seconds", str(length / 25), "--frames", f"0..{FRAMES}"]


def processor_seconds(words):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(words, check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def ratio(times, others):
    low, middle, high = statistics.quantiles([a / b for a, b in zip(times, others)])
    return f"{middle:.3f} ({low:.3f} to {high:.3f})"


def main(kelto, photo):
    runs = [(law, length) for length in (SHORT, LONG) for law in LAWS]
    times = {run: [] for run in runs}
    for round_ in range(ROUNDS):
        # There and back, so that a machine that slows down favours none.
        for run in runs if round_ % 2 == 0 else reversed(runs):
            times[run].append(processor_seconds(command(kelto, photo, *run)))
    print(f"| law | frames of the film | ms per frame | linear of that length = 1 | {SHORT} frames = 1 |")
    print("|---|---:|---:|---:|---:|")
    for law, length in runs:
        took = times[(law, length)]
        print(f"| {law} | {length} | {1000 * statistics.median(took) / FRAMES:.3f} "
              f"| {'1' if law == 'linear' else ratio(took, times[('linear', length)])} "
              f"| {'1' if length == SHORT else ratio(took, times[(law, SHORT)])} |")


if __name__ == "__main__":
    main(*sys.argv[1:])
