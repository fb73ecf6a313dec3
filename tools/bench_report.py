#!/usr/bin/env python3
"""Turns the JSON files of the benchmark programs into a table of ratios and a chart.

Every benchmark is named "row/variant"; the first variant of a row is the subject. Its n-th repetition is paired with
the n-th of every other variant, and the median of the ratios is reported.
"""

import argparse
import fractions
import html
import json
import math
import pathlib
import platform
import statistics
import subprocess

RIVALS = ("libjpeg-turbo", "OpenJPEG", "Grok", "libtiff", "libjxr", "libsquish", "stb_dxt")


def read_rows(path):
    """Row name -> variant name -> list of (time in ns, unit, amount), in the order of registration."""
    rows = {}
    runs = json.loads(path.read_text())["benchmarks"]
    for run in sorted(runs, key=lambda run: run["family_index"]):
        if run["run_type"] != "iteration" or run.get("error_occurred"):
            continue
        by_the_clock = run["run_name"].endswith("/real_time")
        row, variant = run["run_name"].removesuffix("/real_time").rsplit("/", 1)
        scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
        units = ("pixels", "blocks", "bytes", "differences", "samples", "decisions", "MCUs")
        unit = next((u for u in units if u in run), None)
        amount = run[unit] / run["iterations"] if unit else 1.0
        entry = (run["repetition_index"], run["real_time" if by_the_clock else "cpu_time"] * scale, unit or "run", amount)
        rows.setdefault(row, {}).setdefault(variant, []).append(entry)
    for variants in rows.values():
        for runs in variants.values():
            runs.sort()
    return rows


def ratios(variants):
    """Other variant -> median of (its time / the subject's time)."""
    subject, *others = variants
    times = [run[1] for run in variants[subject]]
    return {
        other: statistics.median(o[1] / t for o, t in zip(variants[other], times)) for other in others
    }


def speed_text(runs):
    nanoseconds = statistics.median(run[1] for run in runs)
    unit, amount = runs[0][2], runs[0][3]
    if unit == "pixels":
        return f"{amount / nanoseconds * 1e3:.1f} MP/s"
    if unit == "bytes":
        return f"{amount / nanoseconds:.2f} GB/s"
    return f"{nanoseconds / amount:.2f} ns/{unit.rstrip('s')}"


def machine_text():
    cpu = next(
        (line.split(":", 1)[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")),
        platform.processor(),
    )
    compiler = subprocess.run(["g++", "--version"], capture_output=True, text=True).stdout.split("\n")[0]
    packages = subprocess.run(
        ["dpkg-query", "-W", "-f", "; ${Package} ${Version}", "libturbojpeg0-dev", "libopenjp2-7-dev",
         "libgrokj2k1-dev", "libtiff-dev", "libjxr-dev", "libsquish-dev", "libstb-dev"],
        capture_output=True, text=True
    ).stdout
    return f"{cpu}; {compiler}{packages}; one thread unless said"


def table(topic, rows):
    lines = [f"## {topic}\n", "| work | variant | speed | times as fast as |", "|---|---|---|---|"]
    for row, variants in rows.items():
        subject = next(iter(variants))
        faster = ", ".join(f"{other} {ratio:.2f}" for other, ratio in ratios(variants).items())
        lines.append(f"| {row} | {subject} | {speed_text(variants[subject])} | {faster} |")
    return "\n".join(lines) + "\n"


def chart(rows):
    """Bars of the ratio to each rival, each doubling as far from the next, as SVG."""
    bars = [
        (row, other, ratio)
        for row, variants in rows.items()
        for other, ratio in ratios(variants).items()
        if other.startswith(RIVALS)
    ]
    if not bars:
        return None
    height, width, least, most = 20, 380, -3, 7
    left = 20 + 6.5 * max(len(f"{row}: {other}") for row, other, _ in bars)
    total = height * (len(bars) + 2)
    x = lambda ratio: left + width * (min(max(math.log2(ratio), least), most) - least) / (most - least)
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 60}" height="{total}" '
        f'font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
    ]
    for power in range(least, most + 1):
        label = "as fast" if power == 0 else str(fractions.Fraction(2) ** power)
        parts.append(f'<path d="M{x(2**power):.1f} {height}V{total - 8}" stroke="{"black" if power == 0 else "#ddd"}"/>')
        parts.append(f'<text x="{x(2**power):.1f}" y="14" text-anchor="middle">{label}</text>')
    for i, (row, other, ratio) in enumerate(bars):
        y = height * (i + 1) + 2
        begin, end = sorted((x(1), x(ratio)))
        colour = "#2a7f62" if ratio >= 1 else "#b5523b"
        parts.append(f'<text x="{left - 8}" y="{y + 13}" text-anchor="end">{html.escape(f"{row}: {other}")}</text>')
        parts.append(f'<rect x="{begin:.1f}" y="{y + 2}" width="{end - begin:.1f}" height="{height - 5}" fill="{colour}"/>')
        parts.append(f'<text x="{x(max(ratio, 1)) + 4:.1f}" y="{y + 13}">{ratio:.2f}</text>')
    return "\n".join(parts) + "</svg>\n"


def section(topic, rows, directory):
    """The topic's table, below its chart if there are rivals; the chart goes into the directory."""
    picture = chart(rows)
    if not picture:
        return table(topic, rows)
    name = f"performance-{topic}.svg"
    (directory / name).write_text(picture)
    heading, rest = table(topic, rows).split("\n\n", 1)
    return f"{heading}\n\n![Times as fast as the rivals]({name})\n\n{rest}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--publish", metavar="DIR", help="write performance.md and its charts there, not beside the results")
    parser.add_argument("results", nargs="+", help="JSON files, without .json")
    arguments = parser.parse_args()
    topics = {pathlib.Path(r).name: read_rows(pathlib.Path(r + ".json")) for r in arguments.results}
    print(f"\n{machine_text()}\nMedians of paired runs.\n")
    print("\n".join(table(topic, rows) for topic, rows in topics.items()))
    directory = pathlib.Path(arguments.publish or pathlib.Path(arguments.results[0]).parent)
    sections = [section(topic, rows, directory) for topic, rows in topics.items()]
    (directory / "performance.md").write_text(
        "# Performance\n\nWritten by `./dev bench --publish`; medians of paired runs.\n\n"
        f"{machine_text()}\n\n" + "\n".join(sections)
    )


if __name__ == "__main__":
    main()
