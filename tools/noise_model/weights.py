#!/usr/bin/env python3
"""Reads and writes the audio noise library's model files.

A weight file is a list of records, each a key with one of the seven kinds of value in `Kind`. In
Python it is a dict from key to `Record`, in file order:

    records = {
        "Version": Record(Kind.STRING, "0.0.5"),
        "SampleRate": Record(Kind.INT, 16000),
        "MU": Record(Kind.VECTOR, mean),
        "WeightLinear": Record(Kind.MATRICES, [first, second]),
    }
    write_weights("model.nmw", records)         # ".nmw" is plain, ".tw" is enciphered
    records = read_weights("model.tw")
    blob = encode_records(records)              # the record stream alone, as bytes
    records = decode_records(blob)

`encode_records` also takes (key, Record) pairs, since a file may hold a key more than once; the
library keeps the first. Vectors and matrices come back as float32 arrays.

A control file (".cfg") names a weight file under the key "WEIGHT" and adds settings, one key and
value a line; `read_control` and `write_control` hold it as a list of (key, value) pairs.

On the command line:

    weights.py show FILE                 the records, or the pairs of a ".cfg"
    weights.py encipher IN.nmw OUT.tw
    weights.py decipher IN.tw OUT.nmw

Errors are `ModelFileError`. Unlike the library, which takes a cut-off file for a short one, the
readers here refuse whatever isn't whole.
"""

import argparse
import re
import struct
import sys
from collections.abc import Iterable, Mapping
from enum import IntEnum
from pathlib import Path
from typing import NamedTuple

import numpy as np


class ModelFileError(Exception):
    """A file or a record that isn't what the format asks for."""


class Kind(IntEnum):
    """The kinds of value, with the numbers that stand in the file."""

    FLOAT = 0  # one 32-bit float
    INT = 1  # one signed 32-bit integer
    STRING = 2  # bytes, UTF-8 by convention
    VECTOR = 3  # one-dimensional float32 array
    MATRIX = 4  # two-dimensional float32 array, row by row
    VECTORS = 5  # list of VECTOR
    MATRICES = 6  # list of MATRIX


class Record(NamedTuple):
    kind: Kind
    value: float | int | str | np.ndarray | list


LIST_ELEMENT = {Kind.VECTORS: Kind.VECTOR, Kind.MATRICES: Kind.MATRIX}


def _encode_bytes(text: str) -> bytes:
    raw = text.encode("utf-8", "surrogateescape")
    return struct.pack("<I", len(raw)) + raw


def _encode_value(kind: Kind, value) -> bytes:
    if kind is Kind.FLOAT:
        return struct.pack("<f", value)
    if kind is Kind.INT:
        return struct.pack("<i", value)
    if kind is Kind.STRING:
        return _encode_bytes(value)
    if kind in LIST_ELEMENT:
        return struct.pack("<I", len(value)) + b"".join(_encode_value(LIST_ELEMENT[kind], v) for v in value)
    array = np.asarray(value, dtype="<f4")
    if array.ndim != (1 if kind is Kind.VECTOR else 2):
        raise ModelFileError(f"a {kind.name} can't have {array.ndim} dimensions")
    return struct.pack(f"<{array.ndim}I", *array.shape) + array.tobytes()


def encode_records(records: Mapping[str, Record] | Iterable[tuple[str, Record]]) -> bytes:
    """The record stream of a weight file."""
    stream = bytearray()
    for key, (kind, value) in records.items() if isinstance(records, Mapping) else records:
        try:
            stream += _encode_bytes(key) + struct.pack("<i", kind) + _encode_value(Kind(kind), value)
        except (struct.error, TypeError, ValueError, AttributeError) as error:
            raise ModelFileError(f"record {key!r}: {error}") from error
    return bytes(stream)


