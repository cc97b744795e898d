#!/usr/bin/env python3
"""Writes the example models of examples/ as version 321 model files.

The models are defined here as plain data and written field by field in the order of the model
file, independently of the C++ writer, so that the reader's tests on these files check the reader
against a second account of the format. Run from the project root:

    python3 scripts/make_examples.py
"""

import os

HEADER = dict(version="321", maxLead="0", iterlim="20", tolerance="1.0E-06",
              policy="406", option450="450", option452="453", source="455", reserved="0",
              display=["0", "0", "0", "1", "0", "0", "0"])

STOCH_WORDS = {"1720": ["1", "0", "0", "0"], "1722": ["0", "1", "0", "0"],
               "1724": ["0", "0", "1", "0"], "1728": ["0", "0", "0", "1"]}


def fields(m):
    f = [HEADER["version"], m["acronym"], m["name"]]
    f += [m["n"], m["m"], m["l"], m["initial"], m["terminal"], HEADER["maxLead"],
          HEADER["iterlim"], HEADER["tolerance"], m.get("np", "0"), m.get("nmc", "0"),
          m.get("ny", "0")]
    forms = m["forms"]
    f += [forms["criterion"], "402", "404", HEADER["policy"], forms["z"], forms["w"],
          forms["lambda"], forms["xdes"], forms["udes"]]
    f += STOCH_WORDS[m["stoch"]]
    f += [HEADER["option450"], HEADER["option452"], HEADER["source"], HEADER["reserved"]]
    f += m.get("switches", ["0"] * 6)
    f += HEADER["display"]
    for kind in ("states", "controls", "exogenous"):
        f += [a for a, _ in m[kind]] + [pad(n) for _, n in m[kind]]
    f += m["periods"]
    f += [a for a, _ in m.get("parameters", [])] + [pad(n) for _, n in m.get("parameters", [])]
    f += [a for a, _ in m.get("observations", [])] + \
         [pad(n) for _, n in m.get("observations", [])]
    # System equations (regular form, no forward variables).
    for name in ("A", "B", "C"):
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
    f += cells(m["G"]) + cells(m["g"])
    f.append(m["description"])
    return f


def pad(name):
    return name.ljust(48)


def cells(rows):
    return [c for row in rows for c in row]


def write(path, m):
    text = "".join(x + "~" for x in fields(m))
    assert all("~" not in x for x in fields(m))
    with open(path, "w", encoding="latin-1", newline="") as out:
        out.write(text)


TRACK1 = dict(
    acronym="TRACK1", name="One-state output-gap tracking",
    n="1", m="1", l="1", initial="2027", terminal="2036", stoch="1720",
    forms=dict(criterion="400", z="410", w="412", **{"lambda": "415"}, xdes="417", udes="420"),
    states=[("YGAP", "Output gap, percent of potential")],
    controls=[("GSPEND", "Government spending, deviation from plan")],
    exogenous=[("EXPORTS", "Export demand impulse")],
    periods=[str(y) for y in range(2027, 2037)],
    A=[["0.8"]], B=[["0.5"]], C=[["0.3"]], Z=[["1.0"]], X0=[["-2.0"]],
    W=[["1.0"]], LAMBDA=[["0.5"]], XDES=[["0"]], UDES=[["0"]],
    G=[["-0.6"]], g=[["0"]],
    description=(
        "A one-sector economy whose output gap closes by a fifth each year on its own.\r\n"
        "Government spending moves the gap by half its size; export demand adds 0.3 points\r\n"
        "every year. The planner weighs the squared gap against half the squared spending\r\n"
        "deviation, over ten years that start from a gap of -2 percent."),
)

INFL2 = dict(
    acronym="INFL2", name="Inflation and output with moving targets",
    n="2", m="2", l="1", initial="1", terminal="8", stoch="1720",
    forms=dict(criterion="400", z="411", w="413", **{"lambda": "415"}, xdes="418", udes="421"),
    states=[("INFL", "Inflation, percent a year"), ("YGAP", "Output gap, percent")],
    controls=[("RATE", "Policy interest rate, percent"), ("FISC", "Fiscal impulse, percent")],
    exogenous=[("OILP", "Oil price shock")],
    periods=["Q1", "Q2", "Q3", "Q4", "Q5", "Q6", "Q7", "Q8"],
    A=[["0.7", "0.3"], ["-0.1", "0.8"]],
    B=[["-0.2", "0.1"], ["-0.4", "0.5"]],
    C=[["0.2"], ["-0.1"]],
    ZT=[["1.0", "1.2", "1.1", "0.9", "0.8", "0.8", "0.8"]],
    X0=[["4.5"], ["-1.0"]],
    W=[["1.0"], ["0.5"]], WN=[["4.0"], ["2.0"]],
    LAMBDA=[["0.2"], ["0.8"]],
    XDEST=[["4.0", "3.7", "3.4", "3.1", "2.8", "2.5", "2.2", "2.0"],
           ["0", "0", "0", "0", "0", "0", "0", "0"]],
    UDEST=[["4.0", "3.8", "3.6", "3.4", "3.2", "3.0", "3.0"],
           ["0", "0", "0", "0", "0", "0", "0"]],
    G=[["0.5", "0.2"], ["0", "-0.3"]], g=[["0"], ["0"]],
    description=(
        "Inflation starts at 4.5 percent and the target path brings it down to 2 percent\r\n"
        "over eight quarters while the output gap is to be closed. The interest rate and\r\n"
        "a fiscal impulse are the instruments; an oil price path pushes inflation up.\r\n"
        "The terminal quarter weighs the states four times as much."),
)

LEARN1 = dict(
    acronym="LEARN1", name="Uncertain policy multiplier",
    n="1", m="1", l="1", initial="1", terminal="6", np="1", nmc="20", stoch="1724",
    switches=["1", "0", "0", "1", "0", "0"],
    forms=dict(criterion="400", z="410", w="412", **{"lambda": "415"}, xdes="417", udes="420"),
    states=[("YGAP", "Output gap, percent")],
    controls=[("GSPEND", "Government spending, deviation")],
    exogenous=[("CONST", "Constant term")],
    periods=["T1", "T2", "T3", "T4", "T5", "T6"],
    parameters=[("BMULT", "Spending multiplier")],
    A=[["0.9"]], B=[["0.5"]], C=[["1.0"]], Z=[["0.1"]], X0=[["-1.5"]],
    W=[["1.0"]], LAMBDA=[["0.1"]], XDES=[["0"]], UDES=[["0"]],
    Q=[["0.01"]], XSIS=[["0", "0", "0", "0", "0"]],
    TH0=[["0.5"]], TH0DIFF=[["0.4"]], SITT0=[["0.04"]], ITHN=[["1", "1", "1"]],
    G=[["-0.9"]], g=[["0"]],
    description=(
        "The spending multiplier B(1,1) is not known: the policy maker believes it is 0.5\r\n"
        "with variance 0.04 and learns about it from the gap it observes. Compare the\r\n"
        "certainty-equivalence and open-loop-feedback rules over 20 Monte Carlo runs."),
)


def main():
    here = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "examples")
    for name, model in (("track1", TRACK1), ("infl2", INFL2), ("learn1", LEARN1)):
        write(os.path.join(here, name + ".ovi"), model)


if __name__ == "__main__":
    main()
