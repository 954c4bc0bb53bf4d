"""usage: deep_job.py KELTO PHOTO: the move of job.py over the photo in 16 bits, as raw RGBA of 16 bits."""
import os
import statistics
import subprocess
import sys

from job import FFMPEG, SIZE, cpu_seconds, times_ours

ROUNDS = int(os.environ.get("KELTO_BENCH_ROUNDS", "5"))
FRAMES = 25
LAST = FRAMES - 1


def zoompan(film, photo, before=""):
    """Its frames have eight bits inside, whatever comes in and goes out."""
    move = (f"{before}zoompan=z='1+on/{LAST}':x='iw/2-iw/zoom/2':y='ih/2-ih/zoom/2'"
            f":d={FRAMES}:s={SIZE}:fps=25,format=rgba64le")
    return [*FFMPEG, "-i", photo, "-vf", move, "-frames:v", str(FRAMES), "-f", "rawvideo",
            "-y", film]


def kelto_render(kelto, film, photo):
    return [kelto, "render", photo, "-o", film, "--size", SIZE, "--frames", str(FRAMES),
            "--from", "1", "--to", "2", "--filter", "hiqual"]


def main(kelto, photo):
    deep = "photo.tif"
    subprocess.run([*FFMPEG, "-i", photo, "-pix_fmt", "rgb48le", "-compression_algo", "raw",
                    "-y", deep], check=True)
    film = "film.rgba64"
    jobs = {
        "`kelto render`, Hi Qual, 16 bits": kelto_render(kelto, film, deep),
        "FFmpeg `zoompan`, 8 bits inside": zoompan(film, deep),
        "FFmpeg `zoompan` after upscaling, 8 bits inside": zoompan(film, deep, "scale=12000:-1,"),
    }
    times = {name: [] for name in jobs}
    for _ in range(ROUNDS):
        for name, command in jobs.items():
            times[name].append(cpu_seconds(command, film))
    print("| whole job, 16 bits | raw, CPU s | times ours |")
    print("|---|---:|---:|")
    ours = statistics.median(next(iter(times.values())))
    for name, values in times.items():
        seconds = statistics.median(values)
        print(f"| {name} | {seconds:.2f} | {times_ours(seconds, ours)} |")
    print(flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
