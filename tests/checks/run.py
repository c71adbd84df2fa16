"""Rules of the repository and contents of the binaries.

    run.py [--native BUILD] [--win32 BUILD] [--win64 BUILD] [--tidy BUILD]

Rules that need no build are always checked (not with --tidy, which runs clang-tidy alone, on everything that BUILD
compiles). One line for each check, with details where it fails; the last line is the sum.
"""

import argparse
import concurrent.futures
import json
import os
import re
import shutil
import struct
import subprocess
import sys
from pathlib import Path

from pages import differences
from portable_executable import TOOLS, PortableExecutable

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "idl"))
import make_header
import make_scripting_reference
from contract import Contract
from scripts import ScriptContract

GENERATED = "include/orlix/orlix.h"

counts = {"ok": 0, "FAILED": 0, "skipped": 0}


def report(result, what, details=()):
    counts[result] += 1
    print(f"{result:8}{what}", *(f"    {line}" for line in details), sep="\n", flush=True)


def check(what, problems):
    problems = list(problems)
    report("FAILED" if problems else "ok", what, problems)


def output_of(*command, **options):
    result = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, **options)
    return result.returncode, result.stdout.decode("utf-8", "replace")


def tracked(*suffixes):
    """The files of the repository that exist, by suffix."""
    _, listing = output_of("git", "ls-files", cwd=ROOT)
    return [name for name in listing.splitlines() if name.endswith(suffixes) and (ROOT / name).is_file()]


# -------------------------------------------------------------------------------------------------------------- sources


def layers():
    """The folders that each folder of src may include besides itself: the drawing in docs/architecture.md."""
    section = (ROOT / "docs/architecture.md").read_text("utf-8").split("\n## Layers\n")[1].split("\n## ")[0]
    drawing = {}
    for line in re.findall(r"^    (.*)$", re.sub(r"\n {5,}", " ", section), re.M):
        folder, *below = re.findall(r"\w+", line)
        assert all(other in drawing for other in below), (
            f"docs/architecture.md: {folder} stands on a folder named after it")
        drawing[folder] = below
    return drawing


def includes(name):
    for number, line in enumerate((ROOT / name).read_text("utf-8").splitlines(), 1):
        if found := re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line):
            yield number, found.group(1) == '"', found.group(2)


def wrong_includes():
    drawing = layers()
    used = {folder: set() for folder in drawing}
    for name in tracked(".cpp", ".hpp", ".h"):
        parts = name.split("/")
        for number, quoted, included in includes(name):
            place = f"{name}:{number}: includes {included}"
            if parts[0] == "src":
                own, other = parts[1], included.split("/")[0]
                if own not in drawing:
                    yield f"{name}: the folder {own} is missing in docs/architecture.md"
                    break
                if quoted and "/" not in included:
                    yield f"{place}: name it by its folder"
                elif quoted and other != own and other not in drawing[own]:
                    yield f"{place}: {own} may not stand on {other}"
                elif quoted and other != own:
                    used[own].add(other)
            elif parts[0] == "include":
                if quoted and "/" in included:
                    yield f"{place}: what is installed is included as <orlix/...>"
            elif parts[0] in ("tools", "samples", "examples") or parts[:2] == ["tests", "contract"]:
                # Clients and what they share: the library's inside is out of their sight.
                if quoted and (ROOT / "src" / included).exists():
                    yield f"{place}: a client includes <orlix/...> only"
    for folder, below in drawing.items():
        for other in set(below) - used[folder]:
            yield f"docs/architecture.md: {folder} does not include {other}"


def readme_paths():
    """The files and folders that README.md names, those in build among them."""
    text = (ROOT / "README.md").read_text("utf-8")
    roots = "|".join(sorted({name.split("/")[0] for name in tracked("") if "/" in name} | {"build/native"}))
    prose = re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)
    named = re.findall(rf"(?<![\w./-])(?:{roots})(?:/[\w.-]*[\w-])*(?![\w(])", prose)
    return sorted({*named, *re.findall(r"\]\(([^):#]+)\)", prose)})