class _Reader:
    def __init__(self, data: bytes):
        self.data, self.at = data, 0

    def take(self, count: int) -> bytes:
        if count > len(self.data) - self.at:
            raise ModelFileError(f"{count} bytes needed at {self.at}, {len(self.data) - self.at} left")
        self.at += count
        return self.data[self.at - count : self.at]

    def unpack(self, layout: str):
        return struct.unpack("<" + layout, self.take(struct.calcsize("<" + layout)))

    def text(self) -> str:
        return self.take(*self.unpack("I")).decode("utf-8", "surrogateescape")

    def value(self, kind: Kind):
        if kind is Kind.FLOAT:
            return self.unpack("f")[0]
        if kind is Kind.INT:
            return self.unpack("i")[0]
        if kind is Kind.STRING:
            return self.text()
        if kind in LIST_ELEMENT:
            return [self.value(LIST_ELEMENT[kind]) for _ in range(*self.unpack("I"))]
        shape = self.unpack("I" if kind is Kind.VECTOR else "II")
        count = 1
        for side in shape:
            count *= side
        # A copy, so that the array can be written to and doesn't keep the whole file alive.
        return np.frombuffer(self.take(4 * count), "<f4").reshape(shape).astype(np.float32)


def decode_records(stream: bytes) -> dict[str, Record]:
    """The records of a stream; of a repeated key the first, as in the library."""
    reader, records = _Reader(stream), {}
    while reader.at < len(stream):
        start, key = reader.at, None
        try:
            key = reader.text()
            (number,) = reader.unpack("i")
            kind = Kind(number)
            records.setdefault(key, Record(kind, reader.value(kind)))
        except (ModelFileError, ValueError) as error:
            raise ModelFileError(f"record {key!r} at byte {start}: {error}") from error
    return records


MAGIC = b"TMW\0"
HEADER = 16  # magic and 12 bytes that no reader looks at
INNER_HEADER = 16  # 4 unused bytes, the padding as 32 bits, 8 unused bytes
KEY_FILE = Path(__file__).resolve().parents[2] / "noise_library/src/utils/tea_key.inc"
DELTA = 0x9E3779B9
ROUNDS = 32


def _key() -> list[np.uint32]:
    try:
        words = re.findall(r"0x[0-9a-fA-F]{8}\b", KEY_FILE.read_text())
    except OSError as error:
        raise ModelFileError(f"the cipher's key can't be read: {error}") from error
    if len(words) != 4:
        raise ModelFileError(f"{KEY_FILE} must hold four 32-bit words")
    return [np.uint32(int(word, 16)) for word in words]


def _mix(half: np.ndarray, key_a: np.uint32, key_b: np.uint32, total: int) -> np.ndarray:
    return ((half << np.uint32(4)) + key_a) ^ (half + np.uint32(total)) ^ ((half >> np.uint32(5)) + key_b)


def _tea(block: bytes, inverse: bool) -> bytes:
    """The Tiny Encryption Algorithm of Wheeler and Needham (1994), over all 64-bit blocks at once."""
    if len(block) % 8:
        raise ModelFileError(f"an enciphered block has a multiple of 8 bytes, not {len(block)}")
    k0, k1, k2, k3 = _key()
    words = np.frombuffer(block, "<u4").astype(np.uint32)
    left, right = words[0::2].copy(), words[1::2].copy()
    totals = [DELTA * (i + 1) & 0xFFFFFFFF for i in range(ROUNDS)]
    if inverse:
        for total in reversed(totals):
            right -= _mix(left, k2, k3, total)
            left -= _mix(right, k0, k1, total)
    else:
        for total in totals:
            left += _mix(right, k0, k1, total)
            right += _mix(left, k2, k3, total)
    words[0::2], words[1::2] = left, right
    return words.astype("<u4").tobytes()


def encipher(stream: bytes) -> bytes:
    """The content of a ".tw" file that holds this record stream."""
    padding = -len(stream) % 8
    inner = struct.pack("<4xI8x", padding) + stream + bytes(padding)
    return MAGIC.ljust(HEADER, b"\0") + _tea(inner, inverse=False)


def decipher(content: bytes) -> bytes:
    """The record stream of a ".tw" file's content."""
    if len(content) < HEADER + INNER_HEADER or content[:4] != MAGIC:
        raise ModelFileError("not an enciphered weight file")
    inner = _tea(content[HEADER:], inverse=True)
    (padding,) = struct.unpack_from("<I", inner, 4)
    if padding > len(inner) - INNER_HEADER:
        raise ModelFileError("the padding is longer than the file: damaged, or enciphered with another key")
    return inner[INNER_HEADER : len(inner) - padding]


