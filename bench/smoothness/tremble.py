"""Measures how evenly a bright spot moves.

    tremble.py blob FILE WIDTH HEIGHT       writes a PGM picture of a Gaussian spot on black
    tremble.py zoom FILE WIDTH HEIGHT       writes raw grey frames of the slow zoom into that picture,
                                            calculated instead of rendered, and rounded to 8 bits
    tremble.py row TITLE FILE WIDTH HEIGHT  prints a table row for raw 8-bit grey frames
"""
import math
import sys

SPOT = 1 / 16  # the spot's standard deviation, in widths of the picture
ZOOM_FROM, ZOOM_TO, ZOOM_X, ZOOM_FRAMES = 1.25, 1.5, -0.12, 60  # as run.sh has it rendered


def spot_rows(width, height, x, y, deviation):
    """The rows of a picture with a Gaussian spot whose middle is at x, y."""
    columns = [math.exp(-((i - x) ** 2) / (2 * deviation**2)) for i in range(width)]
    for j in range(height):
        row = 255 * math.exp(-((j - y) ** 2) / (2 * deviation**2))
        yield bytes(round(row * column) for column in columns)


def write_blob(path, width, height):
    with open(path, "wb") as file:
        file.write(b"P5 %d %d 255\n" % (width, height))
        file.writelines(spot_rows(width, height, width / 2, height / 2, SPOT * width))


def write_zoom(path, width, height):
    """What the best of filters could make of the zoom: only the rounding of levels is left."""
    with open(path, "wb") as file:
        for frame in range(ZOOM_FRAMES):
            zoom = ZOOM_FROM * (ZOOM_TO / ZOOM_FROM) ** (frame / (ZOOM_FRAMES - 1))
            x = (width - 1) / 2 - ZOOM_X * width * zoom
            file.writelines(spot_rows(width, height, x, height / 2, SPOT * width * zoom))


def centroids(path, width, height):
    """The spot's horizontal centre in each frame, in pixels."""
    with open(path, "rb") as file:
        while len(frame := file.read(width * height)) == width * height:
            floor = min(frame)  # studio-range black counts as black
            columns = [sum(frame[x::width]) - floor * height for x in range(width)]
            yield sum(x * v for x, v in enumerate(columns)) / sum(columns)


def print_row(title, path, width, height):
    x = list(centroids(path, width, height))
    steps = [b - a for a, b in zip(x, x[1:])]
    direction = 1 if x[-1] > x[0] else -1
    second = [b - a for a, b in zip(steps, steps[1:])]
    mean = sum(second) / len(second)
    tremble = math.sqrt(sum((s - mean) ** 2 for s in second) / len(second))
    backward = sum(step * direction < -0.0005 for step in steps)
    standing = sum(abs(step) <= 0.0005 for step in steps)
    largest = max(abs(s - mean) for s in second)
    print(f"| {title:48} | {abs(x[-1] - x[0]):8.2f} | {backward:8d} | {standing:8d} "
          f"| {tremble:11.4f} | {largest:7.4f} |")


if __name__ == "__main__":
    if sys.argv[1] == "blob":
        write_blob(sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
    elif sys.argv[1] == "zoom":
        write_zoom(sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
    else:
        print_row(sys.argv[2], sys.argv[3], int(sys.argv[4]), int(sys.argv[5]))