def bodies(text):
    """Functions of a source file that are defined at the start of a line: name and body."""
    for found in re.finditer(r"^[A-Za-z].*?\b(\w+)\([^;{]*\{", text, re.M):
        depth, end = 1, found.end()
        while depth and end < len(text):
            depth += {"{": 1, "}": -1}.get(text[end], 0)
            end += 1
        yield found.group(1), text[found.end():end]


# Headers whose methods go through a function that is defined in the source file.
GUARDED_ELSEWHERE = {"src/orlix_image/image_filters.hpp": ["Filter"]}


def outside_the_boundary():
    """Methods of the contract that Guarded() does not wrap: the text of an earlier failure would outlive them."""
    # Events are raised, not answered.
    methods = {declaration.name for declaration in Contract().declarations
               if declaration.kind == "method" and declaration.owner != "IPictureExEvents"}
    for name in tracked(".cpp", ".hpp"):
        if not name.startswith("src/"):
            continue
        text = (ROOT / name).read_text("utf-8")
        guarded, known = {"Guarded", *GUARDED_ELSEWHERE.get(name, ())}, 0
        while len(guarded) > known:  # functions that call those found before
            known = len(guarded)
            guarded |= {function for function, body in bodies(text)
                        if re.search(rf"return (?:life_\.|inner_\.)?(?:template )?({'|'.join(guarded)})\b", body)}
        for found in re.finditer(r"^ *STDMETHODIMP (?:\w+::)?(\w+)\([^;{]*\{", text, re.M):
            body = next((body for function, body in bodies(text[found.start():].lstrip())), "")
            calls_guard = any(re.search(rf"\b{function}(<\w+>)?\(", body) for function in guarded)
            if found.group(1) in methods and not calls_guard:
                yield f"{name}: {found.group(1)}"


def unknown_texts():
    """Texts that the contract quotes and the library does not have. (Those with a number in them are put together when
    they are reported; so are those of a MethodFailure, where only the part after the method's name is looked for.)"""
    sources = "".join((ROOT / name).read_text("utf-8") for name in tracked(".cpp", ".hpp") if name.startswith("src/"))
    sources = re.sub(r'"\s*"', "", re.sub(r"//.*", "", sources))  # a literal in several parts is one
    rests = set(re.findall(r'\bMethodFailure\("([^"]*)"\)', sources))
    contract = Contract()
    comments = {" ".join(line.strip() for line in part)
                for declaration in contract.declarations for part in (declaration.comment, *declaration.introductions)}
    for comment in comments:
        for text in re.findall(r'"(\w+(?:::\w+)?: [^"]*)"', comment):
            if text not in sources and text.split(": ", 1)[1] not in rests and not re.search(r"\d{8}|\.\.\.$", text):
                yield f"idl/orlix.idl: {text}"


def forgotten_kernels():
    """Tables of variants that no kernel test compares with their definition, or that no list of kernels in use has."""
    texts = {name: (ROOT / name).read_text("utf-8") for name in tracked(".cpp", ".hpp")}
    tests = "".join(text for name, text in texts.items() if name.startswith("tests/"))
    lists = "".join(text for name, text in texts.items()
                    if name.startswith("src/") and ("KernelInUse" in text or "FilterRow" in text))
    tables = {table for name, text in texts.items() if name.startswith("src/")
              for table, rows in re.findall(r"^inline constexpr Variant<.*> (k\w+)(?:<.*>)?\[\] =([^;]*)", text, re.M)
              if rows.count('{"') > 1}
    if not tables:
        yield "there is no table of variants"
    for table in sorted(tables):
        if not re.search(rf"\b{table}\b", tests):
            yield f"{table} is not tested"
        if not re.search(rf"\b{table}\b", lists):
            yield f"{table} is not in the list of kernels"