def _enciphered(path: Path) -> bool:
    if path.suffix not in (".tw", ".nmw"):
        raise ModelFileError(f"{path}: a weight file ends in .tw or .nmw")
    return path.suffix == ".tw"


def _read(path: Path) -> bytes:
    try:
        return path.read_bytes()
    except OSError as error:
        raise ModelFileError(str(error)) from error


def _write(path: Path, content: bytes) -> None:
    try:
        path.write_bytes(content)
    except OSError as error:
        raise ModelFileError(str(error)) from error


def read_stream(path: str | Path) -> bytes:
    """The record stream of a weight file; the extension tells the form."""
    path = Path(path)
    enciphered = _enciphered(path)
    content = _read(path)
    return decipher(content) if enciphered else content


def write_stream(path: str | Path, stream: bytes) -> None:
    path = Path(path)
    _write(path, encipher(stream) if _enciphered(path) else stream)


def read_weights(path: str | Path) -> dict[str, Record]:
    return decode_records(read_stream(path))


def write_weights(path: str | Path, records: Mapping[str, Record] | Iterable[tuple[str, Record]]) -> None:
    write_stream(path, encode_records(records))


BLANKS = " \t\n\v\f\r"


def read_control(path: str | Path) -> list[tuple[str, str]]:
    """The (key, value) pairs of a control file, in order, without comments and blank lines."""
    pairs = []
    text = _read(Path(path)).decode("utf-8", "surrogateescape")
    for number, line in enumerate(text.split("\n"), 1):
        if line.startswith("#") or not line.strip(BLANKS):
            continue
        match = re.fullmatch(r"(\S+)\s+(\S.*)", line.strip(BLANKS), re.ASCII)
        if not match:
            raise ModelFileError(f"{path}:{number}: a key and a value are needed")
        pairs.append(match.groups())
    return pairs


def write_control(path: str | Path, pairs: Iterable[tuple[str, str]]) -> None:
    lines = []
    for key, value in pairs:
        line = f"{key} {value}"
        sound = not re.search(r"\s", key) and key[:1] not in ("", "#") and value.strip(BLANKS) == value != ""
        if not sound or "\n" in line:
            raise ModelFileError(f"not a key and a value of one line: {key!r} {value!r}")
        lines.append(line + "\n")
    _write(Path(path), "".join(lines).encode("utf-8", "surrogateescape"))


def _describe(record: Record) -> str:
    kind, value = record
    if kind in (Kind.FLOAT, Kind.INT, Kind.STRING):
        return f"{value:.9g}" if kind is Kind.FLOAT else str(value)
    if kind in LIST_ELEMENT:
        return ", ".join(" x ".join(map(str, v.shape)) for v in value) or "empty"
    spread = f", {value.min():.6g} to {value.max():.6g}" if value.size else ""
    return " x ".join(map(str, value.shape)) + spread


def _show(path: Path) -> None:
    if path.suffix == ".cfg":
        for key, value in read_control(path):
            print(f"{key} {value}")
        return
    for key, record in read_weights(path).items():
        print(f"{key:28} {record.kind.name:9} {_describe(record)}")


def _convert(source: Path, target: Path, expected: tuple[str, str]) -> None:
    if (source.suffix, target.suffix) != expected:
        raise ModelFileError(f"this goes from {expected[0]} to {expected[1]}")
    stream = read_stream(source)
    decode_records(stream)
    write_stream(target, stream)


def main() -> int:
    parser = argparse.ArgumentParser(description="Shows and converts model files of the audio noise library.")
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("show", help="list what a file holds").add_argument("file", type=Path)
    for name, forms in (("encipher", (".nmw", ".tw")), ("decipher", (".tw", ".nmw"))):
        command = commands.add_parser(name, help=f"write a {forms[0]} file as {forms[1]}")
        command.add_argument("source", type=Path)
        command.add_argument("target", type=Path)
        command.set_defaults(forms=forms)
    arguments = parser.parse_args()
    try:
        if arguments.command == "show":
            _show(arguments.file)
        else:
            _convert(arguments.source, arguments.target, arguments.forms)
    except ModelFileError as error:
        print(error, file=sys.stderr)
        return 1
    except BrokenPipeError:
        return 0
    return 0


if __name__ == "__main__":
    sys.exit(main())
