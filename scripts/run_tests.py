#!/usr/bin/env python3
"""Runs the tests of a build folder and counts them: run_tests.py BUILD_DIR COUNTS_FILE.

GoogleTest suites (the tests that CTest labels `gtest`) run in a few processes of many tests each, because the start of
a process under a sanitizer costs more than most tests; any other CTest test runs through ctest. A test that ends its
process fails, and the ones behind it run in a new process. Writes "PASSED FAILED SKIPPED" to the counts file.
"""

import concurrent.futures
import json
import os
import re
import subprocess
import sys
import tempfile

TIMEOUT_SECONDS = 900  # for one process; a test that hangs fails, the others go on
CHUNKS_PER_CORE = 6  # enough to keep all cores busy to the end, few enough to start few processes
RUN = re.compile(r"^\[ RUN      \] (\S+)")
DONE = re.compile(r"\[ {0,7}(OK|FAILED|SKIPPED) {1,2}\] ([^\s,]+).*\((\d+) ms\)$")


def list_tests(binary):
    """Names as --gtest_filter takes them, in order."""
    listing = subprocess.run([binary, "--gtest_list_tests"], stdout=subprocess.PIPE, check=True, text=True).stdout
    suite, names = "", []
    for line in listing.splitlines():
        name = line.split("#")[0].rstrip()
        if name and not name[0].isspace():
            suite = name if name.endswith(".") else ""
        elif suite and name and "DISABLED_" not in suite + name:
            names.append(suite + name.strip())
    return names


def run_once(binary, names):
    """Runs the names in one process; returns ({name: (state, milliseconds)}, the test that ended it, output)."""
    with tempfile.NamedTemporaryFile("w", suffix=".flags") as flags:
        flags.write("--gtest_filter=" + ":".join(names) + "\n")
        flags.flush()
        process = subprocess.Popen([binary, "--gtest_flagfile=" + flags.name, "--gtest_color=no"],
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   cwd=os.path.dirname(binary))
        try:
            output, _ = process.communicate(timeout=TIMEOUT_SECONDS)
            ending = f"exit code {process.returncode}"
        except subprocess.TimeoutExpired:
            process.kill()
            output, _ = process.communicate()
            ending = f"no end after {TIMEOUT_SECONDS} s"
    text = output.decode("utf-8", "replace")
    states, running, failures, own = {}, None, [], []
    for line in text.splitlines():
        begin, done = RUN.match(line), DONE.search(line)
        if begin:
            running, own = begin[1], []
        elif done and done[2] == running:
            states[running] = (done[1], int(done[3]))
            if done[1] == "FAILED":
                failures += own + [line]
            running = None
        else:
            own.append(line)
    if running:
        states[running] = ("FAILED", 0)
        failures += own + [f"{running}: the process ended in this test ({ending})"]
    elif process.returncode != 0 and not failures:
        failures += own + [f"{binary}: {ending} after its tests passed"]
    return states, running, failures


def run_chunk(binary, names):
    """Runs all the names, in as many processes as it takes; returns (states, failure lines)."""
    states, failures = {}, []
    while names:
        new, crashed, lines = run_once(binary, names)
        states.update(new)
        failures += lines
        if not crashed:
            if lines and not any(state == "FAILED" for state, _ in new.values()):
                states[f"{os.path.basename(binary)}: end of the process"] = ("FAILED", 0)
            missing = [name for name in names if name not in states]
            states.update({name: ("FAILED", 0) for name in missing})
            failures += [f"{name}: did not run" for name in missing]
            break
        names = [name for name in names if name not in states]
    return states, failures


def run_suites(binaries):
    """Runs the GoogleTest binaries in parallel; prints failures and the slowest tests; returns the three counts."""
    cores = os.cpu_count() or 1
    states, jobs = {}, []
    with concurrent.futures.ThreadPoolExecutor(cores) as pool:
        for binary in binaries:
            names = list_tests(binary)
            size = max(1, -(-len(names) // (cores * CHUNKS_PER_CORE)))
            jobs += [pool.submit(run_chunk, binary, names[at:at + size]) for at in range(0, len(names), size)]
        for job in jobs:
            new, failures = job.result()
            states.update(new)
            if failures:
                print("\n".join(failures), flush=True)
    for name, (state, time) in sorted(states.items(), key=lambda item: -item[1][1])[:5]:
        if time >= 1000:
            print(f"slow: {name} {time / 1000:.1f} s")
    ends = [state for state, _ in states.values()]
    return [ends.count("OK"), ends.count("FAILED"), ends.count("SKIPPED")]


def run_others(build):
    """Runs what is no GoogleTest; returns the three counts."""
    with tempfile.TemporaryDirectory() as folder:
        report = os.path.join(folder, "report.xml")
        subprocess.run(["ctest", "--test-dir", build, "-LE", "^gtest$", "-j", str(os.cpu_count() or 1), "--timeout",
                        str(TIMEOUT_SECONDS), "--output-on-failure", "--output-junit", report], check=False)
        with open(report, encoding="utf-8", errors="replace") as file:
            head = file.read(2000)
    tests, failed, skipped = (int(re.search(rf'{key}="(\d+)"', head)[1]) for key in ("tests", "failures", "skipped"))
    return [tests - failed - skipped, failed, skipped]


def main():
    build, counts_file = sys.argv[1:3]
    listing = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], stdout=subprocess.PIPE, check=True)
    binaries, others = {}, 0
    for test in json.loads(listing.stdout)["tests"]:
        labels = next((p["value"] for p in test.get("properties", []) if p["name"] == "LABELS"), [])
        if "gtest" in labels:
            binaries[test["command"][0]] = None
        else:
            others += 1
    counts = run_suites(list(binaries))
    if others:
        counts = [sum(pair) for pair in zip(counts, run_others(build))]
    print(f"{build}: {counts[0]} passed, {counts[1]} failed, {counts[2]} skipped")
    with open(counts_file, "w", encoding="utf-8") as file:
        file.write(" ".join(map(str, counts)) + "\n")
    return 1 if counts[1] or not sum(counts) else 0


if __name__ == "__main__":
    sys.exit(main())