def check_sources():
    paths = [path for path in readme_paths() if not path.startswith("build/")]
    check("what README.md names exists",
          [path for path in paths if not (ROOT / path).exists()] if paths else ["it names nothing"])
    check("each method of the contract goes through the boundary", outside_the_boundary())
    check("the texts that the contract quotes are the library's", unknown_texts())
    check("each kernel with variants is tested and listed", forgotten_kernels())
    check("docs/scripting-reference.md is what the descriptions of the contract give", reference_problems())
    check("folders of src stand on lower ones only, clients on the installed headers only", wrong_includes())

    marks = re.compile(r"\b(TO" r"DO|FIX" r"ME|X" r"XX)\b")
    check("nothing is marked as to be done later",
          (f"{name}:{number}: {line.strip()}"
           for name in tracked(".cpp", ".hpp", ".h", ".idl", ".py", ".cmake", ".md", ".txt")
           for number, line in enumerate((ROOT / name).read_text("utf-8").splitlines(), 1) if marks.search(line)))

    # The formatter breaks code and leaves comments and literals as they are.
    check("no comment goes beyond 120 columns",
          (f"{name}:{number}" for name in tracked(".cpp", ".hpp", ".h", ".idl")
           for number, line in enumerate((ROOT / name).read_text("utf-8").splitlines(), 1)
           if len(line) > 120 and "//" in line))

    sources = [name for name in tracked(".cpp", ".hpp", ".h") if name != GENERATED]
    if shutil.which("clang-format"):
        _, said = output_of("clang-format", "--dry-run", "-Werror", *sources, cwd=ROOT)
        check("sources are formatted by .clang-format",
              sorted({line.split(":")[0] for line in said.splitlines() if ": error:" in line}))
    else:
        report("skipped", "sources are formatted: there is no clang-format")


def run_tidy(build, files):
    """Problems that clang-tidy has with the files, a program for each core."""

    def one(file):
        status, said = output_of("clang-tidy", "-p", build, "--quiet", "--extra-arg=-Wno-unknown-warning-option", file)
        lines = [line for line in said.splitlines() if not re.match(r"\d+ warnings? ", line)]
        return lines or [f"{file}: status {status}"] if status else []

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        # A header's problem is reported by each file that includes it; once is enough.
        return list(dict.fromkeys(line for lines in pool.map(one, files) for line in lines))


def compiled(build):
    """The project's own files that a build compiles."""
    commands = json.loads((build / "compile_commands.json").read_text("utf-8"))
    files = sorted({str(Path(entry["directory"], entry["file"]).resolve()) for entry in commands})
    return [file for file in files if file.startswith(f"{ROOT}/") and not file.startswith(f"{ROOT}/build/")]


# ------------------------------------------------------------------------------------------------------------- binaries

EXPORTS = {"DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer", "NeedGdiPlus"}
SYSTEM_LIBRARIES = {"advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll", "gdiplus.dll", "kernel32.dll",
                    "msimg32.dll", "msvcrt.dll", "msvfw32.dll", "ole32.dll", "oleaut32.dll", "shell32.dll",
                    "shlwapi.dll", "user32.dll", "version.dll"}


def foreign_templates(build):
    """Functions for a newer processor that the linker may choose for all processors: every weak definition in an object
    of such a file whose name does not show the instruction set."""
    for suffix in ("avx2", "avx512"):
        for file in sorted([*build.rglob(f"*_{suffix}.cpp.o"), *build.rglob(f"*_{suffix}.cpp.obj")]):
            _, said = output_of("nm", "-C", "--defined-only", file)
            for line in said.splitlines():
                found = re.match(r"[0-9a-f]* *([WVu]) (.*)", line)
                if found and f"_{suffix}" not in found.group(2):
                    yield f"{file.name}: {found.group(2)}"


