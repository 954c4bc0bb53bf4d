"""usage: job.py KELTO PHOTO: times the same move by several programs, in turns on one core."""
import os
import statistics
import sys

from cpu_time import on_one_core

ROUNDS = int(os.environ.get("KELTO_BENCH_ROUNDS", "5"))
PATIENCE = 150  # seconds, several times what the slowest takes
SIZE = "1920x1080"
FRAMES = 150
LAST = FRAMES - 1
WANTED = {"FFmpeg `zoompan`": "at least 1.3"}
FFMPEG = ["ffmpeg", "-nostdin", "-v", "error", "-threads", "1", "-filter_threads", "1"]
# The command's own encoder settings, so that all films cost the same to encode.
H264 = ["-c:v", "libx264", "-preset", "medium", "-crf", "18", "-pix_fmt", "yuv420p", "-threads", "1"]
# How much of the picture's sides the view shows while frame `n` is drawn: from 1 to 1/2.
SHOWN = f"(1/(1+{{n}}/{LAST}))"


def ffmpeg(film, photo, filters, before=()):
    """FFmpeg's command that draws the move by these filters."""
    raw = film.endswith(".yuyv")
    output = ["-f", "rawvideo"] if raw else H264
    picture = ",format=yuyv422" if raw else ""
    return [*FFMPEG, *before, "-i", photo, "-vf", filters + picture, "-frames:v", str(FRAMES),
            *output, "-y", film]


def zoompan(film, photo, before=""):
    """Filters `before` come first."""
    move = (f"{before}zoompan=z='1+on/{LAST}':x='iw/2-iw/zoom/2':y='ih/2-ih/zoom/2'"
            f":d={FRAMES}:s={SIZE}:fps=25")
    return ffmpeg(film, photo, move)


def perspective(film, photo):
    """On the still scaled to twice the film's size, the most that the move's end needs."""
    near = f"(1-{SHOWN.format(n='in')})/2"
    far = f"(1+{SHOWN.format(n='in')})/2"
    corners = "".join(f":x{i}='W*{x}':y{i}='H*{y}'" for i, (x, y) in enumerate(
        [(near, near), (far, near), (near, far), (far, far)]))
    move = (f"scale=3840:2160,loop={FRAMES - 1}:1,"
            f"perspective=eval=frame:interpolation=cubic{corners},scale={SIZE}")
    return ffmpeg(film, photo, move)


def affine(film, photo, interpolation):
    """MLT's rectangle is the whole picture's place in the frame."""
    output = (["f=rawvideo", "vcodec=rawvideo", "pix_fmt=yuyv422"] if film.endswith(".yuyv")
              else ["vcodec=libx264", "preset=medium", "crf=18", "threads=1"])
    return ["melt", "-silent", "-profile", "atsc_1080p_25", photo, f"out={LAST}",
            "-filter", "affine", f"transition.rect=0=0 0 1920 1080;{LAST}=-960 -540 3840 2160",
            "transition.fill=1", "transition.distort=1", f"consumer.rescale={interpolation}",
            f"rescale={interpolation}", "-consumer", f"avformat:{film}", *output,
            "real_time=-1", "an=1"]


def kelto_render(kelto, film, photo):
    """The last core is given to each program alone, so one job is what all of them have."""
    return [kelto, "render", photo, "-o", film, "--size", SIZE, "--frames", str(FRAMES),
            "--from", "1", "--to", "2", "--filter", "hiqual"]


def cpu_seconds(command, film):
    """Of one run on the last core, without what its film leaves behind."""
    seconds = on_one_core(command, PATIENCE)
    if os.path.getsize(film) == 0:
        sys.exit(f"{command[0]}: the film is empty")
    os.remove(film)
    return seconds


def medians(film, kelto, photo):
    """CPU seconds of every program, ours first."""
    jobs = {
        "`kelto render`, Hi Qual": kelto_render(kelto, film, photo),
        "FFmpeg `zoompan`": zoompan(film, photo),
        "FFmpeg `zoompan` after upscaling": zoompan(film, photo, "scale=12000:-1,"),
        "FFmpeg `perspective`, cubic, of the still at 3840 x 2160": perspective(film, photo),
        "melt `affine`, bilinear": affine(film, photo, "bilinear"),
        "melt `affine`, bicubic": affine(film, photo, "bicubic"),
    }
    times = {name: [] for name in jobs}
    for _ in range(ROUNDS):
        for name, command in jobs.items():
            times[name].append(cpu_seconds(command, film))
    return {name: statistics.median(values) for name, values in times.items()}


def times_ours(seconds, ours):
    return f"{seconds / ours:.2f}" if seconds < 10 * ours else f"{seconds / ours:.1f}"


def main(kelto, photo):
    """Raw frames, then H.264."""
    raw = medians("film.yuyv", kelto, photo)
    coded = medians("film.mp4", kelto, photo)
    print("| whole job | raw, CPU s | times ours | H.264, CPU s | times ours | wanted, raw |")
    print("|---|---:|---:|---:|---:|---|")
    our_raw, our_coded = next(iter(raw.values())), next(iter(coded.values()))
    for name in raw:
        print(f"| {name} | {raw[name]:.2f} | {times_ours(raw[name], our_raw)} "
              f"| {coded[name]:.2f} | {times_ours(coded[name], our_coded)} "
              f"| {WANTED.get(name, '')} |")
    print(flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
