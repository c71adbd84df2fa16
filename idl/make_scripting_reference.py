"""Writes docs/scripting-reference.md: every class, method, property, record and constant that scripts have.

    make_scripting_reference.py OUTPUT
"""

import re
import sys
from pathlib import Path

from scripts import ScriptContract

HEAD = """# Reference for scripts

Made from `idl/orlix.idl` and `idl/scripts.idl` by `idl/make_scripting_reference.py`; [Scripting](scripting.md) says how
to read it. Each line has the first sentence of a method's comment: what it refuses, and with which text, stands in the
contract. Arguments in brackets may be left out. "{A, B}" is an object with the fields A and B.
"""


def anchor(title):
    return title.lower()


class Reference:
    def __init__(self, scripts):
        self.scripts = scripts
        # An object of an interface is one of the class that has it first.
        self.class_of = {}
        for found in scripts.classes:
            for interface in scripts.all_interfaces(found):
                self.class_of.setdefault(interface, found.name)
        # Objects that methods return are images and bitmaps, whatever else has the interface.
        for name in "OrlixImage", "OrlixBitmap":
            found = next(entry for entry in scripts.classes if entry.name == name)
            self.class_of |= {interface: name for interface in scripts.all_interfaces(found)}
        self.class_of["IRegionOfInterest"] = "OrlixShapeRegionOfInterest"
        self.returned = {("IBlobs", "LabelImage"): "OrlixPlaneImage", ("IBlobs", "Region"): "OrlixRunRegion"}

    def type_of(self, kind):
        name = kind.rstrip("*")
        if name in self.class_of:
            return f"[{self.class_of[name]}](#{anchor(self.class_of[name])})"
        if name in self.scripts.records:
            return f"[{name}](#{anchor(name)})"
        if name in self.scripts.enums:
            return f"[{name}](#{anchor(name)})"
        return {"long": "integer", "double": "number", "BSTR": "text", "OLE_COLOR": "colour", "void": "handle",
                "VARIANT": "array", "IStream": "stream", "IUnknown": "stream"}[name]

    def result(self, method):
        if method.name in ("Item", "_NewEnum"):
            return "[SBinaryMeasurements](#sbinarymeasurements)"
        outputs = method.outputs()
        result = [parameter for parameter in outputs if parameter.is_result] or outputs
        if (method.interface, method.name) in self.returned:
            name = self.returned[method.interface, method.name]
            return f"[{name}](#{anchor(name)})"
        if len(result) > 1:
            return "{" + ", ".join(parameter.name for parameter in result) + "}"
        return self.type_of(result[0].value_type) if result else ""

    def argument(self, parameter):
        if not parameter.omitted:
            return parameter.name
        value = {"INT32_MIN": "all"}.get(parameter.omitted, parameter.omitted)
        return f"[{parameter.name} = {value}]"

    def row(self, member):
        methods = member.methods
        method = methods.get("kGet") or methods.get("kCall") or methods["kPut"]
        inputs = method.inputs()
        if method.access == "kPut":
            inputs = inputs[:-1]
        given = ", ".join(self.argument(parameter) for parameter in inputs)
        name = f"`{member.name}({given})`" if given or method.access == "kCall" else f"`{member.name}`"
        access = "" if "kCall" in methods else "read, set" if {"kGet", "kPut"} <= methods.keys() else \
            "read" if "kGet" in methods else "set"
        result = self.result(method) if method.access != "kPut" else self.type_of(method.parameters[-1].type)
        brief = method.declaration.brief().replace("|", "\\|")
        return f"| {name} | {access} | {result} | {brief} |"

    def classes(self):
        creatable = {found.name for found in self.scripts.contract.declarations if found.kind == "coclass"}
        for found in self.scripts.classes:
            yield f"\n## {found.name}\n"
            made = f'`CreateObject("Orlix.{prog_id(found.name)}")`. ' if found.name in creatable else ""
            yield f"{made}{' '.join(found.declaration.comment)}\n"
            yield "| member | | result | |\n|---|---|---|---|"
            members = sorted(self.scripts.members(found), key=lambda member: member.name.lower())
            yield from (self.row(member) for member in members)

    def records(self):
        yield ("\n## Records\n\n"
               "Objects with these fields. Their names in the contract, with a prefix (`m_dAlpha`), work too.")
        for name, fields in self.scripts.records.items():
            known = [found for found in self.scripts.contract.declarations if found.name == name]
            brief = known[0].brief() if known else ""
            shown = ", ".join(f"`{re.sub('^m_[a-z]+(?=[A-Z])', '', field)}`" for field in fields if field != "m_lSize")
            yield f"\n### {name}\n\n{brief} {shown}".replace("\n ", "\n")

    def constants(self):
        yield "\n## Constants\n\nLanguages that do not read the type library need the numbers."
        for found in self.scripts.contract.declarations:
            if found.kind != "enum":
                continue
            yield f"\n### {found.name}\n\n{found.brief()}\n"
            yield "| name | value | |\n|---|---|---|"
            for member in self.scripts.contract.declarations:
                if member.owner == found.name:
                    brief = member.brief().replace("|", "\\|")
                    yield f"| `{member.name}` | {self.scripts.values[member.name]} | {brief} |"


def prog_id(coclass):
    return {"OrlixBuffer": "OrlixBuffer"}.get(coclass, coclass.removeprefix("Orlix"))


def text_of(scripts):
    reference = Reference(scripts)
    return "\n".join([HEAD.rstrip("\n"), *reference.classes(), *reference.records(), *reference.constants(), ""])


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    Path(sys.argv[1]).write_text(text_of(ScriptContract()), "utf-8")


if __name__ == "__main__":
    main()
