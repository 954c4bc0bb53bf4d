"""Tables of benchmark results: medians of CPU time, and what follows from them.

usage: report.py RESULTS.json...   (Google Benchmark's JSON, with repetitions)

Results must be there for every table, unless KELTO_BENCH_FILTER says which were wanted. With
KELTO_BENCH_LEAST set, least times in place of medians: other programs only make times longer.
"""
import json
import math
import os
import re
import statistics
import sys

SCALES = ("6", "3.125", "1.5", "1/1.5", "1/6")
FILTERS = {
    "realtime": "Real Time", "triangle": "Triangle", "quadratic": "Quadratic", "cubic": "Cubic",
    "catmull": "BSpline Catmull", "gaussian": "Gaussian", "hiqual": "Kelto Hi Qual",
    "ultra": "Kelto Ultra Qual",
}

GRAPH_COLUMNS, GRAPH_ROWS = 60, 6  # an axis has a label every ten columns
FILTER_TAPS = {"catmull": 13, "hiqual": 33, "ultra": 101}  # a row and column at 3.125
WORDS = {"wanted", "bound"}  # columns of words beside those of numbers

# What is compared: the words of the row, ours, the peer's, and how to read the ratio: the peer's
# time in ours, but our time in another one's for rows that say so or may take at most some of it.
COMPARISONS = [
    ("Hi Qual at 3.125, against zimg's five-lobe Lanczos, tables rebuilt",
     "kelto/hiqual/3.125", "zimg/lanczos5/3.125/tables rebuilt", "at least 2.0"),
    ("the same against zimg's kernel alone",
     "kelto/hiqual/3.125", "zimg/lanczos5/3.125/kernel alone", "at least 1.0"),
    ("the same against swscale's five-lobe Lanczos, tables rebuilt",
     "kelto/hiqual/3.125", "swscale/lanczos5/3.125/context rebuilt", ""),
    ("the same against swscale's five-lobe Lanczos, tables kept",
     "kelto/hiqual/3.125", "swscale/lanczos5/3.125", ""),
    ("the same against OpenCV's Lanczos (4 lobes), `resize`",
     "kelto/hiqual/3.125", "opencv/lanczos4 resize/3.125", ""),
    ("the same against OpenCV's Lanczos (4 lobes), `warpAffine`",
     "kelto/hiqual/3.125", "opencv/lanczos4 warp/3.125", ""),
    ("Hi Qual magnifying 1.5 times, against zimg, tables rebuilt",
     "kelto/hiqual/1/1.5", "zimg/lanczos5/1/1.5/tables rebuilt", "at least 2.0"),
    ("the same against zimg's kernel alone",
     "kelto/hiqual/1/1.5", "zimg/lanczos5/1/1.5/kernel alone", ""),
    ("the same against swscale, tables rebuilt",
     "kelto/hiqual/1/1.5", "swscale/lanczos5/1/1.5/context rebuilt", ""),
    ("the same against swscale, tables kept",
     "kelto/hiqual/1/1.5", "swscale/lanczos5/1/1.5", ""),
    ("the same against OpenCV's Lanczos (4 lobes), `resize`",
     "kelto/hiqual/1/1.5", "opencv/lanczos4 resize/1/1.5", ""),
    ("the same against OpenCV's Lanczos (4 lobes), `warpAffine`",
     "kelto/hiqual/1/1.5", "opencv/lanczos4 warp/1/1.5", ""),
    ("BSpline Catmull at 3.125, against zimg's bicubic, tables rebuilt",
     "kelto/catmull/3.125", "zimg/bicubic/3.125/tables rebuilt", "at least 1.3"),
    ("the same against zimg's kernel alone",
     "kelto/catmull/3.125", "zimg/bicubic/3.125/kernel alone", ""),
    ("Ultra Qual (16 lobes) at 3.125, in Hi Qual's time",
     "kelto/ultra/3.125", "kelto/hiqual/3.125", "at most 3.5"),
    ("Real Time at 3.125, against swscale's nearest point",
     "kelto/realtime/3.125", "swscale/nearest/3.125", "at least 1.5"),
    ("Real Time magnifying 1.5 times, against the same",
     "kelto/realtime/1/1.5", "swscale/nearest/1/1.5", "at least 1.5"),
    ("16 bits, opaque, Hi Qual at 3.125, against zimg's 16-bit path, tables rebuilt",
     "deep/16 bits/hiqual/3.125", "zimg/16 bits/lanczos5/3.125/tables rebuilt", "at least 1.5"),
    ("16 bits with alpha, against the same",
     "deep/16 bits, alpha/hiqual/3.125", "zimg/16 bits/lanczos5/3.125/tables rebuilt",
     "at least 1.5"),
    ("the same against zimg's kernel alone",
     "deep/16 bits, alpha/hiqual/3.125", "zimg/16 bits/lanczos5/3.125/kernel alone", ""),
    ("Floats with alpha, Hi Qual at 3.125, against zimg's float path, tables rebuilt",
     "deep/float, alpha/hiqual/3.125", "zimg/float/lanczos5/3.125/tables rebuilt",
     "at least 1.2"),
    ("16 bits, opaque, Hi Qual at 3.125, in the time of 8-bit 4:2:2",
     "deep/16 bits/hiqual/3.125", "kelto/hiqual/3.125", "at most 2.2"),
    ("the same in the time of 8 bits in four channels",
     "deep/16 bits/hiqual/3.125", "kelto/four channels/hiqual/3.125", ""),
    ("16 bits with alpha, Hi Qual magnifying 1.5 times, against zimg, tables rebuilt",
     "deep/16 bits, alpha/hiqual/1/1.5", "zimg/16 bits/lanczos5/1/1.5/tables rebuilt", ""),
    ("16 bits, Hi Qual at 3.125 in linear light, in the time without",
     "deep/16 bits, linear light/hiqual/3.125", "deep/16 bits/hiqual/3.125", ""),
    ("24-megapixel JPEG from file to cached image, in the bare decoder's time",
     "kelto/load/rgb levels", "libjpeg-turbo/to RGB", "at most 1.3"),
    ("the same with \"Source Has 601 Levels\"",
     "kelto/load/601 levels", "libjpeg-turbo/to RGB", "at most 1.3"),
    ("the same of a JPEG with an sRGB profile",
     "kelto/load/sRGB profile", "libjpeg-turbo/to RGB", "at most 1.3"),
    ("12-megapixel PNG of 16 bits, for a deep film",
     "kelto/deep load/png", "libpng/16 bits to RGB", "at most 1.3"),
    ("TIFF of 16 bits, not compressed, likewise",
     "kelto/deep load/tiff", "libtiff/16 bits to RGB", "at most 1.3"),
    ("TIFF of 16 bits, Deflate, likewise",
     "kelto/deep load/tiff deflate", "libtiff/deflate, 16 bits to RGB", "at most 1.3"),
]


