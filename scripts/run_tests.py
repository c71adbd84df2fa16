"""The parts of scripts/test, which describes them."""

import argparse
import concurrent.futures
import csv
import fnmatch
import json
import math
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build"
CORES = os.cpu_count() or 1
BUILD_SECONDS = 3000
DEADLINE = time.monotonic() + 60 * float(os.environ.get("ORLIX_TEST_MINUTES", "80"))  # the sum is printed soon after it
PROGRAM_SECONDS = {"native": 300, "asan": 900, "win32": 600, "win64": 600}

running = set()  # the processes that run
printing = threading.Lock()

verbose = False
choice = None  # of tests; None: all


class Unavailable(Exception):
    """What a part needs and this machine has not."""


class BuildFailed(Exception):
    """Already reported."""


class NothingChosen(Exception):
    """No test of a part is among the chosen ones."""


class Tally:
    def __init__(self, name):
        self.name = name
        self.passed = self.failed = self.skipped = 0

    def add(self, other):
        self.passed += other.passed
        self.failed += other.failed
        self.skipped += other.skipped

    def check(self, what, problem):
        """One check: an empty problem is a success, anything else is shown."""
        if problem:
            self.failed += 1
            say(f"FAILED  {self.name}: {what}\n{indent(problem)}")
        else:
            self.passed += 1
            say(f"ok      {self.name}: {what}")

    def __str__(self):
        return f"{self.passed} passed, {self.failed} failed, {self.skipped} skipped"


def say(text):
    with printing:  # builds report in between
        print(text, flush=True)


def indent(text):
    return "\n".join("    " + line for line in text.rstrip().splitlines())


# ------------------------------------------------------------------------------------------------------------ processes


class Outcome:
    def __init__(self, status, output, seconds, timed_out=False):
        self.status = status
        self.output = output
        self.seconds = seconds
        self.timed_out = timed_out

    def ending(self):
        if self.timed_out:
            return f"stopped after {self.seconds:.0f} s"
        if self.status < 0:
            return f"ended by {signal.Signals(-self.status).name}"
        return f"ended with status {self.status}"


def run(command, seconds=120, cwd=ROOT, env=None, shown=False):
    """Runs a program with nothing to read, in a process group of its own that is ended with it when the time is up.
    What it prints is in the outcome, or shown as it comes."""
    started = time.monotonic()
    # A file, not a pipe: what the program leaves running in the background may hold on to its output for ever.
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen(
            [str(word) for word in command], cwd=cwd, stdin=subprocess.DEVNULL, stdout=None if shown else output,
            stderr=None if shown else subprocess.STDOUT, start_new_session=True, env={**os.environ, **(env or {})})
        running.add(process)
        timed_out = False
        try:
            process.wait(max(1, min(seconds, DEADLINE - started)))
        except subprocess.TimeoutExpired:
            timed_out = True
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
        finally:
            if process.returncode is not None:
                running.discard(process)
        output.seek(0)
        return Outcome(process.returncode, output.read().decode("utf-8", "replace").replace("\r\n", "\n"),
                       time.monotonic() - started, timed_out)


def problem_of(command, seconds=120, cwd=ROOT, env=None):
    outcome = run(command, seconds, cwd, env)
    if outcome.status == 0:
        return ""
    return f"{' '.join(map(str, command))}\n{outcome.output}\n{outcome.ending()}"


# --------------------------------------------------------------------------------------------------------------- builds

COMPILER = {32: "i686-w64-mingw32", 64: "x86_64-w64-mingw32"}

builder = concurrent.futures.ThreadPoolExecutor(1)
builds = {}  # preset and targets -> whether it built, as soon as that is known


def start_build(preset, *targets):
    """Puts a preset, or some targets of it, into the queue of builds, once."""
    key = (preset, *targets)
    if (preset,) in builds:
        key = (preset,)  # with all targets
    if key not in builds:
        builds[key] = builder.submit(run_build, *key)
    return builds[key]


def run_build(preset, *targets):
    """How far it is and what is wrong is shown as it comes, in lines, because tests report in between."""
    outcome = run([ROOT / "scripts/build", preset, *targets], BUILD_SECONDS, env={"TERM": "dumb"}, shown=True)
    if outcome.status != 0:
        say(f"FAILED  {preset}: the build {outcome.ending()}")
    return outcome.status == 0


