"""Reads interface descriptions: what they declare, and the comment that belongs to each declaration.

A comment belongs to the declarations below it, up to the next comment or empty line, or to the one in front of it on
its line. A comment followed by an empty line belongs to none: it introduces those that come next. The first sentence of
a comment says briefly what the declaration is; it becomes the help string of the type library.
"""

import re
from dataclasses import dataclass, field
from pathlib import Path

IDL = Path(__file__).resolve().parent / "orlix.idl"
LONGEST_BRIEF = 120


class ContractError(Exception):
    pass


@dataclass
class Declaration:
    kind: str  # interface, dispinterface, coclass, enum, struct, method, or member of an enumeration or record
    name: str  # of a method as C++ spells it: get_Width
    owner: str  # the interface, enumeration or record that it belongs to
    line: int  # where it begins, from 0
    comment: list
    introductions: list = field(default_factory=list)  # the comments that introduce what begins here
    text: str = ""  # its code, in one line; of what has members, up to the brace

    def __str__(self):
        return f"{self.owner}::{self.name}" if self.owner else self.name

    def brief(self):
        text = " ".join(line.strip() for line in self.comment)
        found = re.match(r"(.*?[^.]\.)(?=\s|$)", text)
        return found.group(1) if found else text


class Contract:
    def __init__(self, path=IDL):
        self.name = path.name
        self.lines = path.read_text("utf-8").splitlines()
        self.head = []  # the comment at the top of the file
        self.declarations = []
        self._read()
        self._check()
        self._by_name = {(found.owner, found.name): found for found in self.declarations}

    def find(self, owner, name):
        return self._by_name[owner, name]

    def _read(self):
        owner, kind_of_owner = "", ""
        comment, introductions = [], []  # read, and waiting for a declaration
        shared = []  # the comment of the declaration above
        statement, start = "", 0

        for number, line in enumerate(self.lines):
            code, slashes, text = line.partition("//")
            code = code.strip()
            if not code and not statement:
                if slashes:
                    if not re.search("-{20,}", text):
                        comment.append(text.removeprefix(" "))
                    shared = []
                    continue
                if comment and not self.declarations and not self.head:
                    self.head = comment
                elif comment:
                    introductions.append(comment)
                comment, shared = [], []
                continue

            if not statement:
                start = number
            statement = f"{statement} {code}".strip()

            def declare(kind, name, inside=""):
                nonlocal comment, introductions, shared
                shared = [text.strip()] if text.strip() else comment or shared
                self.declarations.append(Declaration(kind, name, inside, start, shared, introductions, statement))
                if kind == "member" or text.strip():
                    shared = []
                comment, introductions = [], []

            if found := re.match(r"(?:\[.*?\] *)?(interface|dispinterface|coclass) (\w+)[^{;]*\{", statement):
                declare(*found.groups())
                if not statement.endswith(";"):
                    kind_of_owner, owner = found.groups()
                    shared = []
            elif found := re.match(r"typedef (enum|struct) (\w+) *\{", statement):
                declare(*found.groups())
                kind_of_owner, owner = found.groups()
                shared = []
            elif statement.startswith("}"):
                if not statement.endswith((";", "}")):
                    continue
                owner = kind_of_owner = ""
                comment, shared = [], []
            elif kind_of_owner in ("enum", "struct"):
                declare("member", re.match(r"(\w+)", statement).group(1) if kind_of_owner == "enum"
                        else re.search(r"(\w+)(?:\[\d+\])?;$", statement).group(1), owner)
            elif kind_of_owner in ("interface", "dispinterface") and statement.endswith(";"):
                attributes, name = re.match(r"(?:\[([^\]]*)\] *)?\w+ (\w+)\(", statement).groups()
                accessor = re.search("propget|propput", attributes or "")
                declare("method", f"{accessor.group()[4:]}_{name}" if accessor else name, owner)
            elif kind_of_owner != "coclass" and not re.search(r"\blibrary \w+ *\{$|[:;)]$", statement):
                continue  # it goes on in the next line
            statement = ""

    def _check(self):
        problems = []
        for declaration in self.declarations:
            place = f"{self.name}:{declaration.line + 1}: {declaration}"
            if declaration.kind == "member":
                continue
            if not declaration.comment:
                problems.append(f"{place} has no comment")
            elif not declaration.brief().endswith(".") or len(declaration.brief()) > LONGEST_BRIEF:
                problems.append(f"{place}: the first sentence ends with a full stop within {LONGEST_BRIEF} characters, "
                                f"not so: {declaration.brief()[:140]}")
        if problems:
            raise ContractError("\n".join(problems))
