"""Prints the results of a benchmark program as Markdown: table.py RESULTS.json CMakeCache.txt"""
import collections
import json
import re
import subprocess
import sys

BYTES = {"bits": 0.125, "u8": 1, "u16": 2, "f32": 4, "f64": 8}


def read(path):
    """Median rates in pixels per second by (operation, type, size, who), and the context of the run."""
    with open(path) as file:
        results = json.load(file)
    rates = {}
    for entry in results["benchmarks"]:
        if entry.get("aggregate_name") == "median":
            operation, kind, size, who = entry["run_name"].split("/")
            rates[operation, kind, int(size), who] = entry["items_per_second"]
    return rates, results["context"]


def machine(cache_path, context):
    with open(cache_path) as file:
        cache = file.read()
    compiler = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache, re.M).group(1)
    version = subprocess.run([compiler, "--version"], capture_output=True, text=True).stdout.splitlines()[0]
    processor = "unknown processor"
    try:
        with open("/proc/cpuinfo") as file:
            fields = dict(line.split(":", 1) for line in file.read().split("\n\n")[0].splitlines() if ":" in line)
        fields = {key.strip(): value.strip() for key, value in fields.items()}
        processor = "{}, family {}, model {}".format(fields["model name"], fields["cpu family"], fields["model"])
    except (OSError, KeyError):
        pass
    print(f"{processor}; {context['num_cpus']} cores; {version}; {context['date'][:10]}; "
          f"load average {context['load_avg'][0]:.1f} at the start.\n")


def ratio(value, reference):
    return f"{value / reference:.2f}" if value and reference else "-"


def row(*cells):
    print("| " + " | ".join(cells) + " |")


def interface(rates):
    print("Rates in 10^9 pixels a second. *x memcpy*: pixels against memcpy of the same picture "
          "(casts from another type: bytes\n"
          "read and written against those of memcpy). "
          "*x OpenCV*: pixels. *circle*: time for a pixel of the largest circle\n"
          "over that for a pixel of the whole image.\n")
    row("operation", "type", "size", "rate", "x memcpy", "x OpenCV", "circle")
    row("---", "---", "--:", "--:", "--:", "--:", "--:")
    for operation, kind, size in dict.fromkeys(key[:3] for key in rates):
        whole = rates.get((operation, kind, size, "whole"))
        if not whole:
            continue
        copied = rates.get(("memcpy", kind, size, "memcpy"))
        source = operation.split()[-1]
        if operation.startswith("cast") and copied:
            copied *= 2 * BYTES[kind] / (BYTES[kind] + BYTES[source])
        row(operation, kind, str(size), f"{whole / 1e9:.2f}", ratio(whole, copied),
            ratio(whole, rates.get((operation, kind, size, "opencv"))),
            ratio(whole, rates.get((operation, kind, size, "circle"))))


def small(rates):
    print("Nanoseconds a call, on the whole image. *x OpenCV*: how many times as fast.\n")
    row("operation", "type", "1x1", "16x16", "64x64", "x OpenCV")
    row("---", "---", "--:", "--:", "--:", "---")
    for operation, kind in dict.fromkeys(key[:2] for key in rates if key[3] == "whole"):
        sizes = (1, 16, 64)
        ours = [rates.get((operation, kind, size, "whole")) for size in sizes]
        row(operation, kind, *(f"{size * size / rate * 1e9:.0f}" if rate else "-" for size, rate in zip(sizes, ours)),
            ", ".join(ratio(rate, rates.get((operation, kind, size, "opencv"))) for size, rate in zip(sizes, ours)))


def kernels(rates):
    print("Rates in 10^9 pixels a second, for each variant that this processor can run.\n")
    row("kernel", "type", "size", "variants")
    row("---", "---", "--:", "---")
    groups = collections.defaultdict(list)
    for (kernel, kind, size, variant), rate in rates.items():
        groups[kernel, kind, size].append(f"{variant} {rate / 1e9:.2f}")
    for (kernel, kind, size), variants in groups.items():
        row(kernel, kind, str(size), ", ".join(variants))