def need_compilers(preset):
    """Raises Unavailable when this machine cannot build a preset."""
    tools = ["clang++"] if preset == "asan" else []
    if preset.startswith("win"):
        tools = [f"{COMPILER[int(preset[3:])]}-g++-posix", "i686-w64-mingw32-widl"]
    for tool in tools:
        if not shutil.which(tool):
            raise Unavailable(f"there is no {tool}")


def build(preset, *targets):
    """Builds a preset once, or only some targets of it; raises BuildFailed when it does not build, now or earlier."""
    if not start_build(preset, *targets).result():
        raise BuildFailed


def build_ahead(parts):
    """Queues the builds of the parts, so that the next one is built while the tests of the last one run."""
    for part in parts:
        if part in PROGRAM_SECONDS:
            try:
                need_compilers(part)
                start_build(part, *programs(part))
            except (NothingChosen, Unavailable):
                pass  # the part says so


def test_preset(name):
    """What CMakePresets.json has for `ctest --preset NAME`."""
    presets = json.loads((ROOT / "CMakePresets.json").read_text("utf-8"))["testPresets"]
    return next(preset for preset in presets if preset["name"] == name)


def tests_of(preset):
    """Every test that the build registered, as ctest describes it; properties as a dictionary."""
    outcome = run(["ctest", "--test-dir", BUILD / preset, "--show-only=json-v1"])
    tests = json.loads(outcome.output)["tests"]
    for test in tests:
        test.setdefault("command", [])
        test["properties"] = {entry["name"]: entry["value"] for entry in test.get("properties", [])}
    return tests


def is_built(test):
    return bool(test["command"]) and Path(test["command"][0]).exists()


# ---------------------------------------------------------------------------------------------------------------- tests


def without_successes(output):
    """A GoogleTest log less the tests that passed and said nothing."""
    lines = []
    for line in output.splitlines():
        if line.startswith("[       OK ]") and lines and lines[-1].startswith("[ RUN      ]"):
            lines.pop()
        else:
            lines.append(line)
    return "\n".join(lines)


def count(tally, name, outcome, place):
    """Counts the tests of one program, the one at `place`. A program that did not come to its regular end has failed,
    whatever it printed."""

    def closing(word):
        found = re.findall(rf"^\[  {word} \] (\d+) tests?[.,]", outcome.output, re.M)
        return int(found[-1]) if found else 0

    problem = ""
    if re.search(r"^\[==========\] Running \d+ tests?", outcome.output, re.M):
        ended = re.search(r"^\[==========\] (\d+) tests? .*ran\.", outcome.output, re.M)
        if ended:
            passed, failed, skipped = closing("PASSED "), closing("FAILED "), closing("SKIPPED")
            if passed + failed + skipped != int(ended.group(1)):
                problem = "its counts do not add up"
        else:
            passed = len(re.findall(r"^\[       OK \]", outcome.output, re.M))
            failed = len(re.findall(r"^\[  FAILED  \] .*\(\d+ ms\)", outcome.output, re.M))
            skipped = len(re.findall(r"^\[  SKIPPED \] .*\(\d+ ms\)", outcome.output, re.M))
            problem = "it did not come to its end"
        if not passed + failed + skipped:
            problem = "it ran no test"
        if outcome.timed_out or (outcome.status != 0 and not failed):
            problem = problem or "no test of it failed"
        if problem:
            failed += 1
    else:  # a test of another kind: one program, one result
        passed, failed, skipped = (1, 0, 0) if outcome.status == 0 else (0, 1, 0)
    tally.passed += passed
    tally.failed += failed
    tally.skipped += skipped
    if failed:
        reason = f"{problem + '; ' if problem else ''}{outcome.ending()}"
        say(f"FAILED  {tally.name}: {name}\n{indent(without_successes(outcome.output))}\n    {reason}")
    else:
        for test in dict.fromkeys(re.findall(r"^\[  SKIPPED \] (\S+\.\S+)$", outcome.output, re.M)):
            say(f"skipped {tally.name}: {test}")
    say(f"{tally.name}: {place}: {name}: {passed} passed, {failed} failed, {skipped} skipped ({outcome.seconds:.0f} s)")


