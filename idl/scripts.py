"""What scripts can call: the interfaces, methods, parameters, records and classes of orlix.idl and scripts.idl.

A method of orlix.idl is left out where its parameters point into memory, which scripts do not have; scripts.idl has
others for most of these. The rules for names and numbers are those of src/automation/windows/class_members.hpp.
"""

import re
from dataclasses import dataclass, field
from pathlib import Path

from contract import Contract, Declaration

SCRIPTS = Path(__file__).resolve().parent / "scripts.idl"

# Slots of the interfaces that those of the contract derive from.
SYSTEM_SLOTS = {"IUnknown": 3, "IDispatch": 7, "IPersistStreamInit": 9}
# Methods of scripts.idl have numbers from here on (kFirstAddedSlot).
FIRST_ADDED_SLOT = 128

NUMBERS = {"long", "OLE_COLOR", "double", "BSTR", "VARIANT"}

# A void* is the address of memory, but for these: handles of the system, which a script passes as numbers.
HANDLES = {"hdc", "hdcDest", "CreateHBITMAP hVal", "CreateFromHBITMAP Bitmap"}

# Methods that take the first element of an array.
WITH_ARRAYS = {("IPolygon", "Create")}

# Objects of the system.
SYSTEM_OBJECTS = {"IStream", "IUnknown"}

# The system's records have no declaration in the contract.
SYSTEM_RECORDS = {"RECT": ["left", "top", "right", "bottom"]}

NO_TEXT = '""'  # the value of a text that is left out

# Parameters of orlix.idl that may be left out, but for those that say so there: by name, or by method and name.
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
    "Offset": "0", "Bright": "1", "Hit": "0", "Miss": "0", "SaveToStream Format": "IFF_PNG",
}
ALL = "INT32_MIN"  # of counts and indices, which scripts.idl calls ALL


@dataclass
class Parameter:
    attributes: set
    type: str  # with its stars: IBitmap**
    name: str
    omitted: str = ""  # the value when it is left out, as C++ spells it; "" where it must not

    @property
    def is_output(self):
        return "out" in self.attributes

    @property
    def is_result(self):
        return "retval" in self.attributes

    @property
    def value_type(self):
        """The type of what is given or returned: outputs are written through pointers."""
        return self.type.removesuffix("*") if self.is_output else self.type


@dataclass
class Method:
    interface: str
    name: str  # Width
    cpp: str  # get_Width
    access: str  # kGet
    parameters: list
    slot: int
    declaration: Declaration

    @property
    def is_added(self):
        return self.slot >= FIRST_ADDED_SLOT

    def inputs(self):
        return [parameter for parameter in self.parameters if not parameter.is_output]

    def outputs(self):
        return [parameter for parameter in self.parameters if parameter.is_output]


@dataclass
class Member:
    name: str
    id: int
    methods: dict = field(default_factory=dict)  # by access


@dataclass
class ScriptClass:
    name: str
    uuid: str  # of its dispatch interface
    interfaces: list
    declaration: Declaration


def parameters_of(text):
    inside = re.search(r"\((.*)\);", text).group(1)
    for attributes, kind, name in re.findall(r"\[((?:[^\]])*)\] *([\w ]+?\**) *(\w+)(?=,|$)", inside):
        yield Parameter(set(re.split(r", *", attributes)), kind, name)


def uuid_of(declaration):
    return re.search(r"uuid\(([-\w]+)\)", declaration.text).group(1)


