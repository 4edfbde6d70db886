#!/usr/bin/env python3
"""Writes the page of results: report.py BUILD_DIRECTORY >docs/performance.md, from what the benches have left there."""
import datetime
import json
import math
import os
import platform
import re
import subprocess
import sys

KIB = 1024


class Results:
    """Times in nanoseconds by the name of a benchmark. Of the repetitions the least: others only make one slower."""

    def __init__(self, directory):
        self.rows = {}
        for program in ("library", "tree"):
            with open(f"{directory}/{program}.json") as file:
                for row in json.load(file)["benchmarks"]:
                    self.add(row)
        with open(f"{directory}/host.json") as file:
            self.host = json.load(file)

    def add(self, row):
        if row.get("run_type") == "aggregate":
            return
        if row.get("error_occurred"):
            raise SystemExit(f"report: {row['name']}: {row.get('error_message')}")
        name = re.sub(r"/(real_time|repeats:\d+)", "", row["name"])
        self.rows.setdefault(name, []).append(row)

    def _least(self, name, key):
        unit = {"ns": 1, "us": 1e3, "ms": 1e6}
        return min(row[key] * unit[row["time_unit"]] for row in self.rows[name])

    def cpu(self, name):
        return self._least(name, "cpu_time")

    def wall(self, name):
        return self._least(name, "real_time")

    def counter(self, name, counter):
        return max(row[counter] for row in self.rows[name])