class Choice:
    """Some of the tests, by patterns of GoogleTest: 'SUITE.TEST' with * and ?, joined by colons; a dash leaves out what
    follows it. A suite may be named as in its source, where its full name also tells a type or an instantiation."""

    NAMED = re.compile(r"([\w*?]+)\.([\w*?]+)")

    def __init__(self, patterns):
        self.text = " ".join(patterns)
        taken, dash, left_out = ":".join(patterns).partition("-")
        self.taken = taken.split(":")
        self.filter = self.full_names(taken) + dash + self.full_names(left_out)

    @classmethod
    def full_names(cls, patterns):
        return ":".join(cls.NAMED.sub(r"\1.\2:\1/*.\2:\1.\2/*:*/\1.\2/*:*/\1/*.\2", pattern)
                        if cls.NAMED.fullmatch(pattern) else pattern for pattern in patterns.split(":"))

    def folders(self, preset):
        """The folders of tests whose programs may have such tests, by the sources."""
        return sorted({source.parent.name for source in (ROOT / "tests").glob("*/*_test.cpp")
                       if (preset.startswith("win") or source.parent.name != "windows") and self.may_be_in(source)})

    def may_be_in(self, source):
        declared = re.findall(r"^\s*(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)", source.read_text("utf-8"), re.M)
        names = [f"{suite}.{test}" for suite, test in declared]
        return any(not self.NAMED.fullmatch(pattern) or fnmatch.filter(names, pattern) for pattern in self.taken)


def run_tests(tally, preset, launcher=()):
    seconds = PROGRAM_SECONDS[preset]

    def one(test):
        command, properties = test["command"], test["properties"]
        environment = dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))
        # Scratch files of different programs stay apart.
        scratch = BUILD / preset / "scratch" / test["name"]
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir(parents=True)
        environment.setdefault("TMPDIR", str(scratch))
        if not is_built(test):
            return Outcome(127, f"{command} was not built", 0)
        words = [*launcher, *command] if command[0].endswith(".exe") else list(command)
        if choice:
            words.append(f"--gtest_filter={choice.filter}")
        return run(words, seconds, properties.get("WORKING_DIRECTORY", BUILD / preset), environment)

    tests = tests_of(preset)
    if not tests:
        tally.check("the build registers tests", "there is none")
    if choice:
        tests = [test for test in tests if test["name"] in choice.folders(preset)]
    # The longest first, as in ctest, so that none is left to run at the end beside an idle processor.
    tests.sort(key=lambda test: test["properties"].get("COST", 0), reverse=True)
    alone = [test for test in tests if test["properties"].get("RUN_SERIAL")]
    together = [test for test in tests if test not in alone]
    ended = 0

    def report(test, outcome):
        if choice and outcome.status == 0 and re.search(r"^\[==========\] Running 0 tests", outcome.output, re.M):
            return  # its source has such a test, this build of it does not
        count(tally, test["name"], outcome, f"{ended} of {len(tests)}")

    with concurrent.futures.ThreadPoolExecutor(CORES) as pool:
        running = {pool.submit(one, test): test for test in together}
        for future in concurrent.futures.as_completed(running):
            ended += 1
            report(running[future], future.result())
    for test in alone:
        ended += 1
        report(test, one(test))


def programs(preset):
    """The targets to build for the tests; none stands for all. NothingChosen when no source has a chosen test."""
    if not choice:
        return []
    folders = choice.folders(preset)
    if not folders:
        raise NothingChosen
    module = ["orlix"] if preset.startswith("win") else []  # to be registered
    return [*module, *(f"test_{folder}" for folder in folders)]


def native(tally):
    build("native", *programs("native"))
    run_tests(tally, "native")


def asan(tally):
    need_compilers("asan")
    build("asan", *programs("asan"))
    for name, value in test_preset("asan")["environment"].items():
        os.environ.setdefault(name, value)
    run_tests(tally, "asan")


# -------------------------------------------------------------------------------------------------------------- Windows

def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def build_windows(bits, *targets):
    need_compilers(f"win{bits}")
    build(f"win{bits}", *targets)
    return library_in(BUILD / f"win{bits}")


