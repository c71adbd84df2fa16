"""Makes include/orlix/orlix.h from orlix.idl.

    make_header.py BUILD [HEADER]

BUILD is a configured Windows build, whose cache says where the interface compiler and its imports are. The compiler
decides what is in the header: types, order of the methods, identifiers. Here it becomes a header to read and to include
anywhere:

  - It includes the system's headers on Windows only, and does not count on their macro `interface`: clients off Windows
    have neither, nor a header that passes for one of the system's.
  - It is for C++. The tables and macros for C, three quarters of what the compiler writes, are left out.
  - The comments of the contract stand where an editor looks for them, directly above each declaration.
  - Enumerations have a fixed underlying type. The contract says what methods do with values that have no name; without
    such a type C++ would not let them be read.
"""

import re
import subprocess
import sys
from pathlib import Path

from contract import Contract

ROOT = Path(__file__).resolve().parent.parent
HEADER = ROOT / "include/orlix/orlix.h"
WIDTH = 120

BEGIN = """\
#ifndef ORLIX_ORLIX_H
#define ORLIX_ORLIX_H

#ifndef __cplusplus
#error "this header is for C++; the interface compilers make one for C from orlix.idl"
#endif

#ifdef _WIN32
#include <windows.h>
#include <ole2.h>
#include <oaidl.h>
#include <ocidl.h>
#else
#include <orlix/platform/component_abi.h>
#endif

// Interfaces have no destructors: Release ends what is behind them.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
"""

END = """\
#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

#endif
"""


def cached(build, name):
    found = re.search(rf"^{name}:\w+=(.*)$", (build / "CMakeCache.txt").read_text("utf-8"), re.M)
    return found.group(1) if found else ""


def compiled(build):
    """What the interface compiler makes of the contract; whatever it says is an error, as in cmake/RunWidl.cmake."""
    output = build.resolve() / "contract.h"
    output.unlink(missing_ok=True)
    result = subprocess.run(
        [cached(build, "ORLIX_WIDL"), "-I", cached(build, "ORLIX_IDL_IMPORTS"), "-L",
         cached(build, "ORLIX_TYPE_LIBRARY_IMPORTS"), "-h", "-o", str(output), "idl/orlix.idl"],
        cwd=ROOT, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if result.returncode or result.stdout or not output.exists():
        raise RuntimeError(f"{result.stdout}the interface compiler ended with status {result.returncode}")
    return output.read_text("utf-8")


def comment(lines, indent=""):
    return [f"{indent}// {line}".rstrip() for line in lines]


def signature(text):
    """A method, in one line where it fits, else with as many parameters in each line as fit."""
    text = re.sub(r" (\*+)(?=\w)", r"\1 ", re.sub(r"\s+", " ", text)).replace("( ", "(")
    if len(text) + 4 <= WIDTH:
        return [f"    {text}"]
    head, parameters = text.split("(", 1)
    lines = [f"    {head}("]
    for parameter in re.findall(r"[^,]+,?", parameters):
        if len(lines[-1]) + len(parameter) > WIDTH:
            lines.append(" " * 8 + parameter.strip())
        else:
            lines[-1] += parameter
    return lines


def identifiers(lines):
    """The lines that give a type its identifier, for __uuidof too where the compiler does not know it by itself."""
    found = [line for line in lines if line.startswith("DEFINE_GUID(")]
    uuids = [line for line in lines if line.startswith("__CRT_UUID_DECL(")]
    return found + ["#ifdef __CRT_UUID_DECL"] + uuids + ["#endif"]


def interface(block, contract):
    """block: from DEFINE_GUID to __CRT_UUID_DECL."""
    start = next(i for i, line in enumerate(block) if line.startswith("MIDL_INTERFACE("))
    name = re.match(r"\w+", block[start + 1]).group()
    out = comment(contract.find("", name).comment) + [f"{block[start]} {block[start + 1]} {{"]
    methods = re.findall(r"virtual [^;]*;", "\n".join(block[start:]))
    for method in methods:
        declaration = contract.find(name, re.search(r"STDMETHODCALLTYPE (\w+)\(", method).group(1))
        for introduction in declaration.introductions:
            out += comment(introduction, "    ") + [""]
        out += comment(declaration.comment, "    ") + signature(method) + [""]
    if methods:
        out.pop()
    return out + ["};"] + identifiers(block)


def record(lines, contract):
    """An enumeration or a structure."""
    kind, name = re.match(r"typedef (enum|struct) (\w+) \{", lines[0]).groups()
    out = comment(contract.find("", name).comment)
    out.append(f"typedef enum {name} : LONG {{" if kind == "enum" else lines[0])
    for line in lines[1:-1]:
        member = re.search(r"(\w+)(?:\[\d+\])?;$", line) if kind == "struct" else re.search(r"(\w+)", line)
        out += comment(contract.find(name, member.group(1)).comment, "    ")
        out.append(re.sub(r" (\*+)(?=\w)", r"\1 ", line))
    return out + [lines[-1]]


def made(build):
    """The text of the header."""
    contract = Contract()
    text = compiled(build)
    names = re.findall(r"^typedef interface (\w+) \1;", text, re.M)
    out = ["// Made from idl/orlix.idl by idl/make_header.py: not to be edited.", ""]
    out += [*comment(contract.head), "", BEGIN]
    out += [f"struct {name};" for name in names] + [""]
    parts = re.finditer(r"^typedef (?:enum|struct) \w+ \{\n(?:.*\n)*?\} \w+;$"
                        r"|^DEFINE_GUID\(D?IID_.*\n(?:.*\n)*?__CRT_UUID_DECL\(.*$"
                        r"|^DEFINE_GUID\(CLSID_.*\n(?:.*\n)*?__CRT_UUID_DECL\(.*$"
                        r"|^DEFINE_GUID\(LIBID_.*$", text, re.M)
    for part in parts:
        lines = part.group().splitlines()
        if re.match(r"typedef (?:enum|struct) tagBITMAP\b", lines[0]):
            continue  # the system's
        if lines[0].startswith("typedef struct") and lines[0].endswith("Vtbl {"):
            continue  # for C
        if lines[0].startswith("typedef"):
            out += record(lines, contract)
        elif "IID_" in lines[0]:
            out += interface(lines, contract)
        elif "CLSID_" in lines[0]:
            line = next(line for line in lines if line.startswith("class "))
            out += comment(contract.find("", line.split()[-1].rstrip(";")).comment) + [line] + identifiers(lines)
        else:
            out += ["// The type library OrlixLib."] + lines
        out.append("")
    check_complete(out, contract)
    return "\n".join(out + [END])


def check_complete(out, contract):
    """Nothing of the contract got lost on the way."""
    text = "\n".join(out)
    for declaration in contract.declarations:
        if declaration.owner and contract.find("", declaration.owner).kind == "dispinterface":
            continue
        if declaration.name == "tagBITMAP" or declaration.owner == "tagBITMAP":
            continue
        if not re.search(rf"\b{declaration.name}\b", re.sub(r"//.*", "", text)):
            raise RuntimeError(f"{declaration} did not get into the header")


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