def check_native(build):
    library = build / "src" / "liborlix.so"
    declared = (ROOT / "include/orlix/platform/component_abi.h").read_text("utf-8")
    functions = set(re.findall(r"^ORLIX_API [\w *]*?\*?(\w+)\(", declared, re.M))
    # The system's names stay free for whoever else stands in for the system.
    intended = {f"{name if name in EXPORTS else 'orlix_' + name}@@ORLIX_0" for name in functions | EXPORTS}
    _, said = output_of("nm", "-D", "--defined-only", library)
    symbols = [line.split()[-2:] for line in said.splitlines()]
    exported = {name for kind, name in symbols if kind != "A"}  # A: the version itself
    check("liborlix.so exports its entry points and the component functions, by names of its own, and nothing else",
          [f"not exported: {name}" for name in sorted(intended - exported)] +
          [f"exported: {name}" for name in sorted(exported - intended)])
    check("native: code for newer processors stays in its functions", foreign_templates(build))
    paths = [path for path in readme_paths() if path.startswith("build/native")]
    check("the build makes what README.md says is there then",
          [path for path in paths if not (build / path.removeprefix("build/native").lstrip("/")).exists()] if paths else
          ["README.md says nothing of it"])
    check("the commands of docs/particles.md print what it shows", differences(ROOT / "docs/particles.md", ROOT, build))


def aligned_stack_moves(objdump, library):
    """The compiler may take stack slots for aligned that Windows does not align: such a move faults half of the time.
    Functions that align the stack for themselves to 64 bytes may use it."""
    process = subprocess.Popen([objdump, "-d", "--no-show-raw-insn", library], stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, text=True)
    wide = 0
    aligned = False
    for line in process.stdout:
        if line.endswith(">:\n"):
            aligned = False
        elif re.search(r"\tand\s+\$0xf*c0,%[re]sp", line):
            aligned = True
        if "%ymm" in line or "%zmm" in line:
            wide += 1
            if re.search(r"\tvmov(aps|apd|dqa(32|64)?)\s", line) and \
                    re.search(r"\(%[re][sb]p", line) and not (aligned and re.search(r"\(%[re]sp", line)):
                yield line.strip()
    if process.wait():
        yield f"{objdump} ended with {process.returncode}"
    if not wide:
        yield "no instruction on wide vectors: is the code for newer processors missing?"


def resource_problems(library, build):
    resources = library.resources()
    scripts = sorted((ROOT / "src/module/registration").glob("*.rgs"))
    wanted = {("REGISTRY", int(script.name.split("_")[0])): script.read_bytes() for script in scripts}
    libraries = sorted(build.rglob("orlix.tlb"))
    wanted["TYPELIB", 1] = libraries[0].read_bytes() if libraries else b""
    manifests = sorted(build.rglob("orlix.manifest"))
    wanted[24, 1] = manifests[0].read_bytes() if manifests else b""
    for key, content in wanted.items():
        if resources.get(key) != content:
            yield f"{key[0]} {key[1]}: {'has another content' if key in resources else 'missing'}"
    if len(scripts) != 14:
        yield f"{len(scripts)} registration scripts instead of 14"
    for key in resources:
        if key[0] in ("REGISTRY", "TYPELIB") and key not in wanted:
            yield f"{key[0]} {key[1]}: not expected"
    if (2, 115) not in resources:
        yield "bitmap 115: missing"
    version = tuple(map(int, re.search(r"project\(orlix VERSION (\d+)\.(\d+)\.(\d+)",
                                       (ROOT / "CMakeLists.txt").read_text("utf-8")).groups()))
    # The fixed part follows the key "VS_VERSION_INFO": signature, its version, then the file's.
    information = resources.get((16, 1), b"")
    start = information.find(struct.pack("<I", 0xFEEF04BD))
    if start < 0:
        yield "version: missing"
    else:
        low_high = struct.unpack_from("<II", information, start + 8)
        found = (low_high[0] >> 16, low_high[0] & 0xFFFF, low_high[1] >> 16)
        if found != version:
            yield f"version: {found} instead of {version}"