def library_in(folder):
    found = sorted(folder.rglob("orlix.dll"))
    if not found:
        raise FileNotFoundError(f"no orlix.dll in {folder}")
    return found[0]


class Wine:
    """A Wine environment, running."""

    def __init__(self, bits):
        self.bits = bits
        self.command = [str(ROOT / "scripts" / "wine"), str(bits)]

    def __enter__(self):
        outcome = run([*self.command, "start"], 240)
        if outcome.status == 127:
            raise Unavailable(outcome.output.strip())
        if outcome.status != 0:
            raise RuntimeError(f"{self.bits}-bit Wine does not start\n{outcome.output}\n{outcome.ending()}")
        return self

    def __exit__(self, *_):
        run([*self.command, "stop"], 90)

    def register(self, library, *options):
        return problem_of([*self.command, "regsvr32", "/s", *options, windows_path(library)])

    def knows(self, progid):
        return run([*self.command, "reg", "query", f"HKEY_CLASSES_ROOT\\{progid}\\CLSID"]).status == 0


def rows_of(text):
    """The rows of a table with names in its first line; what is a number is one."""
    def value(cell):
        try:
            return float(cell)
        except (TypeError, ValueError):  # None where a line has too few cells
            return cell
    return [{name: value(cell) for name, cell in row.items()} for row in csv.DictReader(text.splitlines())]


def agree(found, wanted):
    """Whether the rows have the values of the wanted ones, to the 12 digits that scripts print at least."""
    return len(found) == len(wanted) and all(
        row.get(name) == value or
        isinstance(row.get(name), float) and math.isclose(row[name], value, rel_tol=1e-12)
        for row, known in zip(found, wanted) for name, value in known.items())


