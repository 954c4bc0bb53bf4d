"""usage: job.py KELTO PHOTO: times the same move by several programs, in turns on one core."""
import os
import statistics
import subprocess
import sys

ROUNDS = 5
SIZE = "1920x1080"


def zoompan(photo, before=""):
    """FFmpeg's command of the move; `before` are filters that come first."""
    move = (f"{before}zoompan=z='1+on/150':x='iw/2-iw/zoom/2':y='ih/2-ih/zoom/2'"
            f":d=150:s={SIZE}:fps=25,format=yuyv422")
    return ["ffmpeg", "-nostdin", "-v", "error", "-threads", "1", "-filter_threads", "1",
            "-i", photo, "-vf", move, "-f", "rawvideo", "-y", "film.yuyv"]


def cpu_seconds(command):
    """Of one run on the last core, without what its film leaves behind."""
    core = str(max(os.sched_getaffinity(0)))
    before = os.times()
    subprocess.run(["taskset", "-c", core, *command], check=True, stderr=subprocess.DEVNULL)
    after = os.times()
    os.remove("film.yuyv")
    return (after.children_user - before.children_user
            + after.children_system - before.children_system)


def main(kelto, photo):
    jobs = {
        "kelto render, Hi Qual": [
            kelto, "render", photo, "-o", "film.yuyv", "--size", SIZE, "--frames", "150",
            "--from", "1", "--to", "2", "--filter", "hiqual"],
        "FFmpeg zoompan": zoompan(photo),
        "FFmpeg zoompan after upscaling": zoompan(photo, "scale=12000:-1,"),
    }
    times = {name: [] for name in jobs}
    for _ in range(ROUNDS):
        for name, command in jobs.items():
            times[name].append(cpu_seconds(command))
    ours = statistics.median(next(iter(times.values())))
    print("| whole job | CPU s | times ours |\n|---|---:|---:|")
    for name, values in times.items():
        seconds = statistics.median(values)
        print(f"| {name} | {seconds:.2f} | {seconds / ours:.2f} |")


if __name__ == "__main__":
    main(*sys.argv[1:])