def check_windows(bits, build):
    file = sorted(build.rglob("orlix.dll"))[0]
    library = PortableExecutable(file)
    name = f"{bits}-bit orlix.dll"
    check(f"{name} is for {bits}-bit Windows", [] if library.bits == bits else [f"it is for {library.bits} bits"])
    check(f"{name} imports libraries of the system only",
          sorted(f"imports {entry}" for entry in library.imports if entry.lower() not in SYSTEM_LIBRARIES))
    check(f"{name} exports the five entry points under their plain names",
          [] if sorted(library.exports) == sorted(EXPORTS) else [f"exports {', '.join(library.exports)}"])
    check(f"{name} carries its type library, registration scripts and version", resource_problems(library, build))
    check(f"{name} does not rely on the alignment of the stack", aligned_stack_moves(f"{TOOLS[bits]}-objdump", file))
    check(f"{bits}-bit Windows: code for newer processors stays in its functions", foreign_templates(build))
    host = build / "tools/orlixscript/orlixscript.exe"
    wanted = {(24, 1): host.with_suffix(".manifest").read_bytes()}
    found = {key: content for key, content in PortableExecutable(host).resources().items() if key[0] == 24}
    check(f"{bits}-bit {host.name} carries its manifest", [] if found == wanted else [f"it has {sorted(found)}"])
    for tool in sorted([*build.rglob("orlix.exe"), *build.rglob("viewer.exe"), host]):
        check(f"{bits}-bit {tool.name} imports libraries of the system only",
              sorted(f"imports {entry}" for entry in PortableExecutable(tool).imports
                     if entry.lower() not in SYSTEM_LIBRARIES))


def reference_problems():
    page = "docs/scripting-reference.md"
    found, wanted = (ROOT / page).read_text("utf-8"), make_scripting_reference.text_of(ScriptContract())
    return [] if found == wanted else [f"{page} is not what idl/make_scripting_reference.py writes"]


def check_contract(build):
    """The committed header is what the contract gives."""
    problems = []
    try:
        wanted = make_header.made(build).splitlines()
        found = (ROOT / GENERATED).read_text("utf-8").splitlines()
        first = next((i for i, (a, b) in enumerate(zip(wanted, found)) if a != b), min(len(wanted), len(found)))
        if wanted != found:
            problems.append(f"{GENERATED}:{first + 1}: "
                            "is not what idl/make_header.py makes of idl/orlix.idl from here on")
    except Exception as failure:
        problems += str(failure).splitlines()
    check(f"{GENERATED} is what idl/orlix.idl gives", problems)


def check_reference(build):
    """docs/Doxyfile makes the reference without a warning."""
    if not shutil.which("doxygen"):
        report("skipped", "the reference is made without warnings: there is no doxygen")
        return
    output = build / "reference"
    shutil.rmtree(output, ignore_errors=True)
    settings = (ROOT / "docs/Doxyfile").read_text("utf-8") + f"\nOUTPUT_DIRECTORY = {build.resolve()}\n"
    result = subprocess.run(["doxygen", "-"], cwd=ROOT, input=settings, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True)
    problems = result.stdout.splitlines()
    pages = {page.stem for page in output.rglob("*.html")}
    for declaration in Contract().declarations:
        if declaration.kind in ("interface", "struct") and f"struct{declaration.name}" not in pages:
            if declaration.name != "tagBITMAP":
                problems.append(f"{declaration.name} has no page")
    check("the reference is made without warnings and has a page for each interface and record", problems)


# ----------------------------------------------------------------------------------------------------------------- main


def main():
    parser = argparse.ArgumentParser()
    for option in ("--native", "--win32", "--win64", "--tidy"):
        parser.add_argument(option, type=Path, metavar="BUILD")
    arguments = parser.parse_args()
    if arguments.tidy:
        check("clang-tidy has nothing to say", run_tidy(arguments.tidy, compiled(arguments.tidy)))
    else:
        check_sources()
    if arguments.native:
        check_native(arguments.native)
        check_reference(arguments.native)
    for bits, build in ((32, arguments.win32), (64, arguments.win64)):
        if build:
            check_windows(bits, build)
    windows = arguments.win32 or arguments.win64
    if windows:
        check_contract(windows)
    elif not arguments.tidy:
        report("skipped", f"{GENERATED} is what idl/orlix.idl gives: there is no Windows build")
    print(f"{counts['ok']} passed, {counts['FAILED']} failed, {counts['skipped']} skipped")
    return 1 if counts["FAILED"] else 0


sys.exit(main())
