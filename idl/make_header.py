"""Makes include/orlix/orlix.h from orlix.idl.

    make_header.py BUILD [HEADER]

BUILD is a configured Windows build, whose cache says where the interface compiler and its imports are. What the compiler
writes includes the system's headers and counts on their macro `interface`; clients off Windows have neither, nor a header
that passes for one of the system's.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
HEADER = ROOT / "include/orlix/orlix.h"


def cached(build, name):
    found = re.search(rf"^{name}:\w+=(.*)$", (build / "CMakeCache.txt").read_text("utf-8"), re.M)
    return found.group(1) if found else ""


def compiled(build):
    """What the interface compiler makes of the contract; whatever it says is an error, as in cmake/RunWidl.cmake."""
    output = build.resolve() / "contract" / HEADER.name  # the name gets into the text
    output.parent.mkdir(exist_ok=True)
    output.unlink(missing_ok=True)
    result = subprocess.run(
        [cached(build, "ORLIX_WIDL"), "-I", cached(build, "ORLIX_IDL_IMPORTS"), "-L",
         cached(build, "ORLIX_TYPE_LIBRARY_IMPORTS"), "-h", "-o", str(output), "idl/orlix.idl"],
        cwd=ROOT, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if result.returncode or result.stdout or not output.exists():
        raise RuntimeError(f"{result.stdout}the interface compiler ended with status {result.returncode}")
    return output.read_text("utf-8")


def replaced_once(text, old, new):
    if text.count(old) != 1:
        raise RuntimeError(f"the interface compiler wrote this {text.count(old)} times instead of once:\n{old}")
    return text.replace(old, new)


def portable(text):
    """The system's headers on Windows only, the library's own elsewhere; no macro in lower case."""
    text = replaced_once(text, """\
#include <rpc.h>
#include <rpcndr.h>
#endif

#ifndef COM_NO_WINDOWS_H
#include <windows.h>
#include <ole2.h>
#endif
""", """\
#include <rpc.h>
#include <rpcndr.h>
#ifndef COM_NO_WINDOWS_H
#include <windows.h>
#include <ole2.h>
#endif
#else
#include <orlix/platform/component_abi.h>
#endif
""")
    text = replaced_once(text, """\
#include <oaidl.h>
#include <ocidl.h>
""", """\
#ifdef _WIN32
#include <oaidl.h>
#include <ocidl.h>
#endif
""")
    return re.sub(r"^((?:typedef )?)interface (?=\w)", r"\1struct ", text, flags=re.M)


def made(build):
    """The text of the header."""
    return portable(compiled(build))


def main():
    if not 2 <= len(sys.argv) <= 3:
        sys.exit(__doc__)
    header = Path(sys.argv[2]) if len(sys.argv) == 3 else HEADER
    text = made(Path(sys.argv[1]))
    # An unchanged header rebuilds nothing.
    if not header.exists() or header.read_text("utf-8") != text:
        header.write_text(text, "utf-8")


if __name__ == "__main__":
    main()