class Results:
    """Medians, or the best, by name: CPU milliseconds, and items or bytes a second where a row has them."""

    def __init__(self, paths):
        self.missing = set()
        times, rates = {}, {}
        for path in paths:
            with open(path, encoding="utf-8") as file:
                for row in json.load(file)["benchmarks"]:
                    if row["run_type"] != "iteration":
                        continue
                    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0}[row["time_unit"]]
                    times.setdefault(row["run_name"], []).append(row["cpu_time"] * scale)
                    rate = row.get("items_per_second", row.get("bytes_per_second"))
                    if rate is not None:
                        rates.setdefault(row["run_name"], []).append(rate)
        least = bool(os.environ.get("KELTO_BENCH_LEAST"))
        time_of, rate_of = (min, max) if least else (statistics.median, statistics.median)
        self.times = {name: time_of(values) for name, values in times.items()}
        self.rates = {name: rate_of(values) for name, values in rates.items()}

    def has(self, *names):
        """Whether all of the rows are there; those that are not are remembered."""
        self.missing.update(set(names) - self.times.keys())
        return all(name in self.times for name in names)

    def cell(self, name):
        """The time of a row for a table; nothing when it is not there."""
        return milliseconds(self.times[name]) if self.has(name) else ""


def milliseconds(time):
    return f"{time:.2f}" if time < 200 else f"{time:.0f}"


def table(title, head, rows):
    """Prints a table, numbers to the right; none without rows."""
    rows = [row for row in rows if any(row[1:])]
    if not rows:
        return
    print(f"{title}\n\n| {' | '.join(head)} |")
    print("|---|" + "".join("---|" if name in WORDS else "---:|" for name in head[1:]))
    for row in rows:
        print(f"| {' | '.join(row)} |")
    print()


def comparison(results, words, ours, peer, wanted):
    our_time, peer_time = results.times[ours], results.times[peer]
    inverse = wanted.startswith("at most") or "in the time" in words
    ratio = our_time / peer_time if inverse else peer_time / our_time
    return (words, milliseconds(our_time), milliseconds(peer_time),
            f"{ratio:.2f}" if ratio < 10 else f"{ratio:.1f}", wanted)


