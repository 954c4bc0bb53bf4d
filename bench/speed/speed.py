"""usage: speed.py KELTO PHOTO: prints a table of --speed by codec."""
import os
import subprocess
import sys

from cpu_time import of_children

WORDS = ["slow", "medium", "fast", "fastest"]
CODECS = {"h264": "mp4", "h265": "mp4", "vp9": "webm", "av1": "mp4"}
FILM = ["--size", "640x360", "--frames", "25", "--from", "1", "--to", "2", "--quiet"]


def measured(kelto, photo, codec, word):
    """CPU seconds of a film, and its bytes."""
    film = f"film.{CODECS[codec]}"
    before = of_children()
    subprocess.run([kelto, "render", photo, "-o", film, "--codec", codec, "--speed", word, *FILM],
                   check=True)
    seconds = of_children() - before
    size = os.path.getsize(film)
    os.remove(film)
    return seconds, size


def main(kelto, photo):
    """A row a codec; sizes are beside the usual speed's."""
    print("| codec | " + " | ".join(f"`{word}`" for word in WORDS) + " |")
    print("|---|" + "---:|" * len(WORDS))
    for codec in CODECS:
        films = {word: measured(kelto, photo, codec, word) for word in WORDS}
        usual = films["medium"][1]
        cells = [f"{seconds:.1f} s, {100 * size / usual:.0f} %" for seconds, size in films.values()]
        print(f"| {codec} | " + " | ".join(cells) + " |", flush=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
