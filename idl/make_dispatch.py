"""Writes what scripts can call, as C++ tables: the interfaces, methods, parameters and records of orlix.idl.

    make_dispatch.py OUTPUT

For src/automation, on Windows. The compiler takes the types from the methods of orlix.h; the names, the directions and
the values of parameters that may be left out come from here. A method is left out where its parameters point into
memory, which scripts do not have; src/automation/windows/added_methods.cpp has others for most of these.
"""

import re
import sys
from dataclasses import dataclass
from pathlib import Path

from contract import Contract

# Slots of the interfaces that those of the contract derive from.
SYSTEM_SLOTS = {"IUnknown": 3, "IPersistStreamInit": 9}

NUMBERS = {"long", "OLE_COLOR", "double", "BSTR"}

# A void* is the address of memory, but for these: handles of the system, which a script passes as numbers.
HANDLES = {"hdc", "hdcDest", "CreateHBITMAP hVal", "CreateFromHBITMAP Bitmap"}

# Methods that take the first element of an array.
WITH_ARRAYS = {("IPolygon", "Create")}

# The system's records have no declaration in the contract.
SYSTEM_RECORDS = {"RECT": ["left", "top", "right", "bottom"]}

# Parameters that may be left out: by name, or by method and name. An omitted object is null.
OMITTED = {
    "BandIndex": "BI_AllBands", "SourceBandToProcess": "BI_AllBands",
    "Bands": "1", "DataType": "DT_BYTE", "Zero": "1", "bZero": "1",
    "Format": "IFF_ByExtension", "Page": "0",
    "bInside": "1", "How": "DT_On", "Connectivity": "CT_8", "Times": "1",
    "TrimLower": "0", "TrimUpper": "0", "RoundOut": "0", "bRoundOut": "0",
    "SnapDisplayRange TrimLeft": "0", "SnapDisplayRange TrimRight": "0",
    "EqualizeTable Type": "ET_Uniform",
    "GrayMeasurements Desired": "GEMT_GrayLocation + GEMT_GrayStatistics",
    "MeasureGray Desired": "GEMT_GrayLocation + GEMT_GrayStatistics + GEMT_GrayRank + GEMT_GrayBoundary + "
                           "GEMT_GrayVolume",
    "Descending": "0", "Outline Type": "OT_PixelEdges", "Hole": "-1",
    "MaximumArea": "0", "KeepArea MaximumArea": "2147483647",
    "Offset": "0", "Bright": "1", "Hit": "0", "Miss": "0",
}


@dataclass
class Parameter:
    attributes: set
    type: str  # with its stars: IBitmap**
    name: str


@dataclass
class Method:
    name: str  # Width
    cpp: str  # get_Width
    access: str
    parameters: list
    slot: int


def parameters_of(text):
    inside = re.search(r"\((.*)\)", text).group(1)
    for attributes, kind, name in re.findall(r"\[((?:[^\]])*)\] *([\w ]+?\**) *(\w+)(?=,|$)", inside):
        yield Parameter(set(re.split(r", *", attributes)), kind, name)


class Tables:
    def __init__(self, contract):
        self.contract = contract
        declared = contract.declarations
        self.enums = {found.name for found in declared if found.kind == "enum"}
        self.interfaces = {}  # name: base
        for found in declared:
            if found.kind == "interface" and not found.text.endswith(";"):
                self.interfaces[found.name] = re.search(r"interface \w+ *: *(\w+)", found.text).group(1)
        self.records = dict(SYSTEM_RECORDS)
        for found in declared:
            if found.kind == "struct" and self.is_value(found.name):
                self.records[found.name] = [member.name for member in declared if member.owner == found.name]

    def is_value(self, record):
        """Whether all fields are numbers, or records of numbers."""
        fields = [found.text for found in self.contract.declarations if found.owner == record]
        types = [re.match(r"(.*?) *\w+(?:\[\d+\])?;", text).group(1) for text in fields]
        return all(kind in ("long", "double") or kind in self.records for kind in types)

    def is_for_scripts(self, method, parameter):
        kind, stars = parameter.type.rstrip("*"), parameter.type.count("*")
        written = "out" in parameter.attributes
        if any(attribute.startswith("size_is") for attribute in parameter.attributes):
            return False
        if kind == "void":
            handle = parameter.name in HANDLES or f"{method} {parameter.name}" in HANDLES
            return handle and stars == (2 if written else 1)
        if kind in self.interfaces or kind == "IStream":
            return stars == (2 if written else 1)
        if kind in self.records:
            return stars == 1 or not written
        return (kind in NUMBERS or kind in self.enums) and stars == (1 if written else 0)

    def methods(self, interface):
        slot = self.first_slot(interface)
        for found in self.contract.declarations:
            if found.owner != interface:
                continue
            access, name = re.match(r"(get_|put_)?(\w+)", found.name).groups()
            parameters = list(parameters_of(found.text))
            if (interface, name) not in WITH_ARRAYS and all(self.is_for_scripts(name, parameter)
                                                            for parameter in parameters):
                yield Method(name, found.name, {"get_": "kGet", "put_": "kPut", None: "kCall"}[access], parameters,
                             slot)
            slot += 1

    def first_slot(self, interface):
        if interface in SYSTEM_SLOTS:
            return SYSTEM_SLOTS[interface]
        base = self.interfaces[interface]
        return self.first_slot(base) + sum(found.owner == base for found in self.contract.declarations)


