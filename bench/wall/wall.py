"""usage: wall.py KELTO PHOTO: times the same move by two programs, in turns on two cores."""
import os
import statistics
import subprocess
import sys
import time

ROUNDS = int(os.environ.get("KELTO_BENCH_ROUNDS", "3"))
SIZE = "1920x1080"
FRAMES = 150
CORES = ",".join(str(core) for core in sorted(os.sched_getaffinity(0))[-2:])
# What a film is written as: its name, and how each program is asked for it. Threads as the command has.
H264 = ["-c:v", "libx264", "-crf", "18", "-pix_fmt", "yuv420p", "-threads", "8", "-preset"]
FILMS = {
    "raw 4:2:2": ("film.yuyv", [], ["-pix_fmt", "yuyv422", "-f", "rawvideo"]),
    "H.264, ultrafast": ("film.mp4", ["--speed", "fastest"], [*H264, "ultrafast"]),
    "H.264, medium": ("film.mp4", [], [*H264, "medium"]),
}


def kelto_render(kelto, photo, film, options):
    """Our command line."""
    return [kelto, "render", photo, "-o", film, "--size", SIZE, "--frames", str(FRAMES), "--from", "1",
            "--to", "2", "--filter", "hiqual", "--motion", "linear", "--jobs", "2", "--quiet", *options]


def zoompan(photo, film, output):
    """FFmpeg's."""
    move = (f"zoompan=z='1+on/{FRAMES - 1}':x='iw/2-iw/zoom/2':y='ih/2-ih/zoom/2'"
            f":d={FRAMES}:s={SIZE}:fps=25")
    return ["ffmpeg", "-nostdin", "-v", "error", "-i", photo, "-vf", move, "-frames:v", str(FRAMES),
            *output, "-y", film]


def seconds(command, film):
    """Of one run."""
    begin = time.monotonic()
    subprocess.run(["taskset", "-c", CORES, *command], check=True)
    passed = time.monotonic() - begin
    if os.path.getsize(film) == 0:
        sys.exit(f"{command[0]}: the film is empty")
    os.remove(film)
    return passed


def main(kelto, photo):
    """A row a kind of film."""
    print("| film | `kelto render --jobs 2`, s | FFmpeg `zoompan`, s | times ours |")
    print("|---|---:|---:|---:|")
    for name, (film, options, output) in FILMS.items():
        ours, theirs = [], []
        for _ in range(ROUNDS):
            ours.append(seconds(kelto_render(kelto, photo, film, options), film))
            theirs.append(seconds(zoompan(photo, film, output), film))
        our, their = statistics.median(ours), statistics.median(theirs)
        print(f"| {name} | {our:.2f} | {their:.2f} | {their / our:.2f} |", flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
