"""The recorded trading day: what lies in its files, and how the program is run on it."""

import csv
import gzip
import json
import subprocess
from datetime import datetime, timedelta
from pathlib import Path

FOLDER = "taifex_20210726"
# Local date and opening time of the two sessions, and the weekday as commands count it (0 is Sunday).
SESSIONS = {"day": ("20210726", "084500", 1), "night": ("20210723", "150000", 5)}


def symbol_of(row):
    """The symbol of a row of any of the files."""
    month, _, week = row["expiry"].partition("W")
    if row["product"] == "TXO":
        return f"ND.O.TWF.TX{week}.{month}.{row['right']}.{row['strike']}"
    return f"ND.F.TWF.{row['product'][:1]}X{week}.{month}" if week else f"ND.F.TWF.{row['product']}.{month}"


def rows_of(data, name):
    path = Path(data) / FOLDER / name
    with gzip.open(path, "rt") if path.suffix == ".gz" else open(path, newline="") as file:
        yield from csv.DictReader(file)


def import_session(program, data, session, day):
    source = Path(data) / FOLDER
    subprocess.run([program, "import", "taifex", "--options", source / f"txo_trades_{session}.csv.gz",
                    "--futures", source / "tx_trades.csv.gz", "--series", source / "txo_delta_eod.csv",
                    "--session", session, "--out", day], check=True, timeout=300, stdout=subprocess.DEVNULL)


def command(session, chain, right, *, run=0, price=5, cash=100000):
    """A strategy over all strikes of a chain that takes what opens from 1 to 50."""
    _, opens, weekday = SESSIONS[session]
    return {"StrategyType": "OpenLottery", "StrategyID": "REAL", "StrategySN": "1", "Action": 1,
            "BrokerID": "B1", "Account": "A1", "ProcessID": "1",
            "Symbol": {"Security": chain, "CP": right},
            "Start": {"Time": int(opens[:4]), "Run": run, "DayOfWeek": [weekday]},
            "Stop": {"Enable": 0, "Time": 1350 if session == "day" else 510, "Cancel": 0, "ClosePos": 0},
            "Cash": cash,
            "Condition": {"OpenPrice": {"Dn": 1, "Up": 50}, "StrikePrice": {"In": -1, "Out": -1}},
            "OrderPrice": {"Type": 0, "Price": price}}


def replay(program, day, order, folder, at=""):
    """The trace of a day with one command, which comes at the beginning or at a time "HH:MM"."""
    command_file, trace = Path(folder) / "command.json", Path(folder) / "trace.jsonl"
    command_file.write_text(json.dumps(order))
    subprocess.run([program, "replay", day, "--command", f"{command_file}{'@' + at if at else ''}", "--trace", trace],
                   check=True, timeout=300, stdout=subprocess.DEVNULL)
    with open(trace) as file:
        return [json.loads(line) for line in file]


def milliseconds(text, midnight):
    return round((datetime.fromisoformat(text) - midnight) / timedelta(milliseconds=1))


class Day:
    """A session as the program plays it, and its tape."""

    def __init__(self, program, data, session, folder):
        self.path = Path(folder) / f"{session}.day.jsonl"
        import_session(program, data, session, self.path)
        self.lines = self.path.read_text().splitlines()
        self.head = json.loads(self.lines[0])["day"]
        self.start = datetime.fromisoformat(self.head["start"])
        self.midnight = self.start.replace(hour=0, minute=0, second=0)
        self.end = milliseconds(self.head["end"], self.midnight)
        opens = SESSIONS[session][1]
        self.opens = milliseconds(self.start.replace(hour=int(opens[:2]), minute=int(opens[2:4])).isoformat(), self.midnight)
        with open(self.path.with_name(f"{session}.ticks.csv"), newline="") as file:
            self.tape = list(self.read(csv.DictReader(file)))

    def read(self, rows):
        moment, last = "", None
        for row in rows:
            if len(row["at"]) > 8:
                last = milliseconds(row["at"], self.midnight)
            elif row["at"] != moment:
                hours, minutes, seconds = row["at"].split(":")
                last = ((int(hours) * 60 + int(minutes)) * 60 + float(seconds)) * 1000 + (last or 0) // 86400000 * 86400000
            moment = row["at"]
            price = round(float(row["price"]) * 10**10)
            yield int(last), row["symbol"], price, int(row["qty"]), int(row["volume"])

    def replay(self, program, more, folder, **head):
        """The trace of the day with more lines, and with more in its head."""
        day, trace = self.path.with_name("run.day.jsonl"), Path(folder) / "trace.jsonl"
        lines = [json.dumps({"day": {**self.head, **head}})] + self.lines[1:] + [json.dumps(line) for line in more]
        day.write_text("\n".join(lines) + "\n")
        subprocess.run([program, "replay", day, "--trace", trace], check=True, timeout=300, stdout=subprocess.DEVNULL)
        with open(trace) as file:
            return [json.loads(line) for line in file]