def shown(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def times(ratio):
    return f"{ratio:.2g}" if ratio < 10 else f"{ratio:.0f}"


def verdict(met):
    return "" if met is None else "yes" if met else "no"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def compared(what, library, peers, bar=None):
    """Rows of one thing: the library, and each peer with how many times faster the library is."""
    rows = [(what, "library", shown(library), "", "", "")]
    fastest = min(peers.values())
    for peer, spent in peers.items():
        is_bar = bar is not None and spent == fastest
        rows.append(("", peer, shown(spent), times(spent / library), bar if is_bar else "",
                     verdict(library < spent) if is_bar else ""))
    return rows


COMPARED = ("", "", "CPU time", "library is faster by", "bar", "met")


def documents(r):
    peers = ("pugixml", "expat", "libxml2")
    rows = []
    for size in (0, 1):
        name = f"{r.counter(f'parse/library/{size}', 'bytes') / 1000:.1f} kB"
        rows += compared(name, r.cpu(f"parse/library/{size}"), {p: r.cpu(f"parse/{p}/{size}") for p in peers},
                         "faster than pugixml")
    return "## A document into the record\n\nParsed, and the same values picked out into the same fields.\n\n" + table(
        COMPARED, rows)


def runs(r):
    rows = []
    for name, what in (("nothing", "changes nothing"), ("everything", "changes everything")):
        own = r.wall(f"run/{name}/0")
        commands = r.wall(f"run/{name}/1") - own
        rows.append((what, shown(own), shown(r.wall(f"lmdb-run/{name}")),
                     f"{r.counter(f'run/{name}/1', 'commands'):.0f} in {shown(commands)}",
                     f"{100 * commands / (commands + own):.1f} %", f"{r.counter(f'run/{name}/0', 'allocations'):.0f}",
                     f"{100 * own / commands:.2f} %", "under 5 %, no allocation",
                     verdict(own < 0.05 * commands and r.counter(f"run/{name}/0", "allocations") == 0)))
    text = """## A whole document run

Wall time of a 2.6 kB document with six access rules: parsed, checked, compared, written, reported. "Own" is on a device in
memory, the log written, commands left out; "on LMDB" with the transaction that the host puts around it, which waits for the
disk. Each run starts six commands, which write the result document.

"""
    head = ("document", "own", "on LMDB", "commands", "the shell's share", "heap allocations", "own, of the commands", "bar",
            "met")
    return text + table(head, rows)


def variables(r):
    rows = []
    for name, what in (("text", "a text"), ("number", "a number"), ("deep", "the number of access rules")):
        spent = r.cpu(f"variable/read/{name}")
        rows.append((f"read {what}", shown(spent), "under 150 ns", verdict(spent < 150)))
    node = r.cpu("variable/node")
    live = r.cpu("variable/read/live") - node
    rows.append(("read a text from the tree, without the tree's own " + shown(node), shown(live), "under 150 ns",
                 verdict(live < 150)))
    for name, what in (("set/text", "set a text"), ("set/channel", "set a channel"), ("validate/text", "validate a text"),
                       ("validate/address", "validate an address"), ("form/0", "check a form of 50 pairs"),
                       ("form/1", "check and apply a form of 50 pairs")):
        rows.append((what, shown(r.cpu(f"variable/{name}")), "", ""))
    return "## Variables and forms\n\n" + table(("", "CPU time", "bar", "met"), rows)


def digests(r):
    peers = {"OpenSSL, EVP": r.cpu("key/digests/openssl-evp"), "OpenSSL, MD5()": r.cpu("key/digests/openssl-md5")}
    rows = compared("five slots, none fits", r.cpu("key/check"), peers, "faster")
    rows.append(("only the five texts, digests and comparisons", "library", shown(r.cpu("key/digests/library")), "", "", ""))
    text = """## The key check

The library's whole check, with the clock and the password's node, against five texts digested and compared alike.

"""
    return text + table(COMPARED, rows)


def checksums(r):
    rows = compared("CRC-32 of 20 MB", r.cpu("crc/library"), {"zlib": r.cpu("crc/zlib")})
    rows += compared("image check of 20 MB (wall time)", r.wall("check/library"), {"mkimage -l": r.wall("check/mkimage")})
    return "## Checksums\n\n" + table(COMPARED, rows)


def trees(r):
    names = {"lmdb": "LMDB", "sqlite": "SQLite", "files": "a file a node"}
    rows = []
    for what, label in (("read", "read a node"), ("write", "write a node, durable"),
                        ("write100", "write 100 nodes, durable")):
        least = r.cpu if what == "read" else r.wall
        for peer, name in names.items():
            small, large = (least(f"tree/{what}/{peer}/{nodes}") for nodes in (1000, 100000))
            is_bar = what == "read" and peer == "lmdb"
            met = large < 1000 and math.log(large / small, 100) < 0.25
            rows.append((label if peer == "lmdb" else "", name, shown(small), shown(large),
                         "flat, under 1 µs" if is_bar else "", verdict(met) if is_bar else ""))
    text = """## The configuration tree

CPU time of reads, wall time of writes, which wait for the disk; 100 nodes are one transaction but for the files. "Flat":
a hundred times the nodes cost less than 3.2 times as much.

"""
    return text + table(("", "", "1,000 nodes", "100,000 nodes", "bar", "met"), rows)


def host(r):
    servers = (("host", "pendrad, GET /zep/var"), ("file", "lighttpd, a file"), ("cgi", "lighttpd, a CGI program"))
    rows = []
    for key, name in servers:
        run = r.host[key]
        ratio = r.host["host"]["requests_per_core_second"] / run["requests_per_core_second"]
        rows.append((name, f"{run['requests_per_core_second']:,.0f}", f"{run['requests_per_second']:,.0f}",
                     shown(run["p99_us"] * 1000), "" if key == "host" else times(ratio),
                     "half or better" if key == "file" else "", verdict(ratio >= 0.5) if key == "file" else ""))
    text = f"""## The host

{r.host['connections']} connections that are kept open, an answer of {r.host['bytes']} bytes; the server on one core, the client on
another. Requests are counted for each second that the server has used of its core, and for each second of the clock.

"""
    start = r.host["start"]
    return text + table(("", "requests a core second", "requests a second", "99th percentile", "pendrad's rate is its",
                         "bar", "met"), rows) + f"""
Start-up, until it listens: {start['milliseconds']:.0f} ms. Resident memory: {start['kilobytes'] / KIB:.1f} MiB at the start, {r.host['resident_after'] / KIB:.1f} MiB after the load.
"""


def logger(r):
    rows = [(f"level {level}, to file and console", shown(r.cpu(f"log/written/{level}"))) for level in (0, 4, 5, 6, 7)]
    rows.append(("level 5, to the console alone", shown(r.cpu("log/console"))))
    rows += [(f"level {level}, stopped by the threshold", shown(r.cpu(f"log/stopped/{level}"))) for level in (6, 7)]
    rows.append(("entry of a function, not traced", shown(r.cpu("log/trace-stopped"))))
    return "## The logger\n\nA message opens and closes the file and the console: no handle is kept.\n\n" + table(
        ("message", "CPU time"), rows)


FAMILIES = (
    ("growth/document", "document, filled with unknown elements", "bytes"),
    ("growth/hostile/less", 'document, filled with "<"', "bytes"),
    ("growth/hostile/closing", 'document, filled with "</"', "bytes"),
    ("growth/hostile/sections", "document, filled with unclosed sections", "bytes"),
    ("growth/hostile/rules", "document, filled with unclosed access rules", "bytes"),
    ("growth/hostile/entities", "document, filled with entities", "bytes"),
    ("growth/unclosed/section", "nothing but an unclosed section, over and over", "bytes"),
    ("growth/unclosed/root", "nothing but unclosed roots", "bytes"),
    ("growth/rules", "access rules of each radio", None),
    ("growth/list", "firmware list, entries", None),
    ("growth/hostile/list", "firmware list of unclosed entries", "bytes"),
    ("growth/form", "form, pairs", None),
    ("tree/read/lmdb", "tree, read a node", None),
    ("tree/write/lmdb", "tree, write a node (wall time)", None),
)
LINEAR = 1.1  # of the exponent, with some room for caches


def growth(r):
    rows = []
    for family, what, unit in FAMILIES:
        sizes = sorted(int(name.rsplit("/", 1)[1]) for name in r.rows if name.rsplit("/", 1)[0] == family)
        least = r.wall if "wall" in what else r.cpu
        spent = [least(f"{family}/{size}") for size in sizes]
        exponent = math.log(spent[-1] / spent[-2]) / math.log(sizes[-1] / sizes[-2])
        cells = ", ".join(f"{size // KIB} K: {shown(t)}" if unit else f"{size:,}: {shown(t)}" for size, t in zip(sizes, spent))
        rows.append((what, cells, f"{exponent:.2f}", "linear", verdict(exponent < LINEAR)))
    text = """## How cost grows

CPU time of a whole run over what a client sends. The exponent is that of the last step: 1 is linear, 0 flat.

"""
    return text + table(("", "size and time", "exponent", "bar", "met"), rows)


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def machine():
    with open("/proc/cpuinfo") as file:
        model = re.search(r"model name\s*:\s*(.*)", file.read()).group(1)
    compiler = output_of("c++", "--version").splitlines()[0]
    return (f"{datetime.date.today().isoformat()}; {model}, {os.cpu_count()} cores; Linux {platform.release()}; "
            f"{compiler}; library and peers with -O2.")


def main():
    r = Results(sys.argv[1])
    sections = [documents, runs, variables, digests, checksums, trees, host, logger, growth]
    busy = os.getloadavg()[2] / os.cpu_count()
    print(f"""# Performance

Written by `scripts/bench`; do not edit. {machine()}
Each figure is the least of several repetitions. While they ran, {busy:.1f} other programs stood in line for each core; CPU
times bear that, wall times suffer from it.
""")
    print("\n".join(section(r) for section in sections), end="")


if __name__ == "__main__":
    main()