def example_scripts(tally, wine, tool, host, folder, source=ROOT):
    """The scripts of examples/scripts, run by a host, do what the command line does, with the same numbers."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    specimen = folder / "specimen.png"
    tool = [*wine.command, tool]

    def script(name, *arguments):
        return [*wine.command, *host, windows_path(source / "examples/scripts" / name), *map(windows_path, arguments)]

    def check(what, holds, outcome):
        tally.check(f"{Path(host[0]).stem}: {what}", "" if holds else f"{outcome.output}\n{outcome.ending()}")

    tally.check("the tool writes a specimen for scripts", problem_of([*tool, "specimen", windows_path(specimen)]))
    particles = rows_of(run([*tool, "particles", windows_path(specimen), "--min-area", "12", "--csv"]).output)
    columns = ("number", "x", "y", "pixels", "diameter")
    particles = [{name: row[name] for name in columns} for row in particles]
    for language in "vbs", "js":
        outcome = run(script(f"count_particles.{language}", specimen))
        check(f"count_particles.{language} finds the 70 particles of the command line",
              len(particles) == 70 and agree(rows_of(outcome.output), particles), outcome)
        flat = folder / f"flat_{language}.png"
        outcome = run(script(f"flatten.{language}", specimen, flat))
        check(f"flatten.{language} takes the slope out of an image and saves it",
              outcome.status == 0 and "flattened" in run([*tool, "info", windows_path(flat)]).output, outcome)
        outcome = run(script(f"errors.{language}"))
        check(f"errors.{language} shows the texts of failures", outcome.status == 0 and re.match(
            r"failed.*: IImageVPAEx::CreateFromFile: failed to open file\..*\n"
            r"failed.*: IImageProcess::Invert: no image\.", outcome.output) is not None, outcome)
    images = sorted(folder.glob("*.png"))
    deep = folder / "deep.pgm"
    run([*tool, "specimen", windows_path(deep), "--bits", "16"])
    columns = {"mean": "grey.mean", "deviation": "grey.standardDeviation", "median": "grey.median",
               "dip": "histogram.dip", "threshold": "minimize-variance.threshold", "dark": "phase.areaFraction",
               "pixels": "phase.pixels", "x": "phase.xCentroid", "y": "phase.yCentroid"}
    wanted = rows_of(run([*tool, "measure", *map(windows_path, [*images, deep]), "--csv"]).output)
    wanted = [{name: row[column] for name, column in columns.items()} for row in wanted]
    for language in "vbs", "js":
        table = folder / f"table_{language}.csv"
        outcome = run(script(f"measure_table.{language}", table, *images, deep))
        found = rows_of(table.read_text("utf-8")) if table.exists() else []
        check(f"measure_table.{language} has the figures of the command line",
              len(found) == 4 and agree(found, wanted), outcome)
    measured = rows_of(run(script("measure_images.js", *images)).output)
    outcome = run(script("measure_folder.vbs", folder))
    by_name = sorted(rows_of(outcome.output), key=lambda row: row["image"])
    check("measure_folder.vbs agrees with measure_images.js", len(measured) == 3 and agree(by_name, measured), outcome)


def endings_of_scripts(tally, host, folder):
    """What orlixscript says of errors, and its exit codes. Where the engine does not notice that the stack ends, 64-bit
    Wine leaves no room for a word."""
    cases = (("run.vbs", 'x = 1\nCreateObject("Orlix.Image").Invert', 1,
              r"{}\(2, 1\) Orlix\.Image\.1: IImageProcess::Invert: no image\.\n"),
             ("compile.js", "var x = 1;\n  x = = 3;", 1, r"{}\(2, 7\) Microsoft JScript compilation error: .+\n"),
             ("recursion.vbs", "Sub Deep(n)\n  Deep n + 1\nEnd Sub\nDeep 1", 1, r"(.*: [Oo]ut of stack space\n)?"),
             ("quit.vbs", 'On Error Resume Next\nWScript.Quit 7\nWScript.Echo "still"', 7, ""),
             ("unknown.txt", "", 2, r"orlixscript: {}: scripts are files \.vbs \(VBScript\) and \.js \(JScript\)\.\n"),
             ("missing.js", None, 2, r"orlixscript: cannot read .*/missing\.js: no such file\n"))
    for name, text, status, words in cases:
        script = folder / name
        if text is not None:
            script.write_text(text, "utf-8")
        outcome = run([*host, windows_path(script)])
        as_expected = re.fullmatch(words.replace("{}", re.escape(windows_path(script))), outcome.output)
        tally.check(f"orlixscript ends {name} as documented",
                    "" if as_expected and outcome.status == status else f"{outcome.output}\n{outcome.ending()}")


def package(tally, wine):
    """The zip file for Windows works where a user unpacks it: its programs and their scripts at once, the scripts of
    the system's host after install.cmd."""
    folder = BUILD / "package" / "für Prüfer"
    shutil.rmtree(folder.parent, ignore_errors=True)
    archive = BUILD / "orlix-windows.zip"
    tally.check("scripts/package windows", problem_of([ROOT / "scripts/package", "windows", archive], 1200))
    shutil.unpack_archive(archive, folder)
    unpacked = next(folder.iterdir())
    with Wine(32) as other:
        for running, name in ((other, "x86"), (wine, "x64")):
            binaries = unpacked / name
            running.register(binaries / "orlix.dll", "/u")  # what another run has left
            tally.check(f"nothing is registered for the package's {name} programs",
                        "Orlix.Image is" if running.knows("Orlix.Image") else "")
            host = binaries / "orlixscript.exe"
            example_scripts(tally, running, binaries / "orlix.exe", [host], folder / name, unpacked)
            endings_of_scripts(tally, [*running.command, host], folder / name)
    specimen = folder / "x64/specimen.png"
    for script, knows in ("install.cmd", True), ("uninstall.cmd", False):
        problem = problem_of([*wine.command, "cmd", "/c", windows_path(unpacked / script)])
        tally.check(f"the package's {script}", problem or ("" if wine.knows("Orlix.Image") == knows else script))
        if knows:
            outcome = run([*wine.command, "cscript.exe", "//nologo",
                           windows_path(unpacked / "examples/scripts/count_particles.vbs"), windows_path(specimen)])
            tally.check("the package's scripts count after that",
                        "" if len(rows_of(outcome.output)) == 70 else f"{outcome.output}\n{outcome.ending()}")