def robust(rates):
    print("Trials: rates in 10^9 pixels a second and, in brackets, against memcpy of the same picture; "
          "*near*: scored 5 % above the best\n"
          "surface so far, *far*: many times above it, *winner*: scored in full. "
          "Searches: milliseconds until the result.\n")
    row("fit", "type", "size", "figures")
    row("---", "---", "--:", "---")
    groups = collections.defaultdict(list)
    for (operation, kind, size, who), rate in rates.items():
        if who == "search":
            groups[operation, kind, size].append(f"{size * size / rate * 1e3:.1f} ms")
        elif who != "memcpy":
            copied = rates.get(("memcpy", kind, size, "memcpy"))
            groups[operation, kind, size].append(f"{who} {rate / 1e9:.2f} ({ratio(rate, copied)})")
    for (operation, kind, size), figures in groups.items():
        row(operation, kind, str(size), ", ".join(figures))


def outlines(rates):
    print("Nanoseconds a vertex and, in brackets, how many times as fast as the peer.\n")
    row("operation", "100", "10^4", "10^6")
    row("---", "--:", "--:", "--:")
    for operation, kind in dict.fromkeys(key[:2] for key in rates if key[3] == "orlix"):
        cells = []
        for size in (100, 10000, 1000000):
            rate = rates.get((operation, kind, size, "orlix"))
            peers = [f"{ratio(rate, rates[operation, kind, size, other])}{suffix}"
                     for other, suffix in (("opencv", ""), ("memcpy", " x memcpy"))
                     if (operation, kind, size, other) in rates]
            cells.append(f"{1e9 / rate:.2f} ({', '.join(peers)})" if rate else "-")
        row(operation, *cells)


def raster(rates):
    print("A window of 1920 x 1080 pixels of 32 bits onto a picture of 4096 x 4096: "
          "rates in 10^9 pixels of the window a second and, in\n"
          "brackets, against memcpy of the window. The part of the picture that is shown is named first.\n")
    row("part and scaling", "figures")
    row("---", "---")
    copied = rates["window", "u8", 4096, "memcpy"]
    groups = collections.defaultdict(list)
    for (operation, _, _, who), rate in rates.items():
        groups[operation].append(f"{who} {rate / 1e9:.2f} ({ratio(rate, copied)})")
    for operation, figures in groups.items():
        row(operation, ", ".join(figures))


def streams(rates):
    print("Processor time of saving and loading against that of zlib alone on the same bytes.\n")
    row("operation", "type", "size", "rate", "time against zlib")
    row("---", "---", "--:", "--:", "--:")
    for (operation, kind, size, who), rate in rates.items():
        if who == "orlix":
            row(operation, kind, str(size), f"{rate / 1e9:.2f}", ratio(rates[operation, kind, size, "zlib"], rate))


def frames(rates):
    print("Rates in 10^9 pixels a second; *x memcpy*: bytes read and written against those of memcpy.\n")
    row("frame", "size", "rate", "x memcpy")
    row("---", "--:", "--:", "--:")
    for (frame, kind, size, who), rate in rates.items():
        if who == "frame":
            row(frame, str(size), f"{rate / 1e9:.2f}", ratio(rate, rates.get((frame, kind, size, "memcpy"))))


def binary(rates):
    print("Rates in GB of bits a second. *x copy*: against memcpy of the bits. Others: how many times as fast.\n")
    row("operation", "who", "rate", "x copy", "x OpenCV", "x Leptonica")
    row("---", "---", "--:", "--:", "--:", "--:")
    for (operation, kind, size, who), rate in rates.items():
        if who not in ("opencv", "leptonica"):
            row(operation, who, f"{rate * BYTES[kind] / 1e9:.2f}", ratio(rate, rates["copy", kind, size, "memcpy"]),
                *(ratio(rate, rates.get((operation, kind, size, peer))) for peer in ("opencv", "leptonica")))


def main():
    rates, context = read(sys.argv[1])
    machine(sys.argv[2], context)
    # Interleaving leaves the results in random order.
    order = {kind: i for i, kind in enumerate(BYTES)}
    rates = dict(sorted(rates.items(), key=lambda item: (item[0][0], order[item[0][1]], item[0][2], item[0][3])))
    if any(key[1] == "bits" for key in rates):
        binary(rates)
    elif any(key[3] == "search" for key in rates):
        robust(rates)
    elif any(key[3] == "zlib" for key in rates):
        streams(rates)
    elif any(key[3] == "frame" for key in rates):
        frames(rates)
    elif any(key[3] == "orlix" for key in rates):
        outlines(rates)
    elif any(key[0] == "window" for key in rates):
        raster(rates)
    elif any(key[2] < 100 and key[3] == "whole" for key in rates):
        small(rates)
    elif any(key[0] == "memcpy" or key[3] == "whole" for key in rates):
        interface(rates)
    else:
        kernels(rates)


main()
