#!/usr/bin/python3
"""The same dialogue as a script of fifty lines would hold it: what the station is measured against.

bench/script.py PORT DATABASE LOADS [wal]: fetches so many loads at 9600 baud, each with a durable commit ahead of its
ACK and figures behind it, and prints the seconds that one dialogue took. The commit is sqlite3's own, or, with wal, as
cheap as a durable one can be. Needs python3-serial."""
import sqlite3
import sys
import time

import serial

STX, ETX, EOT, ENQ, ACK = b"\x02", b"\x03", b"\x04", b"\x05", b"\x06"
FRAME = 1 + 55 + 1 + 2


def sealed(text):
    total = sum(text) & 255
    return text + bytes((48 + (total >> 4), 48 + (total & 15)))


def expect(line, wanted):
    got = line.read(len(wanted))
    if got != wanted:
        sys.exit(f"{wanted!r} expected, {got!r} came")


def dialogue(line, base):
    line.write(ENQ + b"A")
    expect(line, ACK + b"A")
    frame = line.read(FRAME)
    if sealed(frame[:-2]) != frame:
        sys.exit(f"a bad frame: {frame!r}")
    base.execute("INSERT INTO load (record) VALUES (?)", (frame[1:56].decode("cp1252"),))
    base.commit()
    line.write(ACK)
    line.write(ENQ + b"8")
    expect(line, ACK + b"8")
    line.write(sealed(STX + b"0" * 24 + ETX))
    expect(line, ACK)
    line.write(EOT)


port, database, loads = sys.argv[1], sys.argv[2], int(sys.argv[3])
base = sqlite3.connect(database)
base.executescript("PRAGMA synchronous = FULL; CREATE TABLE load (record TEXT);")
if sys.argv[4:] == ["wal"]:
    base.execute("PRAGMA journal_mode = WAL")
with serial.Serial(port, 9600, timeout=2) as line:
    start = time.monotonic()
    for _ in range(loads):
        dialogue(line, base)
        line.flush()
    print(f"{(time.monotonic() - start) / loads:.4f}")