def multiply_adds(lobes, scale):
    """Of a 1920 x 1080 frame, in millions: along rows, then down columns, two samples a pixel."""
    taps = 2 * lobes * max(scale, 1)
    return taps * 2 * 1920 * 1080 * (scale + 1) * 1e-6


def bounds():
    """What no work can be faster than: words, the row, what bounds it, millions of multiply-adds,
    megabytes read and copied, and rows that come on top."""
    view, part = 4 * 6000 * 3375e-6, 4 * 1280 * 720e-6

    def filtered(words, name, lobes):
        count = multiply_adds(lobes, 3.125)
        return (words, name, f"{count:.0f} million multiply-adds in pairs, reading {view:.0f} MB",
                count, view, 0, ())

    def deep(words, name, sample_bytes):
        count = 2 * multiply_adds(5, 3.125)
        read = sample_bytes * view
        return (words, name, f"{count:.0f} million float multiply-adds, reading {read:.0f} MB",
                count, read, 0, ())

    magnified = multiply_adds(5, 1 / 1.5)
    return [
        filtered("Hi Qual at 3.125", "kelto/hiqual/3.125", 5),
        ("Hi Qual magnifying 1.5 times", "kelto/hiqual/1/1.5",
         f"{magnified:.0f} million multiply-adds in pairs, reading {part:.1f} MB, tables",
         magnified, part, 0, ("tables/hiqual/1/1.5",)),
        filtered("BSpline Catmull at 3.125", "kelto/catmull/3.125", 2),
        filtered("Ultra Qual at 3.125", "kelto/ultra/3.125", 16),
        deep("16 bits, opaque, Hi Qual at 3.125", "deep/16 bits/hiqual/3.125", 2),
        deep("16 bits with alpha", "deep/16 bits, alpha/hiqual/3.125", 2),
        deep("Floats, opaque", "deep/float/hiqual/3.125", 4),
        deep("Floats with alpha", "deep/float, alpha/hiqual/3.125", 4),
        ("Real Time at 3.125", "kelto/realtime/3.125", "reading 26 MB", 0, 26, 0, ()),
        ("Real Time magnifying 1.5 times", "kelto/realtime/1/1.5",
         f"writing 4 MB, reading {part:.1f} MB", 0, 0, 4.1, ()),
        ("24-megapixel JPEG to cached image", "kelto/load/rgb levels",
         "the decoder, and writing 96 MB", 0, 0, 96, ("libjpeg-turbo/to RGB",)),
    ]


def roof(results):
    """The rows of the table of `bounds`."""
    memory = ("peak/read 81 MB", "peak/copy 40 MB")
    for words, name, bound, count, read, copied, others in bounds():
        kind = "float" if name.startswith("deep/") else "16-bit"
        peaks = (f"peak/{kind} multiply-adds", *memory)
        if results.has(name, *peaks, *others):
            products, reading, copying = (results.rates[peak] * 1e-9 for peak in peaks)
            least = count / products + read / reading + copied / copying
            least += sum(results.times[other] for other in others)
            time = results.times[name]
            yield (words, milliseconds(time), bound, milliseconds(least),
                   f"{100 * least / time:.0f} %")


def line(points):
    """What the straight line through the first and last of (x, ms) says of each x."""
    (x0, y0), (x1, y1) = points[0], points[-1]
    return [y0 + (x - x0) * (y1 - y0) / (x1 - x0) for x, _ in points]


def step(largest, count):
    """The least round number that reaches `largest` in `count` steps."""
    unit = 10.0 ** math.floor(math.log10(largest / count))
    return next(digit * unit for digit in (1, 2, 3, 4, 5, 10) if digit * unit * count >= largest)


