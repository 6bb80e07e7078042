#!/usr/bin/env python3
"""Reads the JSON files that Scripts/bench has written into a folder: prints one table of all figures and
one of the budgets, and draws the budgets.

    report.py FOLDER [DRAWING.svg]
"""
import json
import pathlib
import re
import sys
from dataclasses import dataclass


@dataclass
class Row:
    source: str
    name: str
    value: float
    unit: str
    extras: dict


def google_benchmark_rows(source, data):
    for run in data["benchmarks"]:
        if run.get("aggregate_name", "median") != "median" or run.get("error_occurred"):
            continue
        extras = {key: run[key] for key in sorted(run)
                  if isinstance(run[key], float) and key not in ("real_time", "cpu_time")}
        name = re.sub(r"/(iterations|repeats):\d+|/(manual|real)_time|_median$", "", run["run_name"])
        yield Row(source, name, run["real_time"], run["time_unit"], extras)


def meter_rows(source, data):
    for entry in data:
        if "displays" in entry:
            extras = {"first_ms": entry["program"]["firstMS"], "ratio": entry["ratio"],
                      "reference_ms": entry["reference"]["medianMS"]}
            yield Row(source, entry["displays"], entry["program"]["medianMS"], "ms", extras)
        else:
            extras = {key: entry[key] for key in ("ratio", "reference") if key in entry}
            yield Row(source, entry["name"], entry["value"], entry["unit"], extras)


def soak_rows(source, data):
    for key, unit in (("memoryKiB", "KiB"), ("openFiles", "files"), ("sharedSegments", "segments"),
                      ("serverResources", "resources"), ("serverPixmapBytes", "bytes")):
        pair = data[key]
        yield Row(source, f"{key} after {data['captures']} captures", pair["atTheEnd"], unit,
                  {"growth": pair["atTheEnd"] - pair["afterWarmUp"]})


def read(folder):
    rows = []
    for path in sorted(folder.glob("*.json")):
        data = json.loads(path.read_text())
        kind = meter_rows if isinstance(data, list) else soak_rows if "captures" in data else google_benchmark_rows
        rows += kind(path.stem, data)
    return rows


@dataclass
class Budget:
    """`figure` is at most `limit`, or at least when `least` is set."""
    what: str
    figure: float
    limit: float
    unit: str
    least: bool = False

    def is_kept(self):
        return self.figure >= self.limit if self.least else self.figure <= self.limit

    def usage(self):
        """How much of the budget is used: 1 is all of it."""
        if self.least:
            return self.limit / self.figure
        return self.figure / self.limit if self.limit else self.figure


def budgets(rows):
    def select(source, pattern):
        return [row for row in rows if row.source == source and re.search(pattern, row.name)]

    def single(source, pattern):
        return next(iter(select(source, pattern)), None)

    for row in select("KeyToVisible", r"x"):
        yield Budget(f"key press to overlay visible, {row.name}", row.extras["ratio"], 1.3, "x reference")
    for row in select("PixelsInMemoryBenchmark", r"^native/"):
        yield Budget(f"pixels in memory, {row.name.removeprefix('native/')}", row.extras["ratio"], 1.2, "x reference")
    steps = select("canvas_step_benchmark",
                   r"^(dragSelection|moveSelection|resizeSelection|pen|marker|drawAmongLayers).*lines:2160")
    if steps:
        slowest = max(steps, key=lambda row: row.value)
        yield Budget(f"slowest pointer step at 4K ({slowest.name.split('/')[0]})", slowest.value, 4, "ms")
    for threads in (1, 2):
        ours = single("effects_benchmark", rf"^blurOurs/.*3840.*threads:{threads}")
        other = single("effects_benchmark", rf"^blurOpenCV/.*3840.*threads:{threads}")
        if ours and other:
            yield Budget(f"blur of 4K against OpenCV, {threads} thread(s)", other.value / ours.value, 1,
                         "x as fast", least=True)
    ours, other = single("png_benchmark", r"^ourPNG/3840"), single("png_benchmark", r"^toolkitPNG/3840")
    if ours and other:
        yield Budget("PNG of 4K, speed", other.value / ours.value, 6, "x as fast", least=True)
        yield Budget("PNG of 4K, size", ours.extras["bytes"] / other.extras["bytes"], 1.15, "x the size")
    start = single("ProgramCosts", "^start to event loop")
    if start:
        yield Budget("start to event loop", start.extras["ratio"], 1.5, "x empty program")
    for row in select("ProgramCosts", r"^idle PSS after"):
        yield Budget(row.name, row.value, 25, "MiB")
    for row in select("ProgramCosts", r"^idle wake-ups after"):
        yield Budget(row.name, row.value, 0, row.unit)
    for row in select("history_benchmark", r"^keepFrame"):
        yield Budget(f"history copy, {row.name.removeprefix('keepFrame/')}", row.extras["speed_ratio"], 0.8,
                     "x memcpy", least=True)
    grown = single("soak", "^memoryKiB")
    if grown:
        yield Budget(grown.name.removeprefix("memoryKiB "), grown.extras["growth"] / 1024, 2, "MiB growth")


def print_table(lines):
    widths = [max(len(line[column]) for line in lines) for column in range(len(lines[0]))]
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def draw(rows, path):
    """One bar per budget: the line is where the budget ends."""
    line_height, left, scale, top = 26, 330, 260, 46
    height = top + line_height * len(rows) + 18
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="930" height="{height}" '
             'font-family="sans-serif" font-size="13">',
             f'<rect width="930" height="{height}" fill="#ffffff"/>',
             '<text x="16" y="26" font-size="16" font-weight="bold" fill="#222222">Budgets: how much of each is used'
             '</text>']
    for index, row in enumerate(rows):
        y = top + index * line_height
        usage = min(row.usage(), 1.35)
        color = "#2f8f5b" if row.is_kept() else "#c8553d"
        sign = "at least" if row.least else "at most"
        parts += [f'<text x="16" y="{y + 15}" fill="#222222">{row.what}</text>',
                  f'<rect x="{left}" y="{y + 3}" width="{max(2, usage * scale):.0f}" height="16" rx="3" fill="{color}"/>',
                  f'<text x="{left + 1.35 * scale + 12:.0f}" y="{y + 15}" fill="#444444">{row.figure:.2f} '
                  f'{row.unit} ({sign} {row.limit:g})</text>']
    parts += [f'<line x1="{left + scale}" x2="{left + scale}" y1="{top - 4}" y2="{height - 14}" stroke="#222222" '
              'stroke-dasharray="4 3"/>', '</svg>\n']
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join(parts))


def main():
    rows = read(pathlib.Path(sys.argv[1]))
    if not rows:
        sys.exit(f"No figures in {sys.argv[1]}")
    print_table([(row.source, row.name, f"{row.value:.3f} {row.unit}",
                  "  ".join(f"{key} {value:.4g}" for key, value in row.extras.items())) for row in rows])
    kept = list(budgets(rows))
    if not kept:
        return
    print()
    print_table([(row.what, f"{row.figure:.2f} {row.unit}", f"{'>=' if row.least else '<='} {row.limit:g}",
                  "kept" if row.is_kept() else "OVER") for row in kept])
    if len(sys.argv) > 2:
        draw(kept, pathlib.Path(sys.argv[2]))


if __name__ == "__main__":
    main()
