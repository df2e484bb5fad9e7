#!/usr/bin/env python3
"""README's table of figures, from the tables that `make bench` made for docs/performance.md.

readme_figures.py          writes it
readme_figures.py --check  fails where README's differs
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BEGIN, END = "<!-- figures: docs/readme_figures.py -->", "<!-- end of figures -->"
# What the rows are called there and here.
SPEEDS = [
    ("pose of given joints, with its quaternion", "ArmFk", "KDL with quaternion", "Orocos KDL"),
    ("joints of a pose, started 1 mm away", "ArmIk", "KDL NR, wdls", "KDL, Newton-Raphson"),
    ("", "ArmIk", "KDL LMA", "KDL, Levenberg-Marquardt"),
    ("straight line of 500 waypoints", "ramped line", "KDL NR, wdls", "KDL, Newton-Raphson"),
    ("joint move of 500 waypoints", "trapezoid", "KDL trapezoid", "KDL, trapezoidal profiles"),
]
SHARES = [("KDL NR, wdls", "KDL, Newton-Raphson"),
          ("KDL NR with joint limits, wdls", "KDL, Newton-Raphson with limits"),
          ("KDL LMA", "KDL, Levenberg-Marquardt")]


def times_as_fast(ratio):
    """Two digits of what the ratio of times is the inverse of."""
    return f"{float(f'{1 / ratio:.2g}'):g}"


def made(performance):
    cells = [[cell.strip() for cell in line.strip("|").split("|")]
             for line in performance.splitlines() if line.startswith("| ")]
    ratios = {(row[0], row[1]): float(row[2]) for row in cells if len(row) == 6 and row[3].startswith("±")}
    shares = {row[0]: row[1] for row in cells if len(row) == 2 and row[1].endswith(" %")}
    date = re.search(r"^- date: (.*)$", performance, re.M)[1]
    lines = ["| | beside | |", "|---|---|---|"]
    for name, what, beside, peer in SPEEDS:
        lines.append(f"| {name} | {peer} | **{times_as_fast(ratios[what, beside])} times** as fast |")
    for number, (beside, peer) in enumerate(SHARES):
        name = "reachable poses solved within the joint limits, started far away" if number == 0 else ""
        lines.append(f"| {name} | {peer} | **{shares['qal::Nearest']}**, beside {shares[beside]} |")
    lines.append("")
    lines.append(f"Measured on {date} by `make bench`, on one core, side by side ([docs/performance.md](docs/performance.md)); "
                 "KDL works for any chain of joints, and finds one solution.")
    return "\n".join(lines)


def main():
    readme = ROOT / "README.md"
    text = readme.read_text()
    before, rest = text.split(BEGIN)
    old, after = rest.split(END)
    new = f"\n{made((ROOT / 'docs/performance.md').read_text())}\n"
    if "--check" not in sys.argv:
        readme.write_text(before + BEGIN + new + END + after)
    elif old != new:
        sys.exit("README's table isn't that of docs/performance.md; run docs/readme_figures.py")


if __name__ == "__main__":
    main()
