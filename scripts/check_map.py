#!/usr/bin/env python3
"""Checks that docs/map.md, the first lines of the headers and the source lists of CMake tell the same groups.

Prints each disagreement as one line and exits with 1 if there is any. A header without a source of its own counts by its
header; a source without a header must be listed under a group of the map.
"""

import os
import re
import sys

FOLDERS = ("foundation", "geometry")
FIRST_LINE = re.compile(r"// (\S+) - (.+)\. Group: ([^.]+)\.$")
GROUP_COMMENT = re.compile(r"\s*# Group: (.+?)\s*$")
SOURCE = re.compile(r"[\w./-]+\.cpp\b")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def map_rows(path):
    """Yields (line number, group, class, file, text) for each row of the tables of the map."""
    for number, line in enumerate(read(path).splitlines(), 1):
        cells = [cell.strip() for cell in line.split("|")]
        if line.startswith("|") and not set(line) <= set("|-: ") and cells[1:4] != ["group", "class", "file"]:
            yield (number, *(cells[1:5] if len(cells) == 6 else (None,) * 4))


def header_groups(root, problems):
    """Returns {header: group} by the first lines."""
    groups = {}
    for folder in FOLDERS:
        for name in sorted(os.listdir(os.path.join(root, folder))):
            if not name.endswith(".h"):
                continue
            path = f"{folder}/{name}"
            match = FIRST_LINE.match(read(os.path.join(root, path)).split("\n", 1)[0])
            if not match:
                problems.append(f"{path}:1: the first line is not '// {name} - TEXT. Group: GROUP.'")
            elif match[1] != name:
                problems.append(f"{path}:1: the first line names {match[1]}")
            groups[path] = match[3] if match else None
    return groups


def listed_sources(root, problems):
    """Returns {source: group} by the commented lists of the CMake files."""
    groups = {}
    for folder in FOLDERS:
        cmake = f"{folder}/CMakeLists.txt"
        group = None
        for number, line in enumerate(read(os.path.join(root, cmake)).splitlines(), 1):
            comment = GROUP_COMMENT.match(line)
            if comment:
                group = comment[1]
            for name in SOURCE.findall(line.split("#")[0]):
                path = f"{folder}/{name}"
                if path in groups:
                    problems.append(f"{cmake}:{number}: {name} is listed twice")
                if group is None:
                    problems.append(f"{cmake}:{number}: {name} stands before the first '# Group:'")
                groups[path] = group
    return groups


def check_map(root, headers, problems):
    """Compares rows and headers; returns the groups of the map."""
    mapped, seen = {}, set()
    for number, group, name, path, text in map_rows(os.path.join(root, "docs/map.md")):
        where = f"docs/map.md:{number}"
        if not (group and name and path and text):
            problems.append(f"{where}: a row is | group | class | file | text |")
            continue
        if (name, path) in seen:
            problems.append(f"{where}: a second row for {name} in {path}")
        seen.add((name, path))
        mapped.setdefault(path, group)
        if path not in headers:
            problems.append(f"{where}: there is no header {path}")
            continue
        if headers[path] not in (None, group):
            problems.append(f"{where}: {path} is in group '{group}' here and in '{headers[path]}' by its first line")
        if not re.search(rf"\b{re.escape(name.split('::')[-1])}\b", read(os.path.join(root, path))):
            problems.append(f"{where}: {path} does not mention {name}")
    problems.extend(f"{path}: no row in docs/map.md" for path in headers if path not in mapped)
    return set(mapped.values())


def check_sources(root, headers, sources, groups, problems):
    """Compares the lists of CMake with the files on disk and with the headers."""
    for folder in FOLDERS:
        for name in sorted(os.listdir(os.path.join(root, folder))):
            if name.endswith(".cpp") and f"{folder}/{name}" not in sources:
                problems.append(f"{folder}/{name}: in no source list of {folder}/CMakeLists.txt")
    for path, group in sources.items():
        if not os.path.exists(os.path.join(root, path)):
            problems.append(f"{os.path.dirname(path)}/CMakeLists.txt: there is no source {path}")
        by_header = headers.get(path[: -len(".cpp")] + ".h")
        if by_header not in (None, group):
            problems.append(f"{path}: group '{group}' in CMake, '{by_header}' by its header")
        elif by_header is None and group is not None and group not in groups:
            problems.append(f"{path}: its group '{group}' in CMake is not in the map")


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    problems = []
    headers = header_groups(root, problems)
    groups = check_map(root, headers, problems)
    check_sources(root, headers, listed_sources(root, problems), groups, problems)
    print("\n".join(problems) if problems else f"{len(headers)} headers in {len(groups)} groups agree")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