class ScriptContract:
    def __init__(self):
        self.contract = Contract()
        self.added = Contract(SCRIPTS)
        declared = self.contract.declarations
        self.enums = {found.name for found in declared if found.kind == "enum"}
        self.values = self._values()
        self.declarations = {}  # of the interfaces
        bases = {}
        for found in declared:
            if found.kind == "interface" and not found.text.endswith(";"):
                bases[found.name] = re.search(r"interface \w+ *: *(\w+)", found.text).group(1)
                self.declarations[found.name] = found
        self.interfaces = {}  # name: base, bases first
        for name in bases:
            self._add_with_base(name, bases)
        self.records = dict(SYSTEM_RECORDS)
        for found in declared:
            if found.kind == "struct" and self._is_value(found.name):
                self.records[found.name] = [member.name for member in declared if member.owner == found.name]
        self.methods = {name: list(self._methods(name)) for name in self.interfaces}
        self.classes = [self._class(found) for found in self.added.declarations if found.kind == "coclass"]
        self.coclasses = {found.name: found for found in declared if found.kind == "coclass"}
        self.events = next(found for found in self.added.declarations if found.kind == "dispinterface")

    # ------------------------------------------------------------------------------------------------- questions

    def line_of(self, name):
        """An interface and those that it derives from, the first one first."""
        base = self.interfaces[name]
        return [*(self.line_of(base) if base in self.interfaces else []), name]

    def all_interfaces(self, script_class):
        """The interfaces of a class with their bases, in the order in which names belong to them."""
        found = []
        for name in script_class.interfaces:
            found += [above for above in self.line_of(name) if above not in found]
        return found

    def dispinterfaces(self):
        """Dispatch interfaces of orlix.idl, and dual ones: the numbers of their members, which are an interface's."""
        for found in self.contract.declarations:
            numbers = {}
            numbered = found.kind == "dispinterface" or re.search(r"\bdual\b", found.text)
            for member in self.contract.declarations:
                if numbered and member.owner == found.name:
                    name = re.sub("^(get|put)_", "", member.name)
                    numbers[name] = int(re.search(r"id\((\d+)\)", member.text).group(1))
            if numbers:
                yield found.name, found.name.removesuffix("Disp"), numbers

    def members(self, script_class):
        """The members of a class, in the order of their declarations."""
        members = {}  # by their names in small letters
        for interface in self.all_interfaces(script_class):
            for method in self.methods[interface]:
                name = method.name
                known = members.get(name.lower())
                if known:
                    get = known.methods.get("kGet")
                    if method.access != "kPut" or not get or get.interface not in self.line_of(interface):
                        name = f"{interface}_{name}"
                member = members.setdefault(name.lower(), Member(name, self._number(name, method)))
                member.methods[method.access] = method
        for _, interface, numbers in self.dispinterfaces():
            if interface not in self.all_interfaces(script_class):
                continue
            for name, number in numbers.items():
                methods = members[name.lower()].methods
                method = methods.get("kGet") or methods.get("kCall")
                if method and method.interface in self.line_of(interface):
                    members[name.lower()].id = number
        return list(members.values())

    def raises_events(self, script_class):
        return "IPictureExZoom" in script_class.interfaces

    def number(self, expression):
        """The value of a sum of enumerators and numbers."""
        if expression == ALL:
            return -2**31
        return sum(self.values.get(term, 0) if term in self.values else int(term, 0)
                   for term in re.split(r"\s*\+\s*", expression))

    # ------------------------------------------------------------------------------------------------- reading

    def _values(self):
        values = {}
        for found in self.contract.declarations:
            given = re.match(r"(\w+) *= *([^,/]+)", found.text) if found.owner in self.enums else None
            if given:
                terms = re.split(r"\s*[|+]\s*", given.group(2).strip())
                values[given.group(1)] = sum(values[term] if term in values else int(term, 0) for term in terms)
        return values

    def _add_with_base(self, name, bases):
        if name in bases and name not in self.interfaces:
            self._add_with_base(bases[name], bases)
            self.interfaces[name] = bases[name]

    def _is_value(self, record):
        """Whether all fields are numbers, or records of numbers."""
        fields = [found.text for found in self.contract.declarations if found.owner == record]
        types = [re.match(r"(.*?) *\w+(?:\[\d+\])?;", text).group(1) for text in fields]
        return all(kind in ("long", "double") or kind in self.records for kind in types)

    def _is_for_scripts(self, method, parameter):
        kind, stars = parameter.type.rstrip("*"), parameter.type.count("*")
        written = parameter.is_output
        if any(attribute.startswith("size_is") for attribute in parameter.attributes):
            return False
        if kind == "void":
            handle = parameter.name in HANDLES or f"{method} {parameter.name}" in HANDLES
            return handle and stars == (2 if written else 1)
        if kind in self.interfaces or kind in SYSTEM_OBJECTS:
            return stars == (2 if written else 1)
        if kind in self.records:
            return stars == 1 or not written
        return (kind in NUMBERS or kind in self.enums) and stars == (1 if written else 0)

    def _methods(self, interface):
        first = self._first_slot(interface)
        for contract, slot in (self.contract, first), (self.added, FIRST_ADDED_SLOT):
            for found in contract.declarations:
                if found.owner != interface:
                    continue
                access, name = re.match(r"(get_|put_)?(\w+)", found.name).groups()
                parameters = list(parameters_of(found.text))
                memory = contract is self.contract and (interface, name) in WITH_ARRAYS
                if not memory and all(self._is_for_scripts(name, parameter) for parameter in parameters):
                    method = Method(interface, name, found.name,
                                    {"get_": "kGet", "put_": "kPut", None: "kCall"}[access], parameters, slot, found)
                    for parameter in parameters:
                        parameter.omitted = self._omitted(method, parameter)
                    yield method
                slot += 1

    def _omitted(self, method, parameter):
        if parameter.is_output:
            return ""
        given = [re.fullmatch(r"defaultvalue\((.*)\)", attribute) for attribute in parameter.attributes]
        value = next((found.group(1) for found in given if found), "")
        if value or method.is_added:
            return ALL if value == "ALL" else value
        if method.access == "kPut":
            return ""
        return OMITTED.get(f"{method.name} {parameter.name}", OMITTED.get(parameter.name, ""))

    def _first_slot(self, interface):
        if interface in SYSTEM_SLOTS:
            return SYSTEM_SLOTS[interface]
        base = self.interfaces[interface]
        return self._first_slot(base) + sum(found.owner == base for found in self.contract.declarations)

    def _class(self, declaration):
        text = " ".join(self.added.lines[declaration.line:])
        return ScriptClass(declaration.name, uuid_of(declaration),
                           re.findall(r"interface (\w+);", text[:text.index("};")]), declaration)

    def _number(self, name, method):
        special = {"item": 0, "_newenum": -4}.get(name.lower())
        if special is not None:
            return special
        data2 = int(uuid_of(self.declarations[method.interface]).split("-")[1], 16)
        return 0x1000000 + (data2 << 8) + method.slot
