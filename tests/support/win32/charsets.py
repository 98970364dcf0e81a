#!/usr/bin/env python3
"""Writes what the C runtime of the building system makes of each character of the sets that tests ask for, as tables for support/win32/iconv.h.

Usage: charsets.py OUTPUT
"""

import ctypes
import sys

runtime = ctypes.CDLL(None)
runtime.iconv_open.restype = ctypes.c_void_p
runtime.iconv.argtypes = [ctypes.c_void_p] + [ctypes.c_void_p] * 4
runtime.iconv.restype = ctypes.c_size_t

SINGLE = ["CP862", "CP874", "CP1250", "CP1251", "CP1252"] + [f"ISO8859-{n}" for n in (*range(1, 11), *range(13, 17))]


class Converter:
    def __init__(self, target, source):
        self.handle = runtime.iconv_open(target.encode(), source.encode())
        assert self.handle != ctypes.c_void_p(-1).value, (target, source)

    def __call__(self, data):
        """The text in the other set; nothing if it has none there."""
        source, room = ctypes.create_string_buffer(data, len(data)), ctypes.create_string_buffer(32)
        at, to = ctypes.c_void_p(ctypes.addressof(source)), ctypes.c_void_p(ctypes.addressof(room))
        left, space = ctypes.c_size_t(len(data)), ctypes.c_size_t(len(room))
        runtime.iconv(self.handle, None, None, None, None)
        result = runtime.iconv(self.handle, *map(ctypes.byref, (at, left, to, space)))
        return room.raw[: len(room) - space.value] if result == 0 else None


def rows(name, codes):
    """Pairs of a code and a unit, for both directions."""
    decode, encode = Converter("UTF-16LE", name), Converter(name, "UTF-16LE")
    to_unit = {code: unit for code in codes if (unit := decode(code)) is not None and len(unit) == 2}
    to_code = {unit: code for value in range(0x10000) if (code := encode(unit := value.to_bytes(2, "little"))) is not None}
    return to_unit, to_code


def main():
    sets = [(name, [bytes([b]) for b in range(256)]) for name in SINGLE]
    pairs = [bytes([high, low]) for high in range(0x81, 0xFF) for low in range(256)]
    sets.append(("CP936", [bytes([b]) for b in range(256)] + pairs))
    with open(sys.argv[1], "w", encoding="ascii") as out:
        print("const char* const setNames[] = {", ", ".join(f'"{name}"' for name, _ in sets), "};", file=out)
        print("// set, 1 if from a code to a unit, from, to", file=out)
        print("const std::uint16_t setRows[][4] = {", file=out)
        for number, (name, codes) in enumerate(sets):
            to_unit, to_code = rows(name, codes)
            for code, unit in to_unit.items():
                print(f"{{{number}, 1, {int.from_bytes(code, 'big')}, {int.from_bytes(unit, 'little')}}},", file=out)
            for unit, code in to_code.items():
                print(f"{{{number}, 0, {int.from_bytes(unit, 'little')}, {int.from_bytes(code, 'big')}}},", file=out)
        print("};", file=out)


main()
