"""Writes a row of C++ for each declaration of the contract's library, for a test to expand over the C++ header.

    contract_rows.py OUTPUT

IDENTIFIER(IPolygon), SLOT(IPolygon, get_Area), SIZE(SVertice), OFFSET(SVertice, m_dX), VALUE(DrawType, DT_On). Members
of dispatch interfaces, which have no slots, are left out.
"""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "idl"))

from contract import Contract


def rows(contract):
    library = contract.lines.index("library OrlixLib")
    for declaration in contract.declarations:
        if declaration.line < library:
            continue
        if not declaration.owner:
            if declaration.kind == "struct":
                yield f"SIZE({declaration.name})"
            elif declaration.kind != "enum":
                yield f"IDENTIFIER({declaration.name})"
            continue
        row = {"interface": "SLOT", "struct": "OFFSET", "enum": "VALUE"}.get(contract.find("", declaration.owner).kind)
        if row:
            yield f"{row}({declaration.owner}, {declaration.name})"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    Path(sys.argv[1]).write_text("".join(f"{row}\n" for row in rows(Contract())), "utf-8")


if __name__ == "__main__":
    main()
