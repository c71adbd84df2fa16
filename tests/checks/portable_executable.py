"""Reads what the checks need to know about a Windows DLL."""

import struct


class PortableExecutable:
    """imports: names of DLLs; exports: names; resources: {(type, name): bytes}, numbers as int and names as str."""

    def __init__(self, file):
        self.data = data = file.read_bytes()
        header = self.number("<I", 0x3C)
        if data[:2] != b"MZ" or data[header:header + 4] != b"PE\0\0":
            raise ValueError(f"{file} is not a Windows program")
        sections, optional_size = self.number("<H", header + 6), self.number("<H", header + 20)
        optional = header + 24
        self.bits = {0x10B: 32, 0x20B: 64}[self.number("<H", optional)]
        directories = optional + (96 if self.bits == 32 else 112)
        # (address, size in the file, place in the file)
        table = optional + optional_size + 12
        self.sections = [struct.unpack_from("<III", data, table + 40 * i) for i in range(sections)]
        exports, imports, resources = (self.number("<I", directories + 8 * i) for i in range(3))
        self.exports = self.read_exports(exports) if exports else []
        self.imports = self.read_imports(imports) if imports else []
        self.resources = {}
        if resources:
            root = self.place(resources)
            for kind, table in self.entries(root, root):
                for name, languages in self.entries(root, table):
                    for _, leaf in self.entries(root, languages):
                        address, size = struct.unpack_from("<II", data, leaf)
                        start = self.place(address)
                        self.resources[kind, name] = data[start:start + size]

    def number(self, form, place):
        return struct.unpack_from(form, self.data, place)[0]

    def place(self, address):
        for start, size, in_file in self.sections:
            if start <= address < start + size:
                return address - start + in_file
        raise ValueError(f"address {address:#x} is in no section")

    def text(self, address):
        start = self.place(address)
        return self.data[start:self.data.index(b"\0", start)].decode("ascii")

    def read_exports(self, address):
        count, _, names = struct.unpack_from("<III", self.data, self.place(address) + 24)
        table = self.place(names)
        return [self.text(self.number("<I", table + 4 * i)) for i in range(count)]

    def read_imports(self, address):
        found = []
        place = self.place(address)
        while name := self.number("<I", place + 12):
            found.append(self.text(name))
            place += 20
        return found

    def entries(self, root, table):
        """(number or name, place of what it stands for) of each entry of a resource table."""
        named, numbered = struct.unpack_from("<HH", self.data, table + 12)
        for i in range(named + numbered):
            name, offset = struct.unpack_from("<II", self.data, table + 16 + 8 * i)
            if name & 0x80000000:
                start = root + (name & 0x7FFFFFFF)
                length = self.number("<H", start)
                name = self.data[start + 2:start + 2 + 2 * length].decode("utf-16-le")
            yield name, root + (offset & 0x7FFFFFFF)