def graph(points, unit):
    """Lines of text with an `o` for each (x, ms)."""
    across = step(max(x for x, _ in points), GRAPH_COLUMNS / 10)
    down = step(max(y for _, y in points), GRAPH_ROWS)
    rows = [[" "] * (GRAPH_COLUMNS + 1) for _ in range(GRAPH_ROWS + 1)]
    for x, y in points:
        rows[round(y / down)][round(x / across * 10)] = "o"
    lines = ["ms"]
    for i, row in reversed(list(enumerate(rows))):
        lines.append(f"{i * down:4g} |{''.join(row)}".rstrip())
    labels = "".join(f"{i * across:<10g}" for i in range(GRAPH_COLUMNS // 10))
    return [*lines, "     +" + "-" * GRAPH_COLUMNS, f"      {labels.rstrip()}  {unit}"]


def growth(results, title, points):
    """The table and the graph of (words, x, row), x in the unit that ends the title."""
    points = sorted(points, key=lambda point: point[1])
    if len(points) < 3:
        return
    curve = [(x, results.times[name]) for _, x, name in points]
    expected = line(curve)
    table(title, ("", "ms", "line", "off by"),
          [(words, milliseconds(time), milliseconds(on_line),
            f"{100 * (time / on_line - 1):+.0f} %")
           for (words, _, _), (_, time), on_line in zip(points, curve, expected)])
    print("\n".join(["```", *graph(curve, title.rsplit(" by ", 1)[-1]), "```", ""]))


def engine_tables(results):
    """What is told of the engine by filter, scale, target and part."""
    table("Every filter at every scale, source pixels per frame pixel", ("filter", *SCALES),
          [(words, *(results.cell(f"kelto/{name}/{scale}") for scale in SCALES))
           for name, words in FILTERS.items()])
    table("Of that, the tables alone", ("filter", *SCALES),
          [(FILTERS[name], *(results.cell(f"tables/{name}/{scale}") for scale in SCALES))
           for name in ("catmull", "hiqual", "ultra")])
    on_targets = [name for name in results.times if name.startswith("kelto_on/")]
    on_targets.sort(key=results.times.get, reverse=True)
    table("Hi Qual at 3.125 on each target", ("", *(name.split("/")[1] for name in on_targets)),
          [("ms", *(results.cell(name) for name in on_targets))] if on_targets else [])
    kernels = {"box": "nearest point's, a box", **FILTERS}
    del kernels["realtime"]
    table("Kernels at all taps of 1920 columns at 3.125", ("kernel", "ms", "ns a tap"),
          [(words, results.cell(f"kernels/{name}"),
            f"{1e9 / results.rates[f'kernels/{name}']:.1f}")
           for name, words in kernels.items() if results.has(f"kernels/{name}")])
    passes = ("both", "along rows", "down columns", "neither")
    table("Passes of Hi Qual with taps, tables made beforehand", ("scale", *passes),
          [(scale, *(results.cell(f"pass/{name}/{scale}") for name in passes))
           for scale in ("3.125", "1/1.5")])


def motion_table(results):
    """What the motion of a film costs by its number of keys, once and then at every frame."""
    def cell(kind, path, count, unit):
        name = f"motion/{kind}/{path}/{count} keys"
        return f"{results.times[name] * unit:.3g}" if results.has(name) else ""

    table("The motion by keys", ("path", "keys", "once, ms", "each frame, ns"),
          [(path, f"{count}", cell("make", path, count, 1), cell("ask", path, count, 1e6))
           for path in ("linear", "spline") for count in (2, 100, 10000)
           if f"motion/ask/{path}/{count} keys" in results.times])


def main(paths):
    results = Results(paths)
    table("Everything", ("work", "CPU ms", "rate"),
          [(name, f"{time:.3f}",
            f"{results.rates[name] * 1e-9:.1f} G/s" if name in results.rates else "")
           for name, time in sorted(results.times.items())])
    table("Against others", ("work", "ours", "peer", "ratio", "wanted"),
          [comparison(results, *row) for row in COMPARISONS if results.has(row[1], row[2])])
    engine_tables(results)
    motion_table(results)
    table("How far from the roof", ("work", "ms", "bound", "ms", "share"), roof(results))
    sizes = [(re.fullmatch(r"growth/(\d+)x(\d+)", name), name) for name in results.times]
    growth(results, "Hi Qual at 3.125 by million output pixels",
           [(f"{size[1]} x {size[2]}", int(size[1]) * int(size[2]) * 1e-6, name)
            for size, name in sizes if size])
    growth(results, "Filters at 3.125 by taps",
           [(f"{taps} taps", taps, f"kelto/{name}/3.125") for name, taps in FILTER_TAPS.items()
            if results.has(f"kelto/{name}/3.125")])
    widths = [(re.fullmatch(r"growth/(\d+) taps", name), name) for name in results.times]
    growth(results, "Windowed sincs of more and more lobes at 3.125 by taps",
           [(width[0].removeprefix("growth/"), int(width[1]), name)
            for width, name in widths if width])
    if results.missing and not os.environ.get("KELTO_BENCH_FILTER"):
        sys.exit("report: no results for " + ", ".join(sorted(results.missing)))


if __name__ == "__main__":
    main(sys.argv[1:])
