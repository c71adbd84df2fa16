"""What docs/Doxyfile shows doxygen instead of a header: plain comments as documentation.

    reference_filter.py HEADER

A comment directly above a declaration documents it, one inside a class with an empty line below it documents the
class, and the one at the top of orlix.h is the main page. The text is taken as it is written: no character is a
command, and lines that are indented or set in columns keep their layout.
"""

import re
import sys
from pathlib import Path


def escaped(text):
    # Doxygen leaves what stands between quotation marks alone.
    parts = re.split(r'("[^"]*")', text)
    parts[::2] = [re.sub(r"([\\@<>&#%])", r"\\\1", part).replace("--", "\\--") for part in parts[::2]]
    # A hyphen at the beginning of a line would begin a list.
    return re.sub(r"^(?=\s*-)", "&zwnj;", "".join(parts))


def documentation(lines, opening=""):
    out = [f"/** {opening}"] if opening else ["/**"]
    layout = False
    for line in lines:
        keeps = line.startswith(" ") or bool(re.search(r"\S {3,}\S", line))
        if keeps != layout:
            out.append("<pre>" if keeps else "</pre>")
            layout = keeps
        out.append(escaped(line))
    return out + (["</pre>"] if layout else []) + ["*/"]


def filtered(path):
    out, comment, classes = [], [], []
    main_page = path.name == "orlix.h"
    for line in [*path.read_text("utf-8").splitlines(), ""]:
        if found := re.match(r"\s*//(?: ?)(.*)$", line):
            if not re.search("-{20,}", line):
                comment.append(found.group(1))
            continue
        if comment:
            if line.strip() and not line.startswith("#"):
                out += documentation(comment)
            elif main_page and len(comment) > 1:
                out += documentation(comment, "\\mainpage Orlix\n")
                main_page = False
            elif not line.strip() and classes:
                out += documentation(comment, f"\\{classes[-1]}\n\\details")
            elif line.startswith("#"):
                out += documentation(comment, "\\file\n")
            comment = []
        if found := re.match(r"(MIDL_INTERFACE\(.*\)|class|struct) (\w+)[^;]*\{$", line):
            classes.append(("class " if found.group(1) == "class" else "struct ") + found.group(2))
        elif line.startswith("}") and classes:
            classes.pop()
        # A declaration of a namespace, a member of a class or an enumerator with a comment behind it.
        member = r" {4}" if classes else ""
        if found := re.match(rf"({member}[^\s#}}].*;|\s+\w+,) +// (.*)$", line):
            line = f"{found.group(1)}  /**< {escaped(found.group(2))} */"
        out.append(line)
    return "\n".join(out) + "\n"


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.stdout.write(filtered(Path(sys.argv[1])))
