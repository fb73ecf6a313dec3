#!/usr/bin/env python3
"""Turns the JSON files of the benchmark programs into a table of ratios and a chart.

Every benchmark is named "row/variant"; the first variant of a row is the subject. Its n-th repetition is paired with
the n-th of every other variant, and the median of the ratios is reported.
"""

import argparse
import html
import json
import pathlib
import platform
import statistics
import subprocess

LEVELS = ("AVX-512", "AVX2", "SSE4", "SSSE3", "portable")


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
        ["dpkg-query", "-W", "-f", "; ${Package} ${Version}", "libturbojpeg0-dev", "libtiff-dev", "libjxr-dev"],
        capture_output=True, text=True
    ).stdout
    return f"{cpu}; {compiler}{packages}; one thread unless said"


def table(topics):
    lines = []
    for topic, rows in topics.items():
        lines += [f"\n## {topic}\n", "| work | variant | speed | times as fast as |", "|---|---|---|---|"]
        for row, variants in rows.items():
            subject = next(iter(variants))
            faster = ", ".join(f"{other} {ratio:.2f}" for other, ratio in ratios(variants).items())
            lines.append(f"| {row} | {subject} | {speed_text(variants[subject])} | {faster} |")
    return "\n".join(lines)


def chart(topics):
    """Bars of the ratio to each peer (variants that are not levels of our own), as SVG."""
    bars = [
        (f"{row}, vs {other}", ratio)
        for rows in topics.values()
        for row, variants in rows.items()
        for other, ratio in ratios(variants).items()
        if other not in LEVELS
    ]
    if not bars:
        return None
    height, left, width = 22, 330, 420
    most = max(2.0, max(ratio for _, ratio in bars) * 1.05)
    x = lambda ratio: left + width * ratio / most
    total = height * (len(bars) + 2)
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 70}" height="{total}" '
        f'font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
        f'<text x="{x(1)}" y="14" text-anchor="middle">as fast as the peer</text>',
    ]
    for i, (label, ratio) in enumerate(bars):
        y = height * (i + 1)
        colour = "#2a7f62" if ratio >= 1 else "#b5523b"
        parts.append(f'<text x="{left - 6}" y="{y + 14}" text-anchor="end">{html.escape(label)}</text>')
        parts.append(f'<rect x="{left}" y="{y + 3}" width="{x(ratio) - left:.1f}" height="{height - 6}" fill="{colour}"/>')
        parts.append(f'<text x="{x(ratio) + 4:.1f}" y="{y + 14}">{ratio:.2f}</text>')
    parts.append(f'<path d="M{x(1):.1f} 18V{total - height}" stroke="black" stroke-dasharray="3 3"/></svg>')
    return "\n".join(parts)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--publish", metavar="DIR", help="write performance.md and performance.svg there")
    parser.add_argument("results", nargs="+", help="JSON files, without .json")
    arguments = parser.parse_args()
    topics = {pathlib.Path(r).name: read_rows(pathlib.Path(r + ".json")) for r in arguments.results}
    print(f"\n{machine_text()}\nMedians of paired runs.\n{table(topics)}")
    picture = chart(topics)
    directory = pathlib.Path(arguments.publish or pathlib.Path(arguments.results[0]).parent)
    if picture:
        (directory / "performance.svg").write_text(picture + "\n")
    if arguments.publish:
        image = "\n![Ratios to the peers](performance.svg)\n" if picture else ""
        (directory / "performance.md").write_text(
            "# Performance\n\nWritten by `./dev bench --publish`; medians of paired runs.\n\n"
            f"{machine_text()}\n{image}{table(topics)}\n"
        )


if __name__ == "__main__":
    main()
