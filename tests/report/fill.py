"""An installation for the tests of the report: doors, cards and a month of transactions, with names that are meant to
break a page. Rows are written into the database files directly, so that names are there that no command would take."""
import datetime
import random
import sqlite3
import subprocess

DAYS = 30
END = datetime.date(2026, 11, 30)
LONG = "Verylongdoornamewithoutanyblankinitthatmustbebroken"
DOORS = ["Front door", "<script>alert(1)</script>", "\"Lab\" & 'Store' </title>", LONG,
         "\u05e9\u05e2\u05e8 \u05e8\u05d0\u05e9\u05d9", "Turn\u202eed door", "{{made}}{{{style}}}", "Back door"]
PEOPLE = ["Ada <b>Byron</b>", "O'Brien & \"Sons\"", "\u0645\u062d\u0645\u062f", "A" * 40, "Ben"]
TYPES = ["00"] * 30 + ["20", "24", "24", "10", "30"]


def open_database(path):
    database = sqlite3.connect(path)
    fold = lambda a, b: (a.lower() > b.lower()) - (a.lower() < b.lower())
    database.create_collation("KORVA", fold)
    return database


def moment(day, minute):
    """As the database keeps it: days since 30 December 1899."""
    return (day - datetime.date(1899, 12, 30)).days + minute / 1440


def fill(voxa, folder, transactions):
    """Makes the installation with so many transactions, the same ones each time."""
    call = lambda *words: subprocess.run([voxa, "--dir", folder, *words], check=True, stdout=subprocess.DEVNULL)
    call("init")
    for address, door in enumerate(("Front door", "Back door"), 1):
        call("reader", "add", door, "--station", "Local", "--address", str(address), "--position", "1")
    call("weekly", "add", "Staff", "--days", *(["Always"] * 7), "--holidays", "Always")
    call("group", "add", "Employees")
    call("group", "grant", "Employees", "Front door", "--program", "Staff")
    today = datetime.date.today()
    for number, days in enumerate((-3, 5, 400), 1):
        call("card", "add", f"Person {number}", "--code", f"{number:08}", "--group", "Employees",
             "--until", str(today + datetime.timedelta(days)))
    chance = random.Random(1)
    journal = open_database(folder + "/Journal.MDB")
    rows = []
    for _ in range(transactions):
        day = END - datetime.timedelta(chance.randrange(DAYS + 2))  # some before the time of the report
        minute = min(int(abs(chance.gauss(9.5, 3)) * 60), 1439)
        kind = chance.choice(TYPES)
        person = chance.randrange(len(PEOPLE))
        data = f"00{person + 1:04}00" if kind[0] != "1" else f"0000{chance.randrange(40):04}"
        door = chance.randrange(len(DOORS))
        rows.append((moment(day, minute), 1, "Local", door + 1, DOORS[door], kind,
                     PEOPLE[person] if kind[0] in "02" else None, data))
    journal.executemany("insert into Journal (Date, StationId, StationName, ReaderId, ReaderName, TransactionType, "
                        "CardholderName, TransactionData) values (?, ?, ?, ?, ?, ?, ?, ?)", rows)
    journal.commit()
