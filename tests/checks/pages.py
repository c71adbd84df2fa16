"""Pages of docs whose commands are run: in each ```console block, lines after "$ " are commands, and what follows is
what they print, where a line "..." stands for any number of lines. A ```cpp block is a program; the text before it
names its file."""

import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path


def shown_commands(text):
    """The commands that a page shows, each with the lines that it prints."""
    for block in re.findall(r"^```console\n(.*?)^```", text, re.M | re.S):
        for part in re.split(r"^\$ ", block, flags=re.M)[1:]:
            command, _, printed = part.partition("\n")
            yield command, printed


def prints_as_shown(printed, shown):
    pattern = "".join(r"(?:.*\n)*?" if line == "...\n" else re.escape(line) for line in shown.splitlines(keepends=True))
    return re.fullmatch(pattern, printed) is not None


def differences(page, root, build):
    """What is not as the page shows it."""
    text = page.read_text("utf-8")
    path = f"{build / 'tools/orlix'}{os.pathsep}{os.environ['PATH']}"
    with tempfile.TemporaryDirectory() as folder:
        for before, program in re.findall(r"`(\w+)\.cpp`:\n\n```cpp\n(.*?)^```", text, re.M | re.S):
            (Path(folder) / f"{before}.cpp").write_text(program, "utf-8")
            compiled = subprocess.run(
                [shutil.which("c++") or "g++", "-std=c++20", "-Wall", "-Wextra", "-Werror", f"-I{root / 'include'}",
                 f"{before}.cpp", "-o", before, f"-L{build / 'src'}", f"-Wl,-rpath,{build / 'src'}", "-lorlix"],
                cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            if compiled.returncode:
                yield f"{page.name}: {before}.cpp does not build: {compiled.stdout}"
        count = 0
        for command, shown in shown_commands(text):
            count += 1
            ran = subprocess.run(command, shell=True, cwd=folder, env={**os.environ, "PATH": path},
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            printed = ran.stdout.decode("utf-8", "replace").replace("\r\n", "\n")
            if ran.returncode or not prints_as_shown(printed, shown):
                yield f"{page.name}: {command} (status {ran.returncode}) prints\n{printed}"
        if not count:
            yield f"{page.name} shows no command"
