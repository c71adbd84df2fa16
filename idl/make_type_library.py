"""Writes orlix.idl as the type library has it: with help strings and the dispatch interfaces of scripts.

    make_type_library.py OUTPUT

A help string is the first sentence of a comment. (The interface compiler takes none for members of enumerations and
records. Classes have their own, which are part of the contract.) Methods that give addresses of memory are restricted:
Visual Basic neither shows nor calls them. Each class for scripts has a dispatch interface, which its objects answer and
return as their type information, and which has arrays in place of addresses; it is listed by the class.
"""

import re
import sys
from pathlib import Path

from scripts import NO_TEXT, SYSTEM_OBJECTS, ScriptContract, uuid_of


def help_string(declaration):
    text = declaration.brief().replace("\\", "\\\\").replace('"', '\\"')
    return f'helpstring("{text}")'


def gives_addresses(contract, declaration):
    """Whether a method gives the address of memory, which few languages but C++ can read."""
    interfaces = {found.name for found in contract.declarations if found.kind == "interface"} | {"IUnknown"}
    pointed = re.findall(r"(\w+)\*\*", declaration.text)
    return declaration.kind == "method" and any(name not in interfaces for name in pointed)


def with_attributes(contract):
    lines = list(contract.lines)
    for declaration in contract.declarations:
        if declaration.kind in ("member", "coclass"):
            continue
        attribute = help_string(declaration)
        if gives_addresses(contract, declaration):
            attribute = f"restricted, {attribute}"
        line = lines[declaration.line]
        if declaration.kind in ("enum", "struct"):
            line = line.replace("typedef ", f"typedef [{attribute}] ", 1)
        elif line.lstrip().startswith("["):
            line = line.replace("]", f", {attribute}]", 1)
        else:
            line = re.sub(r"^\s*", lambda indent: f"{indent.group()}[{attribute}] ", line, count=1)
        lines[declaration.line] = line
    return lines


def automation_type(scripts, kind):
    """The type by which languages with variants know a value."""
    name, stars = kind.rstrip("*"), kind.count("*")
    if name == "void":
        return "VARIANT"  # a handle, as wide as a pointer
    if name == "OLE_COLOR":
        return "long"  # Visual Basic has no unsigned integers
    if name in SYSTEM_OBJECTS:
        return "IUnknown*"
    if name in scripts.interfaces or name in scripts.records:
        return "IDispatch*"
    assert not stars, kind
    return name


def result_type(scripts, method):
    outputs = method.outputs()
    result = [parameter for parameter in outputs if parameter.is_result] or outputs
    if not result:
        return "void"
    if method.name == "_NewEnum":
        return "IUnknown*"
    return automation_type(scripts, result[0].value_type) if len(result) == 1 else "IDispatch*"


def arguments(scripts, method):
    inputs = method.inputs()
    # Only the last ones are optional in a type library.
    required = max((i + 1 for i, parameter in enumerate(inputs) if not parameter.omitted), default=0)
    for index, parameter in enumerate(inputs):
        attributes = "in"
        if index >= required:
            attributes += ", optional"
            # The interface compiler cannot write values of other types.
            if parameter.type != "double":
                value = NO_TEXT if parameter.omitted == NO_TEXT else scripts.number(parameter.omitted)
                attributes += f", defaultvalue({value})"
        yield f"[{attributes}] {automation_type(scripts, parameter.value_type)} {parameter.name}"


def method_line(scripts, member, method):
    attributes = [f"id({member.id})"]
    if method.access == "kGet":
        attributes.append("propget")
    elif method.access == "kPut":
        isObject = automation_type(scripts, method.parameters[-1].type).endswith("*")
        attributes.append("propputref" if isObject else "propput")
    if member.name == "_NewEnum":
        attributes.append("restricted")
    attributes.append(help_string(method.declaration))
    return (f"            [{', '.join(attributes)}] {result_type(scripts, method)} "
            f"{member.name}({', '.join(arguments(scripts, method))});")


def dispatch_interfaces(scripts):
    for found in scripts.classes:
        yield f"    [uuid({found.uuid}), {help_string(found.declaration)}]"
        yield f"    dispinterface {found.name}Disp"
        yield from ["    {", "        properties:", "        methods:"]
        for member in scripts.members(found):
            yield from (method_line(scripts, member, method) for method in member.methods.values())
        yield from ["    };", ""]


def events(scripts):
    found = scripts.events
    yield f"    [uuid({uuid_of(found)}), {help_string(found)}]"
    yield from [f"    dispinterface {found.name}", "    {", "        properties:", "        methods:"]
    for event in scripts.added.declarations:
        if event.owner == found.name:
            yield f"            {event.text.replace(']', f', {help_string(event)}]', 1)}"
    yield from ["    };", ""]


def text_of(scripts):
    lines = with_attributes(scripts.contract)
    classes = list(scripts.coclasses.values())
    known = {found.name: found for found in scripts.classes}
    for found in classes:
        if found.name in known:
            opening = found.line
            while "{" not in lines[opening]:
                opening += 1
            first, default = re.match(r"(.*\{)(.*)", lines[opening]).groups()
            listed = f" dispinterface {found.name}Disp;"
            if scripts.raises_events(known[found.name]):
                listed += f" [source] dispinterface {scripts.events.name};"
            if default:
                lines[opening] = first + default.replace(" };", listed + " };")
            else:
                lines[opening + 1] += listed
    above = classes[0].line - len(classes[0].comment)
    return "\n".join([*lines[:above], *dispatch_interfaces(scripts), *events(scripts), *lines[above:], ""])


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    Path(sys.argv[1]).write_text(text_of(ScriptContract()), "utf-8")


if __name__ == "__main__":
    main()
