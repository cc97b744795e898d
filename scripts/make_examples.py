#!/usr/bin/env python3
"""Writes the example library of examples/: the model files, the table examples.tsv that the
workbench's Examples menu and browser and `ovaro-cli examples` read, and the library's README.

The models are defined as plain data (scripts/example_models.py) and written field by field in
the order of the model file, independently of the C++ writer, so that the reader's tests on these
files check the reader against a second account of the format. Run from the project root:

    python3 scripts/make_examples.py
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import example_models  # noqa: E402

HEADER = dict(version="321", maxLead="0", iterlim="20", tolerance="1.0E-06",
              policy="406", option450="450", option452="453", source="455", reserved="0",
              display=["0", "0", "0", "1", "0", "0", "0"])

STOCH_WORDS = {"1720": ["1", "0", "0", "0"], "1722": ["0", "1", "0", "0"],
               "1724": ["0", "0", "1", "0"], "1728": ["0", "0", "0", "1"]}

# The cascades of the Examples menu, in menu order, and the table's columns.
CASCADES = ("author", "country", "form", "stochastic", "subject")
TABLE_HEADER = ["id", "file", "description", "author", "country", "functional form",
                "stochastic terms", "subject"]


def fields(m):
    forms = m["forms"]
    system = forms.get("system", "402")
    forward = forms.get("forward", "404")
    lead = int(m.get("maxLead", HEADER["maxLead"]))
    f = [HEADER["version"], m["acronym"], m["name"]]
    f += [m["n"], m["m"], m["l"], m["initial"], m["terminal"], m.get("maxLead", HEADER["maxLead"]),
          m.get("iterlim", HEADER["iterlim"]), m.get("tolerance", HEADER["tolerance"]),
          m.get("np", "0"), m.get("nmc", "0"), m.get("ny", "0")]
    f += [forms["criterion"], system, forward, forms.get("policy", HEADER["policy"]), forms["z"],
          forms["w"], forms["lambda"], forms["xdes"], forms["udes"]]
    f += STOCH_WORDS[m["stoch"]]
    f += [HEADER["option450"], HEADER["option452"], m.get("source", HEADER["source"]),
          HEADER["reserved"]]
    f += m.get("switches", ["0"] * 6)
    f += HEADER["display"]
    for kind in ("states", "controls", "exogenous"):
        f += [a for a, _ in m[kind]] + [pad(n) for _, n in m[kind]]
    f += m["periods"]
    f += [a for a, _ in m.get("parameters", [])] + [pad(n) for _, n in m.get("parameters", [])]
    f += [a for a, _ in m.get("observations", [])] + \
         [pad(n) for _, n in m.get("observations", [])]
    if system == "402":
        names = ["A", "B", "C"] + (["D1", "D2", "D3"][:lead] if forward == "405" else [])
    else:
        names = ["A0", "A1", "B1", "C1"] + \
                (["DHAT1", "DHAT2", "DHAT3"][:lead] if forward == "405" else [])
    for name in names:
        f += cells(m[name])
    f += cells(m["Z"] if forms["z"] == "410" else m["ZT"])
    f += cells(m["X0"])
    if forms["w"] in ("412", "413"):
        f += cells(m["W"])
    if forms["w"] == "413":
        f += cells(m["WN"])
    if forms["w"] == "414":
        f += cells(m["WT"])
    f += cells(m["LAMBDA"] if forms["lambda"] == "415" else m["LAMBDAT"])
    f += cells(m["XDES"] if forms["xdes"] == "417" else m["XDEST"])
    f += cells(m["UDES"] if forms["udes"] == "420" else m["UDEST"])
    if m["stoch"] in ("1722", "1724", "1728"):
        f += cells(m["Q"]) + cells(m["XSIS"])
    if m["stoch"] in ("1724", "1728"):
        f += cells(m["TH0"]) + cells(m["TH0DIFF"]) + cells(m["SITT0"]) + cells(m["ITHN"])
    if m["stoch"] == "1728":
        for name in ("D", "H", "SIXX0", "SITX0", "R", "GAM", "ZETAS", "ETAS", "TH0DEV", "X0DEV"):
            f += cells(m[name])
    f += cells(m["G"]) + cells(m["g"])
    if forms.get("policy") == "407":
        f += cells(m["N"])
    f.append(m["description"])
    return f


def pad(name):
    return name.ljust(48)


def cells(rows):
    return [c for row in rows for c in row]


def check(m):
    """The shapes the reader expects, so that a slip in the data is caught here, not by a
    reader that would silently take the wrong cells."""
    n, k, l, nt = int(m["n"]), int(m["m"]), int(m["l"]), \
        int(m["terminal"]) - int(m["initial"]) + 1
    npar, ny = int(m.get("np", "0")), int(m.get("ny", "0"))
    forms = m["forms"]
    shapes = {"A": (n, n), "B": (n, k), "C": (n, l), "D1": (n, n), "D2": (n, n), "D3": (n, n),
              "A0": (n, n), "A1": (n, n), "B1": (n, k), "C1": (n, l), "DHAT1": (n, n),
              "DHAT2": (n, n), "DHAT3": (n, n), "Z": (l, 1), "ZT": (l, nt - 1), "X0": (n, 1),
              "W": (n, 1), "WN": (n, 1), "WT": (n, nt), "LAMBDA": (k, 1), "LAMBDAT": (k, nt - 1),
              "XDES": (n, 1), "XDEST": (n, nt), "UDES": (k, 1), "UDEST": (k, nt - 1),
              "Q": (n, n), "XSIS": (n, nt - 1), "TH0": (npar, 1), "TH0DIFF": (npar, 1),
              "SITT0": (npar, npar), "ITHN": (npar, 3), "D": (npar, npar), "H": (ny, n),
              "SIXX0": (n, n), "SITX0": (npar, n), "R": (ny, ny), "GAM": (npar, npar),
              "ZETAS": (ny, nt - 1), "ETAS": (npar, nt - 1), "TH0DEV": (npar, 1),
              "X0DEV": (n, 1), "G": (k, n), "g": (k, 1), "N": (npar, k)}
    for name, (rows, cols) in shapes.items():
        if name in m:
            got = (len(m[name]), len(m[name][0]) if m[name] else cols)
            assert got == (rows, cols), f"{m['acronym']}: {name} is {got}, not {(rows, cols)}"
            assert all(len(r) == cols for r in m[name]), f"{m['acronym']}: ragged {name}"
            assert all(len(c) <= 15 for r in m[name] for c in r), f"{m['acronym']}: {name}"
    assert len(m["periods"]) == nt, m["acronym"]
    for kind, count in (("states", n), ("controls", k), ("exogenous", l),
                        ("parameters", npar), ("observations", ny)):
        labels = m.get(kind, [])
        assert len(labels) == count, f"{m['acronym']}: {kind}"
        assert all(len(a) <= 8 and len(nm) <= 48 for a, nm in labels), f"{m['acronym']}: {kind}"
    assert all(len(p) <= 8 for p in m["periods"]), m["acronym"]
    assert len(m["acronym"]) <= 8 and len(m["name"]) <= 48, m["acronym"]
    assert len(m["description"]) < 32000
    if forms.get("forward") == "405":
        assert m.get("maxLead") in ("1", "2", "3"), m["acronym"]


def write(path, m):
    check(m)
    values = fields(m)
    assert all("~" not in x for x in values)
    with open(path, "w", encoding="latin-1", newline="") as out:
        out.write("".join(x + "~" for x in values))


def table_row(row):
    values = [str(row["id"]), row["stem"] + ".ovi", row["stem"] + " - " + row["title"]] + \
             [row[c] for c in CASCADES]
    assert all("\t" not in v and "\n" not in v and v for v in values), row["stem"]
    return "\t".join(values)


def write_table(path, rows):
    with open(path, "w", encoding="utf-8", newline="\n") as out:
        out.write("# The example library: one row per example, tab-separated, written by\n"
                  "# scripts/make_examples.py. The Examples menu lists each example under its\n"
                  "# entry in each of the last five columns.\n")
        out.write("\t".join(TABLE_HEADER) + "\n")
        for row in rows:
            out.write(table_row(row) + "\n")


def write_readme(path, rows):
    lines = ["# Example models", "",
             "Our own models, written by `scripts/make_examples.py` (run it from the project root",
             "to write them again), from textbook structures with our own numbers. The table",
             "`examples.tsv` names them for the workbench's File: Examples menu, its example",
             "browser and `ovaro-cli examples`; the ids are those of their menu entries. Each",
             "model's description (Specification: Description) explains its economics.", "",
             "| Id | File | Description | Stochastic terms | Subject |", "|---|---|---|---|---|"]
    for row in rows:
        lines.append(f"| {row['id']} | `{row['stem']}.ovi` | {row['stem']} - {row['title']} | "
                     f"{row['stochastic']} | {row['subject']} |")
    with open(path, "w", encoding="utf-8", newline="\n") as out:
        out.write("\n".join(lines) + "\n")


def main():
    here = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "examples")
    rows = example_models.library()
    ids = [r["id"] for r in rows]
    assert len(rows) == 50 and len(set(ids)) == 50, len(rows)
    assert all(3600 <= i <= 3836 and i % 4 == 0 for i in ids)
    assert len({r["stem"] for r in rows}) == 50
    for row in rows:
        write(os.path.join(here, row["stem"] + ".ovi"), row["model"])
    write_table(os.path.join(here, "examples.tsv"), rows)
    write_readme(os.path.join(here, "README.md"), rows)


if __name__ == "__main__":
    main()