def windows(tally, bits):
    library = build_windows(bits, *programs(f"win{bits}"))
    with Wine(bits) as wine:
        registration = Tally(tally.name) if choice else tally  # is none of the chosen tests
        registration.check("regsvr32 registers orlix.dll", wine.register(library))
        registration.check("its classes are known then", "" if wine.knows("Orlix.Image") else "Orlix.Image is not")
        run_tests(tally, f"win{bits}", wine.command)
        if not choice:
            example_scripts(tally, wine, BUILD / f"win{bits}/tools/orlix/orlix.exe", ["cscript.exe", "//nologo"],
                            BUILD / f"examples{bits}")
        registration.check("regsvr32 unregisters orlix.dll", wine.register(library, "/u"))
        registration.check("its classes are unknown then", "Orlix.Image is known" if wine.knows("Orlix.Image") else "")
        if bits == 64 and not choice:  # when both libraries are built
            package(tally, wine)
        if choice:
            tally.failed += registration.failed


def win32(tally):
    windows(tally, 32)


def win64(tally):
    windows(tally, 64)


# --------------------------------------------------------------------------------------------------------------- viewer


def viewer(tally):
    """It starts a screen and Wine itself, and skips itself where there are none."""
    build_windows(32, "orlix", "viewer", "viewer_driver")
    run_checks(tally, [sys.executable, ROOT / "tests" / "viewer" / "run.py", BUILD / "win32"], 400)


# --------------------------------------------------------------------------------------------------------------- checks


def checks(tally):
    command = [sys.executable, ROOT / "tests" / "checks" / "run.py"]
    build("native")
    command += ["--native", BUILD / "native"]
    for bits in (32, 64):
        try:
            build_windows(bits)
            command += [f"--win{bits}", BUILD / f"win{bits}"]
        except Unavailable as reason:
            tally.skipped += 1
            say(f"skipped {tally.name}: contents of the {bits}-bit orlix.dll: {reason}")
    run_checks(tally, command, 900)


def tidy(tally):
    if not shutil.which("clang-tidy"):
        raise Unavailable("there is no clang-tidy")
    # Every file by itself, without the precompiled headers of the other presets.
    problem = problem_of(["cmake", "--preset", "dev"], 300)
    if problem:
        tally.check("the configuration", problem)
        return
    run_checks(tally, [sys.executable, ROOT / "tests" / "checks" / "run.py", "--tidy", BUILD / "dev"], 3000)


def run_checks(tally, command, seconds):
    """The checks print their own lines, a failure with its details, and a sum at the end."""
    outcome = run(command, seconds)
    found = re.search(r"^(\d+) passed, (\d+) failed, (\d+) skipped$\s*\Z", outcome.output, re.M)
    if not found:
        tally.check("the checks come to their end", outcome.output + "\n" + outcome.ending())
        return
    passed, failed, skipped = map(int, found.groups())
    if outcome.status != 0 and not failed:
        failed = 1
    tally.passed += passed
    tally.failed += failed
    tally.skipped += skipped
    for line in outcome.output[:found.start()].splitlines():
        if verbose or not line.startswith("ok "):
            say(line)


# ------------------------------------------------------------------------------------------------------------- consumer


def readme_project(tally):
    """The program and the CMakeLists.txt that README.md shows, as a project; None when it does not show both."""
    readme = (ROOT / "README.md").read_text("utf-8")
    folder = BUILD / "consumer" / "readme"
    folder.mkdir(parents=True, exist_ok=True)
    for language, name in (("cpp", "particles.cpp"), ("cmake", "CMakeLists.txt")):
        found = re.search(rf"^```{language}\n(.*?)^```", readme, re.M | re.S)
        if not found:
            tally.check("README.md shows a program and its CMakeLists.txt", f"README.md has no block of {language}")
            return None
        (folder / name).write_text(found.group(1), "utf-8")
    return folder


def install(tally, preset):
    stage = BUILD / "stage" / preset
    shutil.rmtree(stage, ignore_errors=True)
    tally.check(f"{preset}: installs", problem_of(["cmake", "--install", BUILD / preset, "--prefix", stage]))
    return stage


