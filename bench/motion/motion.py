"""usage: motion.py KELTO PHOTO: what the laws of motion cost a frame."""
import resource
import statistics
import subprocess
import sys

ROUNDS = 9
FRAMES = 250
# A pan at one zoom is the same film by every law.
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


def main(kelto, photo):
    rows = [(law, length) for length in (1000, 100000) for law in ("linear", "steady", "fly")]
    times = {row: [] for row in rows}
    for _ in range(ROUNDS):
        for row in rows:
            times[row].append(processor_seconds(command(kelto, photo, *row)))
    base = statistics.median(times[rows[0]])
    print("| law | frames of the film | ms a frame | of linear's |\n|---|---:|---:|---:|")
    for law, length in rows:
        took = statistics.median(times[(law, length)])
        print(f"| {law} | {length} | {1000 * took / FRAMES:.3f} | {took / base:.3f} |")


if __name__ == "__main__":
    main(*sys.argv[1:])
