#!/usr/bin/env python3
"""Writes the tables of Src/Utils/CharSet from the C library's iconv.

Usage: tools/charset_tables.py FOLDER

Makes Gbk.inc (code page 936, pairs to Unicode) and SingleByte.inc (the sets of one byte, with what the library has differently) in FOLDER. Needs glibc.
"""
import ctypes
import os
import sys

libc = ctypes.CDLL(None, use_errno=True)
libc.iconv_open.restype = ctypes.c_void_p
libc.iconv_open.argtypes = [ctypes.c_char_p, ctypes.c_char_p]
libc.iconv.restype = ctypes.c_size_t
libc.iconv.argtypes = [ctypes.c_void_p] + [ctypes.c_void_p] * 4


class Decoder:
    def __init__(self, charset):
        self.handle = libc.iconv_open(b"UTF-16LE", charset.encode())
        if self.handle == ctypes.c_void_p(-1).value:
            sys.exit(f"iconv does not know {charset}")

    def unit(self, code):
        """The one 16-bit unit that `code` stands for, 0 if it stands for none."""
        libc.iconv(self.handle, None, None, None, None)
        source = ctypes.create_string_buffer(code, len(code))
        target = ctypes.create_string_buffer(8)
        source_at = ctypes.c_char_p(ctypes.addressof(source))
        target_at = ctypes.c_char_p(ctypes.addressof(target))
        source_left = ctypes.c_size_t(len(code))
        target_left = ctypes.c_size_t(8)
        result = libc.iconv(self.handle, ctypes.byref(source_at), ctypes.byref(source_left), ctypes.byref(target_at), ctypes.byref(target_left))
        if result != 0 or source_left.value != 0 or target_left.value != 6:
            return 0
        return int.from_bytes(target.raw[:2], "little")


def rows(units, indent):
    for at in range(0, len(units), 16):
        yield indent + " ".join(f"0x{unit:04X}," for unit in units[at:at + 16])


def gbk():
    decoder = Decoder("CP936")
    lines = []
    pairs = 0
    for lead in range(0x81, 0xFF):
        units = [decoder.unit(bytes([lead, trail])) for trail in range(0x40, 0xFF)]
        pairs += sum(unit != 0 for unit in units)
        lines += [f"    {{  // 0x{lead:02X}"] + list(rows(units, "        ")) + ["    },"]
    head = [f"// Code page 936: {pairs} pairs, by lead byte (0x81 to 0xFE) and trail byte (0x40 to 0xFE). 0: none."]
    return head + lines


def single_byte():
    sets = ["CP862", "CP874", "CP1250", "CP1251"] + [f"ISO8859-{part}" for part in (1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 14, 15, 16)]
    differences = {
        "CP874": {0x80: 0},
        "ISO8859-6": {0x30 + digit: 0x0660 + digit for digit in range(10)},
        "ISO8859-7": {0xA1: 0x02BD, 0xA2: 0x02BC, 0xA4: 0, 0xA5: 0, 0xAA: 0},  # the edition of 1987
    }
    lines = ["// The sets of one byte, in the order of the functions. 0: none."]
    for charset in sets:
        decoder = Decoder(charset)
        units = [0] + [decoder.unit(bytes([byte])) for byte in range(1, 256)]
        for byte, unit in differences.get(charset, {}).items():
            units[byte] = unit
        lines += [f"    {{  // {charset}"] + list(rows(units, "        ")) + ["    },"]
    return lines


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    for name, lines in (("Gbk.inc", gbk()), ("SingleByte.inc", single_byte())):
        with open(os.path.join(sys.argv[1], name), "w", encoding="ascii") as file:
            file.write("// Made by tools/charset_tables.py Src/Utils/CharSet\n" + "\n".join(lines) + "\n")


main()
