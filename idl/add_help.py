"""Writes orlix.idl with help strings: the first sentence of each comment.

    add_help.py OUTPUT

For the type library. (The interface compiler takes no help strings for members of enumerations and records. Classes
have their own, which are part of the contract.) Lines keep their numbers.
"""

import re
import sys
from pathlib import Path

from contract import Contract


def with_help(contract):
    lines = list(contract.lines)
    for declaration in contract.declarations:
        if declaration.kind in ("member", "coclass"):
            continue
        text = declaration.brief().replace("\\", "\\\\").replace('"', '\\"')
        attribute = f'helpstring("{text}")'
        line = lines[declaration.line]
        if declaration.kind in ("enum", "struct"):
            line = line.replace("typedef ", f"typedef [{attribute}] ", 1)
        elif line.lstrip().startswith("["):
            line = line.replace("]", f", {attribute}]", 1)
        else:
            line = re.sub(r"^\s*", lambda indent: f"{indent.group()}[{attribute}] ", line, count=1)
        lines[declaration.line] = line
    return lines


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    Path(sys.argv[1]).write_text("\n".join(with_help(Contract())) + "\n", "utf-8")


if __name__ == "__main__":
    main()
