"""The figures of a report, asked from the journal by statements of the test's own."""
from fill import open_database

KINDS = {"Granted": ("00", "01", "02", "03"), "Refused by time": ("20", "21", "22", "23"),
         "Refused by rights": ("24", "25", "26", "27"), "Unknown card": ("10", "11", "12", "13")}
ALL = [code for codes in KINDS.values() for code in codes]


def listed(codes):
    return ", ".join(f"'{code}'" for code in codes)


def outcomes_by(folder, key, since, until):
    """{key: [presentations, granted, by time, by rights, unknown]} of rows from one day up to another."""
    sums = ", ".join(f"sum(TransactionType in ({listed(codes)}))" for codes in KINDS.values())
    rows = open_database(folder + "/Journal.MDB").execute(
        f"select {key}, count(*), {sums} from Journal where TransactionType in ({listed(ALL)}) and "
        "Date >= julianday(?) - 2415018.5 and Date < julianday(?) - 2415018.5 group by 1", (since, until))
    return {row[0]: list(row[1:]) for row in rows}


DAY = "date(Date + 2415018.5)"
HOUR = "cast(strftime('%H', Date + 2415018.5 + 0.3 / 1440) as integer)"
DOOR = "ReaderName"


def unknown_cards(folder, since, until):
    """{code: times}; the controllers spell A to F as the six characters behind 9"""
    letters = str.maketrans(":;<=>?", "ABCDEF")
    return dict((code.translate(letters), times) for code, times in open_database(folder + "/Journal.MDB").execute(
        f"select TransactionData, count(*) from Journal where TransactionType in ({listed(KINDS['Unknown card'])}) and "
        "Date >= julianday(?) - 2415018.5 and Date < julianday(?) - 2415018.5 group by 1", (since, until)))


def people(folder, since, until):
    """{(day, name): (first, last, times)} with times as hh:mm"""
    clock = lambda f: f"strftime('%H:%M', {f}(Date) + 2415018.5 + 0.3 / 1440)"
    return {row[:2]: row[2:] for row in open_database(folder + "/Journal.MDB").execute(
        f"select {DAY}, CardholderName, {clock('min')}, {clock('max')}, count(*) from Journal where "
        f"TransactionType in ({listed(KINDS['Granted'])}) and Date >= julianday(?) - 2415018.5 and "
        "Date < julianday(?) - 2415018.5 group by 1, 2", (since, until))}
