"""usage: filters.py KELTO PHOTO: CPU time of a frame through the plug-ins and their peers, a table."""
import os
import statistics
import sys

from cpu_time import on_one_core

ROUNDS = int(os.environ.get("KELTO_BENCH_ROUNDS", "3"))
PATIENCE = 60  # seconds, several times what the slowest takes
SHORT, LONG = 3, 23  # frames; what differs is what frames cost
FFMPEG = ["ffmpeg", "-nostdin", "-v", "error", "-threads", "1", "-filter_threads", "1"]
GREY = ["-f", "lavfi", "-i", "color=gray:size=1920x1080:rate=25,format=bgra"]
# The view stands at the zoom at which the photo fills the frame: 3.125 of its pixels for one.
VIEW = "1"


def by_ffmpeg(filters, source=None):
    """FFmpeg's command for some frames."""
    return lambda frames: [*FFMPEG, *(source or GREY), "-vf", filters, "-frames:v", str(frames),
                           "-f", "null", "-"]


def by_melt(*services):
    """melt's command for some frames; `LAST` in a service is the last one's number."""
    return lambda frames: ["melt", "-silent", "-profile", "atsc_1080p_25",
                           *(word.replace("LAST", str(frames - 1)) for word in services),
                           "-consumer", "avformat:/dev/null", "f=rawvideo", "vcodec=rawvideo",
                           "pix_fmt=rgba", "mlt_image_format=rgba", "real_time=-1", "an=1"]


def engine(kelto, photo, name):
    """The command alone: the same frames, raw, on one process, thrown away."""
    return lambda frames: [kelto, "render", photo, "-o", "-", "--format", "bgra", "--size",
                           "1920x1080", "--frames", str(frames), "--from", VIEW, "--to", VIEW,
                           "--filter", name, "--jobs", "1"]


def jobs(kelto, photo):
    """Rows by name: ours first, then the peers."""
    def plugin(name):
        return by_ffmpeg(f"frei0r=kelto_pan_zoom:{photo}|{VIEW}|||{name}")

    def in_melt(name):
        return by_melt("color:gray", "out=LAST", "-attach", "frei0r.kelto_pan_zoom",
                       f"image={photo}", f"from={VIEW}", f"filter={name}")
    still = ["-i", photo]
    return {
        "the effect alone (`kelto render`), Hi Qual": engine(kelto, photo, "hiqual"),
        "the effect alone, Real Time": engine(kelto, photo, "realtime"),
        "FFmpeg, no filter": by_ffmpeg("null"),
        "FFmpeg, the filter without a photograph: a copy": by_ffmpeg("frei0r=kelto_pan_zoom:"),
        "FFmpeg, the filter, Real Time": plugin("realtime"),
        "FFmpeg, the filter, Hi Qual": plugin("hiqual"),
        "FFmpeg, `zoompan` (bicubic)": by_ffmpeg(
            "zoompan=z=1:d=1000:s=1920x1080:fps=25,format=bgra", still),
        "melt, no filter": by_melt("color:gray", "out=LAST"),
        "melt, the filter, Real Time": in_melt("realtime"),
        "melt, the filter, Hi Qual": in_melt("hiqual"),
        "melt, `affine`, bilinear": by_melt(
            photo, "out=LAST", "-filter", "affine", "transition.rect=0=0 0 1920 1080;LAST=1 0 1920 1080",
            "transition.fill=1", "transition.distort=1", "consumer.rescale=bilinear"),
    }


def main(kelto, photo):
    """Every row in turns, so that a busy machine is as busy for all of them."""
    rows = jobs(kelto, os.path.abspath(photo))
    times = {name: [] for name in rows}
    for _ in range(ROUNDS):
        for name, command in rows.items():
            spent = (on_one_core(command(LONG), PATIENCE)
                     - on_one_core(command(SHORT), PATIENCE))
            times[name].append(1000.0 * spent / (LONG - SHORT))
    medians = {name: statistics.median(values) for name, values in times.items()}
    print("| a frame of 1920 x 1080 | CPU ms |")
    print("|---|---:|")
    for name, milliseconds in medians.items():
        print(f"| {name} | {milliseconds:.1f} |")
    hiqual = medians["FFmpeg, the filter, Hi Qual"]
    alone = medians["the effect alone (`kelto render`), Hi Qual"]
    copy = medians["FFmpeg, the filter without a photograph: a copy"]
    print(f"\nHi Qual in FFmpeg: {(hiqual - copy) / alone:.2f} times the effect alone, and the copy; "
          "wanted: at most 1.3.\n", flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