def build_project(tally, preset, source, what, *options):
    """A project of somebody else's that uses the library; gives the folder of its programs."""
    folder = BUILD / "consumer" / re.sub(r"[^\w-]", "", f"{preset}-{what.split()[0].lower()}")
    shutil.rmtree(folder, ignore_errors=True)
    configure = ["cmake", "-S", source, "-B", folder, "-DCMAKE_BUILD_TYPE=Release", *options]
    if preset != "native":
        configure += [f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/cmake/mingw.cmake", f"-DORLIX_MINGW={COMPILER[int(preset[3:])]}"]
    problem = problem_of(configure, 300) or problem_of(["cmake", "--build", folder, "-j", CORES], 1800)
    tally.check(f"{preset}: {what} builds", problem)
    return folder


def run_readme_program(tally, preset, program, specimen):
    """With an image it counts; without one, and with one that is not there, it says so and does not crash."""
    for what, arguments, status, words in (("finds the particles of a specimen", [specimen], 0, "70 particles, .*"),
                                           ("says how it is used", [], 1, "usage: .*"),
                                           ("says that an image is missing", ["missing.png"], 1, ".*failed to open.*")):
        outcome = run([*program, *arguments])
        as_expected = outcome.status == status and re.fullmatch(words, outcome.output.strip())
        problem = "" if as_expected else f"{outcome.output}\n{outcome.ending()}"
        tally.check(f"{preset}: README's program {what}", problem)


def consumer(tally):
    build("native")
    readme = readme_project(tally)
    specimen = BUILD / "consumer" / "specimen.png"
    specimen.parent.mkdir(parents=True, exist_ok=True)
    specimen.unlink(missing_ok=True)

    stage = install(tally, "native")
    tally.check("native: the installed tool writes a specimen", problem_of([stage / "bin/orlix", "specimen", specimen]))
    package = f"-DCMAKE_PREFIX_PATH={stage}"
    client = ROOT / "tests/consumer"
    folder = build_project(tally, "native", client, "package: a project with find_package(orlix)", package)
    tally.check("native: the project's program runs", problem_of([folder / "consumer"]))
    if readme:
        folder = build_project(tally, "native", readme, "README's project", package)
        run_readme_program(tally, "native", [folder / "particles"], specimen)
    consumer_by_pkg_config(tally, stage)
    consumer_by_add_subdirectory(tally)

    try:
        build_windows(32)
        with Wine(32) as wine:
            stage = install(tally, "win32")
            package = f"-Dorlix_DIR={stage}/lib/cmake/orlix"  # the cross build looks for packages in its own root only
            library = library_in(stage)
            folder = build_project(tally, "win32", client, "package: a project with find_package(orlix)", package)
            tally.check("win32: the installed orlix.dll registers", wine.register(library))
            tally.check("win32: the project's program runs", problem_of([*wine.command, folder / "consumer.exe"]))
            if readme:
                folder = build_project(tally, "win32", readme, "README's project", package,
                                       "-DCMAKE_EXE_LINKER_FLAGS=-static")
                run_readme_program(tally, "win32", [*wine.command, folder / "particles.exe"], windows_path(specimen))
            exchange_streams(tally, BUILD / "stage/native/bin/orlix", [*wine.command, stage / "bin/orlix.exe"])
            wine.register(library, "/u")
        demo = [ROOT / "scripts/demo", "--windows", "--out", BUILD / "consumer/demo", specimen, "--dark"]
        tally.check("scripts/demo: both platforms find the same", problem_of(demo, 600))
    except Unavailable as reason:
        tally.skipped += 1
        say(f"skipped {tally.name}: the programs on Windows: {reason}")


def consumer_by_add_subdirectory(tally):
    """The sources as a part of a project: the library alone, whatever the compiler warns of. Nothing is optimised: that
    is soon built, and shows that a debugger's build works."""
    say(f"{tally.name}: building the sources as a part of a project")
    folder = build_project(tally, "native", ROOT / "tests/consumer", "subdirectory: a project with add_subdirectory",
                           f"-DORLIX_SOURCE={ROOT}", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
    tally.check("native: the program with the library's sources runs", problem_of([folder / "consumer"]))
    compiled = json.loads((folder / "compile_commands.json").read_text("utf-8"))
    own = [entry for entry in compiled if f"{ROOT}/src/" in entry["file"]]
    others = [entry["file"] for entry in compiled
              if re.match(rf"{ROOT}/(tools|samples|examples|tests/(?!consumer))", entry["file"])]
    strict = [entry["file"] for entry in own if re.search(r"-Werror\b", entry["command"])]
    tally.check("native: a project gets the library without tests, tools and -Werror",
                "\n".join(others + strict) if own else "the library is not compiled")


def exchange_streams(tally, native, windows_tool):
    """Streams of images go from platform to platform and back, and are the same bytes when saved again."""
    folder = BUILD / "consumer"
    for bits in ("8", "16"):
        ends = (".png", "a.orlix", "b.orlix", "c.orlix")
        image, first, second, third = (folder / f"exchange{bits}{end}" for end in ends)
        for file in (first, second, third):
            file.unlink(missing_ok=True)
        problem = (problem_of([native, "specimen", image, "--bits", bits])
                   or problem_of([native, "save", image, first])
                   or problem_of([*windows_tool, "load", windows_path(first), windows_path(second)])
                   or problem_of([native, "load", second, third]))
        if not problem and not first.read_bytes() == second.read_bytes() == third.read_bytes():
            problem = "the streams differ"
        tally.check(f"streams of {bits} bits go from native to win32 and back", problem)


def consumer_by_pkg_config(tally, stage):
    if not shutil.which("pkg-config"):
        tally.skipped += 1
        say(f"skipped {tally.name}: there is no pkg-config")
        return
    environment = {"PKG_CONFIG_PATH": str(stage / "lib/pkgconfig"), "LD_LIBRARY_PATH": str(stage / "lib")}
    flags = run(["pkg-config", "--cflags", "--libs", "orlix"], env=environment)
    result = BUILD / "consumer" / "by_pkg_config"
    problem = flags.output if flags.status else problem_of(
        ["g++", "-std=c++20", "-Wall", "-Wextra", "-Wconversion", "-Wshadow", "-Werror",
         ROOT / "tests/consumer/main.cpp", "-o", result, *flags.output.split()])
    tally.check("native: a program builds with pkg-config", problem)
    tally.check("native: the program built with pkg-config runs", problem_of([result], env=environment))


# ----------------------------------------------------------------------------------------------------------------- main

# In this order, because parts that keep one processor busy, or wait for windows, run while other platforms are built.
PARTS = {part.__name__: part for part in (native, win32, viewer, consumer, asan, win64, checks, tidy)}


def main():
    global verbose, choice
    parser = argparse.ArgumentParser(prog="scripts/test")
    parser.add_argument("-v", "--verbose", action="store_true")
    parser.add_argument("words", nargs="*", metavar="PART|PATTERN", help=f"{', '.join(PARTS)}; SUITE.TEST")
    arguments = parser.parse_args()
    verbose = arguments.verbose
    patterns = [word for word in arguments.words if re.search(r"[.*?:]", word)]
    parts = [word for word in arguments.words if word not in patterns]
    unknown = [part for part in parts if part not in PARTS]
    if unknown:
        parser.error(f"no such part: {', '.join(unknown)}")
    if patterns:
        choice = Choice(patterns)
        if not parts or not set(parts) <= set(PROGRAM_SECONDS):
            with_tests = ", ".join(PROGRAM_SECONDS)
            parser.error(f"a pattern chooses tests of {with_tests}: scripts/test native '{patterns[0]}'")

    total = Tally("total")
    parts = parts or [part for part in PARTS if part != "tidy"]
    build_ahead(parts)
    for name in parts:
        tally = Tally(name)
        started = time.monotonic()
        say(f"---- {name}")
        try:
            if started > DEADLINE:
                raise TimeoutError("there is no time left")
            PARTS[name](tally)
            if choice and not tally.passed + tally.failed + tally.skipped:
                raise NothingChosen
        except NothingChosen:
            tally.check(f"tests that match {choice.text}", "there is none")
        except Unavailable as reason:
            tally.skipped += 1
            say(f"skipped {name}: {reason}")
        except BuildFailed:
            tally.failed += 1
        except Exception as error:  # a part that breaks down has failed; the others still run
            tally.check("the part comes to its end", f"{type(error).__name__}: {error}")
        say(f"{name}: {tally} ({time.monotonic() - started:.0f} s)")
        total.add(tally)
    say(str(total))
    return 1 if total.failed or not total.passed else 0


try:
    status = main()
except KeyboardInterrupt:
    builder.shutdown(wait=False, cancel_futures=True)
    for process in list(running):
        os.killpg(process.pid, signal.SIGKILL)
    status = 128 + signal.SIGINT
sys.exit(status)
