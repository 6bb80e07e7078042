#!/usr/bin/env python3
"""Prints one table from the JSON files that Scripts/bench has written into a folder."""
import json
import pathlib
import sys


def google_benchmark_rows(name, data):
    for run in data["benchmarks"]:
        if run.get("aggregate_name", "median") != "median":
            continue
        extras = "  ".join(f"{key} {run[key]:.3g}" for key in sorted(run)
                           if isinstance(run[key], float) and key not in ("real_time", "cpu_time"))
        yield name, run["run_name"], f"{run['real_time']:.3f} {run['time_unit']}", extras


def meter_rows(name, data):
    for row in data:
        program, reference = row.get("program", {}), row.get("reference", {})
        yield (name, row["displays"], f"{program.get('medianMS', float('nan')):.2f} ms",
               f"reference {reference.get('medianMS', float('nan')):.2f} ms  ratio {row.get('ratio', float('nan')):.2f}")


def main():
    rows = []
    for path in sorted(pathlib.Path(sys.argv[1]).glob("*.json")):
        data = json.loads(path.read_text())
        rows += meter_rows(path.stem, data) if isinstance(data, list) else google_benchmark_rows(path.stem, data)
    widths = [max((len(row[column]) for row in rows), default=0) for column in range(3)]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)), row[3], sep="  ")


if __name__ == "__main__":
    main()
