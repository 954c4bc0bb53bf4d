"""Measures how evenly a bright spot moves.

    tremble.py blob FILE WIDTH HEIGHT       writes a PGM picture of a Gaussian spot on black
    tremble.py row TITLE FILE WIDTH HEIGHT  prints a table row for raw 8-bit grey frames
"""
import math
import sys


def write_blob(path, width, height):
    deviation = width / 16
    columns = [math.exp(-((x - width / 2) ** 2) / (2 * deviation**2)) for x in range(width)]
    with open(path, "wb") as file:
        file.write(b"P5 %d %d 255\n" % (width, height))
        for y in range(height):
            row = 255 * math.exp(-((y - height / 2) ** 2) / (2 * deviation**2))
            file.write(bytes(round(row * column) for column in columns))


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
    print(f"| {title:48} | {abs(x[-1] - x[0]):8.2f} | {backward:8d} | {standing:8d} | {tremble:11.4f} |")


if __name__ == "__main__":
    if sys.argv[1] == "blob":
        write_blob(sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
    else:
        print_row(sys.argv[2], sys.argv[3], int(sys.argv[4]), int(sys.argv[5]))
