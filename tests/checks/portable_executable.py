"""What the checks need to know about a Windows program, as the tools of its compiler tell it."""

import re
import struct
import subprocess
import tempfile

TOOLS = {32: "i686-w64-mingw32", 64: "x86_64-w64-mingw32"}


class PortableExecutable:
    """imports: names of DLLs; exports: names."""

    def __init__(self, file):
        self.file = file
        command = [f"{TOOLS[64]}-objdump", "-p", file]
        said = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout
        self.bits = {"pei-i386": 32, "pei-x86-64": 64}[re.search(r"file format (\S+)", said).group(1)]
        self.exports = re.findall(r"^\t\[ *\d+\] (\w+)$", said, re.M)
        self.imports = re.findall(r"DLL Name: (\S+)", said)

    def resources(self):
        """{(type, name): bytes}, numbers as int and names as str."""
        found, place = {}, 0
        with tempfile.NamedTemporaryFile() as file:
            subprocess.run([f"{TOOLS[self.bits]}-windres", "-J", "coff", "-O", "res", self.file, file.name], check=True)
            content = file.read()
        while place < len(content):
            size, head_size = struct.unpack_from("<II", content, place)
            key, rest = [], content[place + 8:place + head_size]
            for _ in ("type", "name"):
                number, = struct.unpack_from("<H", rest, 2)
                text = rest.decode("utf-16-le", "replace").partition("\0")[0]
                is_number = rest.startswith(b"\xff\xff")
                key.append(number if is_number else text)
                rest = rest[4 if is_number else 2 * len(text) + 2:]
            found[tuple(key)] = content[place + head_size:place + head_size + size]
            place += (head_size + size + 3) // 4 * 4
        return found
