"""Writes what scripts can call, as C++ tables.

    make_dispatch.py OUTPUT

For src/automation, on Windows. The compiler takes the types from the methods of orlix.h and the functions of
added_methods.hpp; the names, the directions and the values of parameters that may be left out come from here.
"""

import re
import sys
import uuid
from pathlib import Path

from scripts import NO_TEXT, ScriptContract, uuid_of


def record_rows(scripts):
    for name, fields in scripts.records.items():
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


def parameter_row(symbol, index, parameter):
    flags = ["kOut" if parameter.is_output else "kIn"]
    if parameter.is_result:
        flags.append("kResult")
    omitted = ""
    if parameter.omitted:
        flags.append("kOptional")
        if parameter.omitted != NO_TEXT:
            omitted = f", {parameter.omitted}"
    return f'    ParameterRow<{symbol}, {index}, {" | ".join(flags)}>("{parameter.name}"{omitted}),'


def interface_rows(scripts):
    for interface, base in scripts.interfaces.items():
        rows = []
        for method in scripts.methods[interface]:
            symbol = f"Added<{interface}>::{method.cpp}" if method.is_added else f"&{interface}::{method.cpp}"
            array = "{}"
            if method.parameters:
                array = f"k{'Added' if method.is_added else ''}{interface}_{method.cpp}"
                yield f"constexpr Parameter {array}[] = {{"
                for index, parameter in enumerate(method.parameters):
                    yield parameter_row(symbol, index, parameter)
                yield "};"
            rows.append(f'    MethodRow<{symbol}>("{method.name}", {method.access}, {method.slot}, {array}),')
        methods = "{}"
        if rows:
            methods = f"k{interface}Methods"
            yield f"constexpr Method {methods}[] = {{\n" + "\n".join(rows) + "\n};"
        above = f"&k{base}Row" if base in scripts.interfaces else "nullptr"
        yield f'constexpr Interface k{interface}Row = {{&__uuidof({interface}), "{interface}", {above}, {methods}}};\n'
    yield "constexpr const Interface* kInterfaceRows[] = {"
    yield from (f"    &k{name}Row," for name in scripts.interfaces)
    yield "};"


def dispinterface_rows(scripts):
    rows = []
    for name, interface, numbers in scripts.dispinterfaces():
        yield f"constexpr NumberedMember k{name}Members[] = {{"
        yield from (f'    {{"{member}", {number}}},' for member, number in numbers.items())
        yield "};"
        rows.append(f"    {{&__uuidof({name}), &k{interface}Row, k{name}Members}},")
    yield from ["constexpr Dispinterface kDispinterfaceRows[] = {", *rows, "};"]


def identifier(text):
    first, second, third, *rest = uuid.UUID(text).fields
    tail = uuid.UUID(text).bytes[8:]
    return f"{{{first:#x}, {second:#x}, {third:#x}, {{{', '.join(f'{byte:#x}' for byte in tail)}}}}}"


def class_rows(scripts):
    rows = []
    for found in scripts.classes:
        yield f"constexpr const Interface* k{found.name}Interfaces[] = {{"
        yield from (f"    &k{name}Row," for name in scripts.all_interfaces(found))
        yield "};"
        coclass = f"&__uuidof({found.name})" if found.name in scripts.coclasses else "nullptr"
        events = "&kPictureEvents" if scripts.raises_events(found) else "nullptr"
        rows.append(f"    {{{identifier(found.uuid)}, k{found.name}Interfaces, {coclass}, {events}}},")
    yield f"constinit const IID kPictureEvents = {identifier(uuid_of(scripts.events))};"
    yield from ["constexpr ScriptClass kScriptClassRows[] = {", *rows, "};"]


def text_of(scripts):
    return "\n".join([
        "// Made from idl/orlix.idl and idl/scripts.idl by idl/make_dispatch.py.",
        '#include "automation/windows/added_methods.hpp"',
        '#include "automation/windows/contract_rows.hpp"', "", "#include <cstddef>", "#include <cstdint>", "",
        "namespace orlix::automation {", "", *record_rows(scripts), *interface_rows(scripts),
        *dispinterface_rows(scripts), *class_rows(scripts), "",
        "constinit const std::span<const Interface* const> kInterfaces = kInterfaceRows;",
        "constinit const std::span<const Dispinterface> kDispinterfaces = kDispinterfaceRows;",
        "constinit const std::span<const ScriptClass> kScriptClasses = kScriptClassRows;", "",
        "}  // namespace orlix::automation", ""])


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    Path(sys.argv[1]).write_text(text_of(ScriptContract()), "utf-8")


if __name__ == "__main__":
    main()
