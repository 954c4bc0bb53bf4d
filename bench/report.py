"""Tables of benchmark results: medians of CPU time, and the ratios that matter.

usage: report.py RESULTS.json...   (Google Benchmark's JSON, with repetitions)

Results must be there for every comparison, unless KELTO_BENCH_FILTER says which were wanted.
"""
import json
import os
import statistics
import sys

# What is compared: the words of the row, ours, the peer's, and how to read the ratio.
COMPARISONS = [
    ("Hi Qual at 3.125, moving, against zimg with tables rebuilt",
     "kelto/hiqual/3.125", "zimg/lanczos5/3.125/tables rebuilt", "at least 2.0"),
    ("the same against zimg's kernel alone",
     "kelto/hiqual/3.125", "zimg/lanczos5/3.125/kernel alone", "at least 1.0"),
    ("the same against swscale's five-lobe Lanczos",
     "kelto/hiqual/3.125", "swscale/lanczos5/3.125", ""),
    ("the same against OpenCV's Lanczos, `resize`",
     "kelto/hiqual/3.125", "opencv/lanczos4 resize/3.125", ""),
    ("the same against OpenCV's Lanczos, `warpAffine`",
     "kelto/hiqual/3.125", "opencv/lanczos4 warp/3.125", ""),
    ("Hi Qual at 1.5x magnification against zimg with tables rebuilt",
     "kelto/hiqual/1/1.5", "zimg/lanczos5/1/1.5/tables rebuilt", "at least 2.0"),
    ("BSpline Catmull at 3.125 against zimg bicubic with tables rebuilt",
     "kelto/catmull/3.125", "zimg/bicubic/3.125/tables rebuilt", "at least 1.3"),
    ("Ultra Qual at 3.125 in Hi Qual's time",
     "kelto/hiqual/3.125", "kelto/ultra/3.125", "at most 3.5"),
    ("Real Time at 3.125 against swscale's nearest point",
     "kelto/realtime/3.125", "swscale/nearest/3.125", "at least 1.5"),
    ("Real Time at 1.5x magnification against the same",
     "kelto/realtime/1/1.5", "swscale/nearest/1/1.5", "at least 1.5"),
    ("24-megapixel JPEG, file to cached image, in the bare decoder's time",
     "libjpeg-turbo/to RGB", "kelto/load/rgb levels", "at most 1.8"),
    ("the same of a JPEG with an sRGB profile",
     "libjpeg-turbo/to RGB", "kelto/load/sRGB profile", "at most 1.8"),
]


def medians(paths):
    """CPU milliseconds by name, and items or bytes a second where a row has them."""
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
    return ({name: statistics.median(values) for name, values in times.items()},
            {name: statistics.median(values) for name, values in rates.items()})


def main(paths):
    times, rates = medians(paths)
    missing = {name for _, ours, peer, _ in COMPARISONS for name in (ours, peer)} - times.keys()
    if missing and not os.environ.get("KELTO_BENCH_FILTER"):
        sys.exit("report: no results for " + ", ".join(sorted(missing)))
    print("| work | CPU ms | |")
    print("|---|---:|---|")
    for name, time in sorted(times.items()):
        rate = f"{rates[name] * 1e-9:.1f} G/s" if name in rates else ""
        print(f"| {name} | {time:.3f} | {rate} |")
    print()
    print("| comparison | ratio | wanted |")
    print("|---|---:|---|")
    for words, ours, peer, wanted in COMPARISONS:
        if ours in times and peer in times:
            print(f"| {words} | {times[peer] / times[ours]:.2f} | {wanted} |")


if __name__ == "__main__":
    main(sys.argv[1:])