def record_rows(tables):
    for name, fields in tables.records.items():
        yield f"constexpr Field k{name}Fields[] = {{"
        for field in fields:
            prefix = re.match(r"m_[a-z]+(?=[A-Z])|", field).end()
            if field != "m_lSize":
                yield f'    FieldRow<decltype({name}::{field})>("{field}", {prefix}, offsetof({name}, {field})),'
        size = f"offsetof({name}, m_lSize)" if "m_lSize" in fields else "kNoSize"
        yield "};"
        yield f"constexpr Record k{name}Record = {{k{name}Fields, sizeof({name}), {size}}};"
        yield f"template <>\nconstexpr const Record* kRecordOf<{name}> = &k{name}Record;"
        yield f"template <>\nconst Record& RecordOf<{name}>() noexcept {{\n    return k{name}Record;\n}}\n"


def flags_and_omitted(method, parameter):
    flags = ["kOut" if "out" in parameter.attributes else "kIn"]
    if "retval" in parameter.attributes:
        flags.append("kResult")
    omitted = OMITTED.get(f"{method.name} {parameter.name}", OMITTED.get(parameter.name))
    if omitted is None or flags != ["kIn"] or method.access == "kPut":
        return " | ".join(flags), ""
    return " | ".join([*flags, "kOptional"]), f", {omitted}"


def interface_rows(tables):
    for interface, base in tables.interfaces.items():
        rows = []
        for method in tables.methods(interface):
            symbol = f"&{interface}::{method.cpp}"
            array = "{}"
            if method.parameters:
                array = f"k{interface}_{method.cpp}"
                yield f"constexpr Parameter {array}[] = {{"
                for index, parameter in enumerate(method.parameters):
                    flags, omitted = flags_and_omitted(method, parameter)
                    yield f'    ParameterRow<{symbol}, {index}, {flags}>("{parameter.name}"{omitted}),'
                yield "};"
            rows.append(f'    MethodRow<{symbol}>("{method.name}", {method.access}, {method.slot}, {array}),')
        methods = "{}"
        if rows:
            methods = f"k{interface}Methods"
            yield f"constexpr Method {methods}[] = {{\n" + "\n".join(rows) + "\n};"
        above = f"&k{base}Row" if base in tables.interfaces else "nullptr"
        yield f'constexpr Interface k{interface}Row = {{&__uuidof({interface}), "{interface}", {above}, {methods}}};\n'


def in_order(tables):
    """Bases first: an interface may be declared before the one it derives from is complete."""
    ordered = []

    def add(name):
        if name in tables.interfaces and name not in ordered:
            add(tables.interfaces[name])
            ordered.append(name)

    for name in tables.interfaces:
        add(name)
    tables.interfaces = {name: tables.interfaces[name] for name in ordered}


def dispinterface_rows(contract):
    """Members of dispatch interfaces: their numbers are those of the interface's members of the same names."""
    for found in contract.declarations:
        numbers = {}
        for member in contract.declarations:
            if found.kind == "dispinterface" and member.owner == found.name:
                numbers[re.sub("^(get|put)_", "", member.name)] = re.search(r"id\((\d+)\)", member.text).group(1)
        if numbers:
            yield found.name, numbers


def text_of(contract):
    tables = Tables(contract)
    in_order(tables)
    out = ["// Made from idl/orlix.idl by idl/make_dispatch.py.",
           '#include "automation/windows/contract_rows.hpp"', "", "#include <cstddef>", "",
           "namespace orlix::automation {", ""]
    out += record_rows(tables)
    out += interface_rows(tables)
    out += ["constexpr const Interface* kInterfaceRows[] = {"]
    out += [f"    &k{name}Row," for name in tables.interfaces] + ["};"]
    rows = []
    for name, numbers in dispinterface_rows(contract):
        out += [f"constexpr NumberedMember k{name}Members[] = {{"]
        out += [f'    {{"{member}", {number}}},' for member, number in numbers.items()] + ["};"]
        rows.append(f"    {{&__uuidof({name}), &k{name.removesuffix('Disp')}Row, k{name}Members}},")
    out += ["constexpr Dispinterface kDispinterfaceRows[] = {", *rows, "};", "",
            "constinit const std::span<const Interface* const> kInterfaces = kInterfaceRows;",
            "constinit const std::span<const Dispinterface> kDispinterfaces = kDispinterfaceRows;", "",
            "}  // namespace orlix::automation", ""]
    return "\n".join(out)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    Path(sys.argv[1]).write_text(text_of(Contract()), "utf-8")


if __name__ == "__main__":
    main()
