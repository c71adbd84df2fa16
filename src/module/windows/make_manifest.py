"""Writes the side-by-side manifest that orlix.dll carries: with it, programs that have the library in their folder
create its classes without the registry. It says what the registration scripts write.

    make_manifest.py OUTPUT VERSION BITS SCRIPT...

A program names the assembly in its own manifest:

    <dependency><dependentAssembly><assemblyIdentity type="win32" name="orlix" version="VERSION"
        processorArchitecture="x86"/></dependentAssembly></dependency>
"""

import re
import sys
from pathlib import Path
from xml.sax.saxutils import quoteattr

HEAD = """<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
    <assemblyIdentity type="win32" name="orlix" version="{version}" processorArchitecture="{architecture}"/>
    <file name="orlix.dll">
"""
TAIL = """        <typelib tlbid="{library}" version="1.0" helpdir=""/>
    </file>
</assembly>
"""


def value(script, name):
    return re.search(rf"^\s*(?:val )?{name} = s '([^']*)'$", script, re.M).group(1)


def class_of(script):
    clsid, title = re.search(r"ForceRemove (\{[-0-9A-F]{36}\}) = s '([^']*)'", script).groups()
    facts = {"clsid": clsid, "description": title, "threadingModel": value(script, "ThreadingModel"),
             "tlbid": value(script, "TypeLib"), "progid": value(script, "ProgID")}
    attributes = " ".join(f"{name}={quoteattr(text)}" for name, text in facts.items())
    return f"""        <comClass {attributes}>
            <progid>{value(script, "VersionIndependentProgID")}</progid>
        </comClass>
"""


def main():
    if len(sys.argv) < 5:
        sys.exit(__doc__)
    output, version, bits, *paths = sys.argv[1:]
    scripts = [Path(path).read_text("utf-8") for path in paths]
    architecture = {"32": "x86", "64": "amd64"}[bits]
    Path(output).write_text(
        HEAD.format(version=version, architecture=architecture) + "".join(map(class_of, scripts)) +
        TAIL.format(library=value(scripts[0], "TypeLib")), "utf-8")


if __name__ == "__main__":
    main()
