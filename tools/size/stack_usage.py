#!/usr/bin/env python3
"""Worst stack of every exported call of the library, from the call graphs that gcc writes with -fcallgraph-info=su.

Usage: stack_usage.py OBJECT_DIRECTORY SYMBOL_LIST LIMIT_BYTES

Counted are the library's own frames along the deepest chain of calls. Not counted are the frames of libc and of the
platform's functions, which the library calls and does not contain. Exits with 1 beyond the limit.
"""
import pathlib
import re
import sys

NODE = re.compile(r'node: \{ title: "([^"]+)" label: "[^"]*\\n(\d+) bytes \(([^)]*)\)')
EDGE = re.compile(r'edge: \{ sourcename: "([^"]+)" targetname: "([^"]+)"')
# Callers name the constructor or destructor of a whole object; its frame stands under that of a base.
WHOLE_OBJECT = re.compile(r"(?<=[CD])1(?=E)")

# What is called through a pointer: the rows of the tables, by the file that holds the call. A new call through a pointer
# must be entered here, or the count below would miss it.
POINTERS = {
    "actions.cpp": ["surveySites", "verifyAll", "applyAll", "commitLater", "setAll"],
    "engine.cpp": ["accessConstant", "act", "accessVersion", "accessWireless", "accessUpLink", "accessSafetyOfTwoParts",
                   "accessInformation"],
    "external_calls.cpp": ["do_updatestarssi", "do_deauthsta"],
    "firmware_list.cpp": ["do_FwFirmware_Parser", "matchMac", "matchMacRange", "matchFileName"],
    "logging.cpp": ["msgPrintf", "dbgPrintf"],
    "timers.cpp": [],  # the host's own functions
    "upgrade_actions.cpp": ["startOver", "search", "download", "poll", "upgrade", "reportOnly", "refuse"],
    "xml_scanner.cpp": ["reportMissingElement"],
}

# How often a function may stand in one chain. A list of variables may hold a list again: each level needs its own
# "zep_Act_SetZepVars=" within the 127 characters of the level above it. A list of firmware holds lists of devices.
LEVELS = {"setAll": 1 + 127 // len("zep_Act_SetZepVars="), "do_FwEntryList_Parser": 2}


def read_graphs(directory):
    """The frame size and the calls of each function; gcc's titles tell functions of one file by the file's path."""
    frames, edges, calls = {}, [], {}
    for path in graph_files(directory):
        text = path.read_text()
        for title, size, kind in NODE.findall(text):
            if kind == "dynamic":
                sys.exit(f"stack: {title} has a frame without a bound")
            frames[title] = int(size)
        edges += [(path.name[:-3], source, target) for source, target in EDGE.findall(text)]
    for file, source, target in edges:
        targets = pointed_at(file, frames) if target == "__indirect_call" else defined(target, frames)
        calls.setdefault(source, set()).update(targets)
    return frames, calls


def defined(target, frames):
    """The library's function of this name, if it is one: C++ names are all its own, others may be libc's."""
    found = frames.keys() & {target, WHOLE_OBJECT.sub("2", target)}
    if target.startswith("_Z") and not found:
        sys.exit(f"stack: no frame is known for {target}")
    return found


def graph_files(directory):
    """The graph of each object; without one its calls would count for nothing."""
    objects = sorted(pathlib.Path(directory).rglob("*.o"))
    graphs = [path.with_suffix(".ci") for path in objects]
    if missing := [path.name for path in graphs if not path.is_file()]:
        sys.exit(f"stack: no call graph: {', '.join(missing)}")
    return graphs or sys.exit(f"stack: no objects in {directory}")


def pointed_at(file, frames):
    if file not in POINTERS:
        sys.exit(f"stack: {file} calls through a pointer and is not in the list of what may be called")
    found = [name for name in frames if plain(name) in POINTERS[file]]
    if missing := set(POINTERS[file]) - set(map(plain, found)):
        sys.exit(f"stack: {file}: no such functions: {', '.join(sorted(missing))}")
    return found


def plain(title):
    """The last part of a name: file.cpp:_ZN6pendra12_GLOBAL__N_16setAllERKNS_7RequestE is setAll."""
    name = rest = title.rsplit(":", 1)[-1]
    if not name.startswith("_Z"):
        return name
    rest = rest[2:].lstrip("NLK")
    while match := re.match(r"L?(\d+)", rest):
        end = match.end() + int(match.group(1))
        name, rest = rest[match.end():end], rest[end:]
    return name


def deepest(function, levels, graph, known, path):
    """The deepest chain from a function on as (bytes, names); `levels` counts the functions that may come again."""
    frames, calls = graph
    name = plain(function)
    if name in LEVELS:
        levels = {**levels, name: levels.get(name, 0) + 1}
        if levels[name] > LEVELS[name]:
            return 0, ()
    key = function, tuple(sorted(levels.items()))
    if key in path:
        sys.exit("stack: a cycle without a bound: " + " > ".join(plain(step) for step, _ in path))
    if key not in known:
        below = [deepest(target, levels, graph, known, path + [key]) for target in calls.get(function, ())]
        size, names = max(below, default=(0, ()))
        known[key] = frames[function] + size, (name,) + names
    return known[key]


def main():
    directory, symbols = sys.argv[1:3]
    limit = int(sys.argv[3])
    graph = read_graphs(directory)
    exported = [line for line in pathlib.Path(symbols).read_text().split() if line in graph[0]]
    known = {}
    chains = sorted((deepest(name, {}, graph, known, []) for name in exported), reverse=True)
    for size, names in chains[:5]:
        print(f"{size:8}  {names[0]}")
    size, names = chains[0]
    print(f"deepest: {compressed(names)}")
    print(f"worst stack of {len(exported)} exported calls: {size} bytes, at most {limit} allowed")
    return 1 if size > limit else 0


def compressed(names):
    """A chain with the rounds of a nested list told once."""
    rounds = names.count("setAll")
    if rounds < 2:
        return " > ".join(names)
    first, second = [place for place, name in enumerate(names) if name == "setAll"][:2]
    last = max(place for place, name in enumerate(names) if name == "setAll")
    return " > ".join(names[:first] + (f"{rounds} x ({' > '.join(names[first:second])})",) + names[last + 1:])


if __name__ == "__main__":
    sys.exit(main())
