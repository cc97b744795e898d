"""The models of the example library, as plain data for scripts/make_examples.py.

Every model is our own: a textbook structure (income-expenditure, multiplier-accelerator,
Phillips curve, open-economy, cobweb, production smoothing, growth) with numbers chosen for this
library. Each row of `library()` gives the menu id, the file stem, the short title and the entry
under each cascade of the Examples menu, with the model itself.
"""

import textwrap


def s(x):
    """The cell text of a number, as a user would type it."""
    if isinstance(x, str):
        return x
    text = f"{x:.6g}"
    return "0" if text == "-0" else text


def mat(rows):
    return [[s(x) for x in row] for row in rows]


def col(values):
    return [[s(x)] for x in values]


def zeros(r, c):
    return [["0"] * c for _ in range(r)]


def diag(values):
    k = len(values)
    return [[s(values[i]) if i == j else "0" for j in range(k)] for i in range(k)]


def eye(k):
    return diag([1] * k)


def const(value, rows, cols):
    return [[s(value)] * cols for _ in range(rows)]


def path(start, end, count):
    """A straight path from start to end over count periods."""
    if count == 1:
        return [s(start)]
    return [s(round(start + (end - start) * t / (count - 1), 4)) for t in range(count)]


def years(first, last):
    return [str(y) for y in range(first, last + 1)]


def quarters(year, count):
    return [f"{year + q // 4}Q{q % 4 + 1}" for q in range(count)]


def steps(prefix, count):
    return [f"{prefix}{t}" for t in range(1, count + 1)]


def text(*paragraphs):
    """A description: sentences wrapped to lines of at most 90 characters, as typed in the
    description window."""
    lines = []
    for p in paragraphs:
        lines += textwrap.wrap(p, 90)
    return "\r\n".join(lines)


def model(acronym, name, states, controls, exogenous, periods, desc, **data):
    """A deterministic tracking model in regular form with constant weights and targets; the
    keyword arguments give its matrices and override any default."""
    n, k, l = len(states), len(controls), len(exogenous)
    first = data.pop("first", 1)
    m = dict(acronym=acronym, name=name, n=str(n), m=str(k), l=str(l), initial=str(first),
             terminal=str(first + len(periods) - 1), stoch="1720",
             forms=dict(criterion="400", z="410", w="412", **{"lambda": "415"}, xdes="417",
                        udes="420"),
             states=states, controls=controls, exogenous=exogenous, periods=periods,
             Z=const(1, l, 1), XDES=zeros(n, 1), UDES=zeros(k, 1), G=zeros(k, n),
             g=zeros(k, 1), description=text(*desc))
    forms = data.pop("forms", {})
    m["forms"].update(forms)
    for key, value in data.items():
        m[key] = value
    return m


def additive(m, q, source="455", xsis=None, runs=20):
    """Additive system noise with covariance diag(q), drawn per run or read in as XSIS."""
    n, nt = int(m["n"]), len(m["periods"])
    m.update(stoch="1722", nmc=str(runs), source=source, Q=diag(q),
             XSIS=xsis if xsis is not None else zeros(n, nt - 1),
             switches=["0", "0", "0", "1" if source == "455" else "0", "0", "0"])
    return m


def uncertain(m, params, q, switches=("1", "0", "0", "1", "0", "0"), runs=20, source="455",
              true=None, xsis=None):
    """Uncertain parameters: params lists (acronym, name, kind, row, col, mean, variance), kind 0
    for an element of A, 1 of B, 2 of the constant vector c. The mean is written into the system
    matrix too, so that the deterministic solve uses the same numbers as the controller's first
    guess."""
    n, nt = int(m["n"]), len(m["periods"])
    key = {0: "A", 1: "B", 2: "C"}
    if m["forms"].get("system") == "403":
        key = {0: "A1", 1: "B1", 2: "C1"}
    for _, _, kind, row, column, mean, _ in params:
        if kind != 2:
            m[key[kind]][row - 1][column - 1] = s(mean)
    m.update(stoch="1724", np=str(len(params)), nmc=str(runs), source=source, Q=diag(q),
             XSIS=xsis if xsis is not None else zeros(n, nt - 1), switches=list(switches),
             parameters=[(a, nm) for a, nm, *_ in params],
             TH0=col([p[5] for p in params]),
             TH0DIFF=col(true if true is not None else [p[5] for p in params]),
             SITT0=diag([p[6] for p in params]),
             ITHN=[[s(p[2]), s(p[3]), s(p[4])] for p in params])
    return m


def measured(m, observations, h, r, sixx0, gam=None, d=None, switches=None, source="455",
             zetas=None, etas=None, th0dev=None, x0dev=None):
    """Measurement error on top of uncertain parameters: y = H x + noise with covariance
    diag(r), initial state covariance diag(sixx0), parameters moving by theta(t+1) = D theta(t)
    + eta with covariance diag(gam)."""
    n, npar, nt = int(m["n"]), int(m["np"]), len(m["periods"])
    m.update(stoch="1728", ny=str(n), observations=observations, source=source,
             D=d if d is not None else eye(npar), H=mat(h), SIXX0=diag(sixx0),
             SITX0=zeros(npar, n), R=diag(r), GAM=diag(gam if gam else [0] * npar),
             ZETAS=zetas if zetas is not None else zeros(n, nt - 1),
             ETAS=etas if etas is not None else zeros(npar, nt - 1),
             TH0DEV=th0dev if th0dev is not None else zeros(npar, 1),
             X0DEV=x0dev if x0dev is not None else zeros(n, 1))
    if switches is not None:
        m["switches"] = list(switches)
    return m


def row(ident, stem, title, author, country, form, stochastic, subject, m):
    return dict(id=ident, stem=stem, title=title, author=author, country=country, form=form,
                stochastic=stochastic, subject=subject, model=m)


# ---- The three first examples (kept as they were: the README and the tests start from them) ----
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



Y, C, I, G = "YGAP", "CONS", "INV", "GSPEND"


def closed_economy():
    kcross = model(
        "KCROSS2", "Income-expenditure model with a tax instrument",
        [("Y", "National income, bn"), ("C", "Private consumption, bn")],
        [("G", "Government purchases, bn"), ("T", "Net taxes, bn")],
        [("INVEST", "Autonomous investment, bn")], years(2027, 2034),
        ["A closed economy in the income-expenditure tradition. Income next year is the sum of "
         "consumption, autonomous investment and government purchases; consumption follows "
         "income with a marginal propensity of 0.6 and adjusts with a lag.",
         "Income starts 40 bn below its full-employment level of 1000 bn. The planner aims "
         "at full employment and a consumption level of 640 bn while keeping purchases near "
         "200 bn and taxes near 180 bn.",
         "The example teaches the multiplier: a unit of purchases raises next year's income "
         "by a unit, while a tax cut works only through consumption, a year later."],
        first=2027,
        A=mat([[0, 1], [0.6, 0.2]]), B=mat([[1, 0], [0, -0.6]]), C=mat([[1], [0]]),
        Z=col([160]), X0=col([960, 615]), W=col([1, 0.5]), LAMBDA=col([0.4, 0.4]),
        XDES=col([1000, 640]), UDES=col([200, 180]), G=mat([[-0.3, 0], [0.2, 0]]),
        g=col([488, -12]))
    mulacc = model(
        "MULACC2", "Multiplier-accelerator cycle", [("Y", "Output, index"), ("YLAG", "Output last year, index")],
        [("G", "Government purchases, index")], [("AUTO", "Autonomous spending")], years(2027, 2040),
        ["Output responds to last year's output through the consumption multiplier and to its "
         "change through the accelerator: Y(t+1) = (c + v) Y(t) - v Y(t-1) + G(t) + a, with a "
         "marginal propensity to consume c of 0.75 and an accelerator v of 0.9, so that the "
         "economy left to itself oscillates.",
         "The desired output path rises by 2 percent a year from 100. The second state "
         "carries last year's output, the usual way to write a second-order difference "
         "equation as a first-order system.",
         "Solve and look at the controls: purchases lean against the cycle."],
        first=2027,
        A=mat([[1.65, -0.9], [1, 0]]), B=mat([[1], [0]]), C=mat([[1], [0]]), Z=col([5]),
        X0=col([96, 98]), W=col([1, 0]), LAMBDA=col([0.2]),
        XDEST=[[s(round(100 * 1.02 ** t, 2)) for t in range(14)],
               [s(round(100 * 1.02 ** (t - 1), 2)) for t in range(14)]],
        UDES=col([25]), forms=dict(xdes="418"), G=mat([[-0.75, 0.9]]), g=col([25]))
    fiscal = model(
        "FISCAL3", "Output, inflation and public debt",
        [("YGAP", "Output gap, percent"), ("INFL", "Inflation, percent"),
         ("DEBT", "Public debt, percent of GDP")],
        [("PRIMB", "Primary balance, percent of GDP"), ("RATE", "Policy rate, percent")],
        [("RSTAR", "Neutral real rate, percent")], years(2027, 2038),
        ["A closed economy after a recession: a negative output gap, inflation below target "
         "and public debt at 95 percent of GDP. Tightening the primary balance closes the "
         "debt gap but widens the output gap; the policy rate works on the gap and, through "
         "interest payments, on debt.",
         "The terminal year weighs debt ten times as much as the years before: the planner "
         "may let debt drift while the gap closes, but must bring it close to 80 percent by "
         "the end (W terminal different).",
         "Compare the paths of the two instruments to see fiscal and monetary policy share "
         "the work."],
        first=2027,
        A=mat([[0.7, 0, 0], [0.3, 0.6, 0], [-0.4, 0, 1.0]]),
        B=mat([[-0.5, -0.3], [0, -0.1], [-1, 0.4]]), C=mat([[0.3], [0.8], [-0.4]]),
        Z=col([1]), X0=col([-3, 1, 95]), W=col([1, 1, 0.2]), WN=col([1, 1, 2]),
        LAMBDA=col([0.5, 0.3]), XDES=col([0, 2, 80]), UDES=col([1, 2]),
        forms=dict(w="413"), G=mat([[0.2, 0, 0.05], [0.5, 1.5, 0]]), g=col([-3.8, -1]))
    tinb = model(
        "TINB3", "Three targets and three instruments",
        [("YGAP", "Output gap, percent"), ("INFL", "Inflation, percent"),
         ("UNEMP", "Unemployment rate, percent")],
        [("GSPEND", "Government spending, percent of GDP"), ("RATE", "Policy rate, percent"),
         ("WAGES", "Public-sector wage growth, percent")],
        [("CONST", "Constant")], years(2027, 2034),
        ["As many instruments as targets: in a static world every target could be hit "
         "exactly; with lags and with a cost on moving instruments, the planner trades them "
         "off. Unemployment follows the output gap by an Okun-type law.",
         "The weights change over time (W time varying): inflation counts little in the "
         "first two years, while the economy recovers, and fully afterwards; unemployment "
         "counts more in the last years.",
         "The example teaches why a time-varying priority changes the whole path, not only "
         "the years whose weight moved."],
        first=2027,
        A=mat([[0.6, 0, 0], [0.2, 0.7, 0], [-0.4, 0, 0.6]]),
        B=mat([[0.6, -0.4, 0.1], [0.1, -0.1, 0.3], [-0.1, 0, 0]]), C=mat([[0], [0.4], [2.4]]),
        X0=col([-2.5, 1.0, 7.5]), WT=[["1"] * 8, ["0.2", "0.2"] + ["1"] * 6,
                                     ["0.5"] * 5 + ["1", "1", "1"]],
        LAMBDA=col([0.3, 0.3, 0.3]), XDES=col([0, 2, 5]), UDES=col([0, 2.5, 2]),
        forms=dict(w="414"))
    elect = model(
        "ELECT2", "Stabilisation before and after an election",
        [("YGAP", "Output gap, percent"), ("INFL", "Inflation, percent")],
        [("GSPEND", "Government spending, deviation"), ("TAXC", "Tax cut, deviation")],
        [("CONST", "Constant")], quarters(2027, 12),
        ["A government that wants a boom in the four quarters before an election (quarter "
         "6): it aims at an output gap of +1.5 then and weighs it heavily, and weighs "
         "inflation heavily only afterwards. The cost of its two fiscal instruments changes "
         "too: spending is cheap before the election and dear after it.",
         "W, Lambda and the desired states are all time varying. The result shows a "
         "spending boom before the vote and a correction after it, the pattern of a "
         "political business cycle."],
        A=mat([[0.75, 0], [0.15, 0.8]]), B=mat([[0.5, 0.3], [0.05, 0.02]]),
        C=mat([[0], [0.4]]), X0=col([0, 2.0]),
        WT=[["1", "1", "3", "3", "3", "3", "1", "1", "1", "1", "1", "1"],
            ["1", "1", "0.3", "0.3", "0.3", "0.3", "3", "3", "3", "3", "3", "3"]],
        LAMBDAT=[["0.5", "0.5", "0.1", "0.1", "0.1", "0.1", "1", "1", "1", "1", "1"],
                 ["0.5"] * 11],
        XDEST=[["0", "0", "1.5", "1.5", "1.5", "1.5", "0", "0", "0", "0", "0", "0"],
               ["2"] * 12], forms=dict(w="414", **{"lambda": "416"}, xdes="418"))
    regul = model(
        "REGUL3", "Regulator around the steady state",
        [("YDEV", "Output, deviation from steady state"), ("PDEV", "Price level, deviation"),
         ("MDEV", "Money stock, deviation")],
        [("MGROW", "Money growth, deviation"), ("GDEV", "Spending, deviation")],
        [("NONE", "No exogenous input")], steps("P", 10),
        ["An IS-LM-Phillips system written in deviations from its steady state, so the "
         "criterion is a pure quadratic form: no desired paths, only the weights on the "
         "squared deviations (criterion as quadratic form).",
         "A shock has left output 2 percent below and prices 1 percent above the steady "
         "state; real balances matter for demand. The solution brings all three back to zero "
         "at the least cost in instrument moves."],
        A=mat([[0.6, -0.3, 0.3], [0.2, 0.9, 0], [0, 0, 1]]),
        B=mat([[0, 0.4], [0, 0], [1, 0]]), C=mat([[0], [0], [0]]), Z=col([0]),
        X0=col([-2, 1, 0]), W=col([1, 2, 0.1]), LAMBDA=col([0.5, 0.5]),
        forms=dict(criterion="401"))
    phil = model(
        "PHIL2", "Disinflation along a Phillips curve",
        [("INFL", "Inflation gap, percent"), ("YGAP", "Output gap, percent")],
        [("RGAP", "Real rate gap, percent")], [("NONE", "No exogenous input")], years(2027, 2036),
        ["An accelerationist Phillips curve, INFL(t+1) = INFL(t) + 0.3 YGAP(t), and an IS "
         "curve in which the real rate gap lowers the output gap. Inflation starts 5 points "
         "above target. Variables are gaps from target, so the criterion is a quadratic form "
         "without desired paths.",
         "The example shows the sacrifice ratio: how much output the disinflation costs "
         "depends on the weight on the output gap (0.5) and on the rate (0.1); change them "
         "and solve again."],
        first=2027,
        A=mat([[1, 0.3], [0, 0.7]]), B=mat([[0], [-0.6]]), C=mat([[0], [0]]), Z=col([0]),
        X0=col([5, 0]), W=col([1, 0.5]), LAMBDA=col([0.1]), forms=dict(criterion="401"),
        G=mat([[0.8, 0.5]]))
    return [kcross, mulacc, fiscal, tinb, elect, regul, phil]


def open_economy():
    mundell = model(
        "MUNDFL3", "Small open economy with a managed float",
        [("YGAP", "Output gap, percent"), ("CA", "Current account, percent of GDP"),
         ("RESERV", "Reserves, months of imports")],
        [("GSPEND", "Government spending, percent of GDP"), ("RATE", "Policy rate, percent")],
        [("WORLD", "World demand growth, percent")], quarters(2027, 10),
        ["A small open economy in the tradition of the open-economy IS-LM model: spending "
         "raises output and worsens the current account, a higher rate lowers output, "
         "attracts capital and so adds to reserves. World demand growth, a time-varying path "
         "(z time varying), first falls and then recovers.",
         "The planner wants a closed output gap, a current-account deficit no larger than 1 "
         "percent of GDP and reserves of four months of imports. The example teaches the "
         "assignment problem: which instrument ends up serving which target."],
        A=mat([[0.7, 0, 0], [-0.2, 0.6, 0], [0, 0.25, 1]]),
        B=mat([[0.4, -0.3], [-0.2, 0.05], [0, 0.3]]), C=mat([[0.3], [0.2], [0]]),
        ZT=[["0.5", "-0.5", "-1.5", "-1", "0", "0.5", "1", "1.5", "1.5"]],
        X0=col([-1.5, -3, 2.5]), W=col([1, 0.5, 0.3]), LAMBDA=col([0.3, 0.3]),
        XDES=col([0, -1, 4]), UDES=col([20, 3]), forms=dict(z="411"),
        G=mat([[-0.5, 0, 0], [0.2, 0, -0.3]]), g=col([20, 3]))
    twocty = model(
        "TWOCTY4", "Two-country world with spillovers",
        [("YHOME", "Home output gap, percent"), ("YFOR", "Foreign output gap, percent"),
         ("PHOME", "Home inflation, percent"), ("PFOR", "Foreign inflation, percent")],
        [("GHOME", "Home fiscal impulse, percent"), ("GFOR", "Foreign fiscal impulse, percent"),
         ("RHOME", "Home policy rate, percent"), ("RFOR", "Foreign policy rate, percent")],
        [("OIL", "World oil price shock")], years(2027, 2036),
        ["Two economies of similar size trade with each other: a quarter of each one's "
         "output gap spills over to the other's demand, and inflation follows each gap. A "
         "common oil-price shock raises inflation in both.",
         "A single planner sets all four instruments, so the solution is the cooperative one; "
         "compare the home instruments with those of a planner who ignores the spillover "
         "(set the off-diagonal elements of A to 0 and solve again)."],
        first=2027,
        A=mat([[0.6, 0.25, 0, 0], [0.25, 0.6, 0, 0], [0.3, 0, 0.6, 0], [0, 0.3, 0, 0.6]]),
        B=mat([[0.5, 0.1, -0.4, 0], [0.1, 0.5, 0, -0.4], [0, 0, -0.1, 0], [0, 0, 0, -0.1]]),
        C=mat([[-0.2], [-0.2], [0.5], [0.5]]), Z=col([1]), X0=col([-2, -1, 3, 2.5]),
        W=col([1, 1, 1, 1]), LAMBDA=col([0.3, 0.3, 0.2, 0.2]), XDES=col([0, 0, 2, 2]),
        UDES=col([0, 0, 2, 2]))
    emerg = additive(model(
        "EMERG3", "Emerging market facing capital-flow shocks",
        [("YGAP", "Output gap, percent"), ("INFL", "Inflation, percent"),
         ("EXRATE", "Real exchange rate, percent deviation")],
        [("RATE", "Policy rate, percent"), ("INTERV", "FX intervention, bn USD")],
        [("USRATE", "World interest rate, percent")], quarters(2027, 8),
        ["An emerging economy whose exchange rate is pushed around by capital flows: every "
         "quarter an additive shock hits the exchange rate with variance 4, and weaker ones "
         "hit output and inflation. A weaker currency raises inflation and, with a lag, "
         "output.",
         "The central bank has two instruments: its rate and sales of reserves. The example "
         "runs 20 Monte Carlo runs of additive noise; under additive noise alone certainty "
         "equivalence holds, so CE, CEWO, OLF and OLIN choose almost the same policies."],
        A=mat([[0.7, 0, 0.1], [0.1, 0.6, 0.2], [0, 0, 0.8]]),
        B=mat([[-0.3, 0], [-0.1, -0.05], [-0.6, -0.5]]), C=mat([[0], [0.5], [0.8]]),
        Z=col([2]), X0=col([-1, 6, 8]), W=col([1, 1.5, 0.3]), LAMBDA=col([0.3, 0.5]),
        XDES=col([0, 4, 0]), UDES=col([6, 0]), G=mat([[0.3, 0.8, 0.2], [0, 0, 0.5]]),
        g=col([0.5, 0])), [0.3, 0.3, 4])
    commodx = additive(model(
        "COMEXP2", "Commodity exporter with a stabilisation fund",
        [("YGAP", "Non-commodity output gap, percent"), ("FUND", "Fund assets, percent of GDP")],
        [("GSPEND", "Government spending, percent of GDP")], [("REVEN", "Commodity revenue")],
        years(2027, 2036),
        ["A government that lives on commodity revenue saves part of it in a fund. Spending "
         "raises the output gap and draws the fund down; revenue flows into the fund. The "
         "revenue shocks are read in (source of random terms: read in) from the XSIS matrix, "
         "a bad year in 2029 and a boom in 2032, so every run sees the same history.",
         "The planner wants a closed gap and a fund of 30 percent of GDP."],
        first=2027,
        A=mat([[0.6, 0], [0, 1.02]]), B=mat([[0.5], [-1]]), C=mat([[0], [1]]), Z=col([12]),
        X0=col([-1, 20]), W=col([1, 0.2]), LAMBDA=col([0.3]), XDES=col([0, 30]),
        UDES=col([12]), G=mat([[-0.4, 0.05]]), g=col([11])),
        [0.25, 4], source="454",
        xsis=[["0", "0", "-0.8", "0", "0", "0.6", "0", "0", "0"],
              ["0", "0", "-5", "0", "0", "6", "0", "0", "0"]])
    return [mundell, twocty, emerg, commodx]


def forward_looking():
    dorn = model(
        "DORN2", "Exchange-rate overshooting with expectations",
        [("EXRATE", "Exchange rate, percent deviation"), ("PRICE", "Price level, percent dev.")],
        [("MONEY", "Money supply, percent deviation")], [("NONE", "No exogenous input")],
        quarters(2027, 10),
        ["Asset markets clear at once, goods prices slowly. The exchange rate today depends "
         "on its expected value next quarter (forward variables, lead 1) and on money; the "
         "price level moves towards its long-run value. An expansion of money makes the "
         "exchange rate jump beyond its new long-run level and then come back.",
         "The planner wants the price level back on its old path and the exchange rate "
         "stable; the solution iterates on the expected path until the controls stop "
         "changing."],
        A=mat([[0.2, 0.3], [0.2, 0.8]]), B=mat([[0.5], [0]]), C=mat([[0], [0]]), Z=col([0]),
        D1=mat([[0.5, 0], [0, 0]]), X0=col([4, 2]), W=col([0.5, 1]), LAMBDA=col([0.2]),
        maxLead="1", forms=dict(forward="405"))
    nkfwd = model(
        "NKFWD2", "Forward-looking inflation and the output gap",
        [("INFL", "Inflation, percent"), ("YGAP", "Output gap, percent")],
        [("RATE", "Policy rate, percent")], [("CONST", "Constant")], quarters(2027, 12),
        ["Inflation depends on expected inflation one and two quarters ahead (forward "
         "variables, lead 2) as price setters look through the next two quarters, and on the "
         "output gap; the gap falls when the policy rate rises above its neutral value of 2 "
         "percent.",
         "Inflation starts at 4 percent with a 2 percent target. Because inflation expected "
         "later feeds back into inflation now, a credible tightening path works before it is "
         "applied: compare the first quarters of the rate path with those of INFL2."],
        A=mat([[0.4, 0.1], [0, 0.8]]), B=mat([[0], [-0.4]]), C=mat([[0.2], [0.8]]),
        Z=col([1]), D1=mat([[0.3, 0], [0, 0]]), D2=mat([[0.15, 0], [0, 0]]),
        X0=col([4, 0.5]), W=col([1, 0.5]), LAMBDA=col([0.1]), XDES=col([2, 0]), UDES=col([2]),
        maxLead="2", forms=dict(forward="405"))
    cagan = model(
        "CAGAN2", "Money and prices when inflation is expected",
        [("PRICE", "Log price level, percent"), ("MONEY", "Log money stock, percent")],
        [("MGROW", "Money growth, percent")], [("NONE", "No exogenous input")], steps("M", 10),
        ["Money demand falls when inflation is expected, so today's price level depends on "
         "the money stock and on the price levels expected one and two months ahead "
         "(forward variables, lead 2). The money stock grows by the chosen money growth.",
         "The planner wants prices to grow at 1 percent a month from 100 and money growth "
         "near 1 percent. The example shows how the prices expected for the coming months "
         "feed back into today's price level."],
        A=mat([[0.3, 0.4], [0, 1]]), B=mat([[0.4], [1]]), C=mat([[0], [0]]), Z=col([0]),
        D1=mat([[0.2, 0], [0, 0]]), D2=mat([[0.1, 0], [0, 0]]), X0=col([100, 100]),
        W=col([1, 0]), LAMBDA=col([0.5]), XDEST=[path(100, 109, 10), path(100, 109, 10)],
        UDES=col([1]), maxLead="2", forms=dict(forward="405", xdes="418"))
    wage = model(
        "WAGE3", "Overlapping wage contracts",
        [("WAGE", "Contract wage, percent deviation"), ("PRICE", "Price level, percent dev."),
         ("YGAP", "Output gap, percent")],
        [("MONEY", "Money supply, percent deviation")], [("NONE", "No exogenous input")],
        quarters(2027, 12),
        ["Wages are set for three quarters at a time, so the wage agreed today looks at the "
         "price level expected over the next three quarters (forward variables, lead 3). "
         "Prices are a mark-up on wages; output depends on real balances.",
         "Starting from a wage 3 percent too high, the planner uses money to bring output "
         "and prices back. The example shows how staggered contracts spread an adjustment "
         "over many quarters."],
        A=mat([[0.3, 0, 0.1], [0.6, 0.4, 0], [0, -0.5, 0.5]]),
        B=mat([[0], [0], [0.5]]), C=mat([[0], [0], [0]]), Z=col([0]),
        D1=mat([[0, 0.2, 0], [0, 0, 0], [0, 0, 0]]), D2=mat([[0, 0.15, 0], [0, 0, 0], [0, 0, 0]]),
        D3=mat([[0, 0.1, 0], [0, 0, 0], [0, 0, 0]]), X0=col([3, 1, -0.5]), W=col([0.5, 1, 1]),
        LAMBDA=col([0.2]), maxLead="3", forms=dict(forward="405"))
    house = model(
        "HOUSE3", "Housing starts with a three-year building lag",
        [("STARTS", "Housing starts, thousands"), ("STOCK", "Housing stock, change, thousands"),
         ("HPRICE", "House prices, percent deviation")],
        [("SUBSID", "Building subsidy, percent"), ("MORTR", "Mortgage rate, percent")],
        [("POPUL", "Household formation, thousands")], years(2027, 2036),
        ["Builders start houses today for prices they expect in one, two and three years, "
         "when the houses are finished (forward variables, lead 3). A subsidy lowers their "
         "cost, the mortgage rate lowers demand and so prices; household formation raises "
         "demand.",
         "The planner wants 250 thousand starts a year and stable prices. With expected "
         "prices in the starts equation, a promise of later subsidies moves starts today."],
        first=2027,
        A=mat([[0.5, 0, 0.8], [0.5, 0.3, 0], [0, -0.02, 0.6]]),
        B=mat([[3, 0], [0, 0], [0, -1.5]]), C=mat([[0.5], [0], [0.02]]), Z=col([200]),
        D1=mat([[0, 0, 0.6], [0, 0, 0], [0, 0, 0]]), D2=mat([[0, 0, 0.4], [0, 0, 0], [0, 0, 0]]),
        D3=mat([[0, 0, 0.2], [0, 0, 0], [0, 0, 0]]), X0=col([180, 150, 5]),
        W=col([1, 0, 2]), LAMBDA=col([1, 2]), XDES=col([250, 0, 0]), UDES=col([5, 4]),
        maxLead="3", forms=dict(forward="405"))
    fwdnoise = additive(model(
        "FWDNZ1", "Expected output with demand noise",
        [("YGAP", "Output gap, percent")], [("GSPEND", "Government spending, deviation")],
        [("CONST", "Constant")], quarters(2027, 8),
        ["One state whose next value depends on the value expected a further quarter ahead "
         "(forward variables, lead 1), as households spend on expected income, and on "
         "additive demand noise with variance 0.2.",
         "Each method solves the forward problem again every quarter from the state it "
         "observes; the comparison runs the iteration inside every run and period."],
        A=mat([[0.5]]), B=mat([[0.5]]), C=mat([[0.1]]), Z=col([1]), D1=mat([[0.3]]),
        X0=col([-2]), W=col([1]), LAMBDA=col([0.3]), G=mat([[-0.5]]),
        maxLead="1", forms=dict(forward="405")), [0.2])
    return [dorn, nkfwd, cagan, wage, house, fwdnoise]


def pindyck():
    islm = model(
        "PIND2", "Simultaneous goods and money markets",
        [("Y", "Output, percent deviation"), ("R", "Interest rate, percent")],
        [("GSPEND", "Government spending, deviation"), ("MONEY", "Money supply, deviation")],
        [("NONE", "No exogenous input")], quarters(2027, 8),
        ["The goods and money markets clear in the same quarter: output depends on this "
         "quarter's interest rate and the interest rate on this quarter's output. The system "
         "is written as A0 x(t) + A1 x(t-1) + B1 u + C1 z (Pindyck form), and the program "
         "solves it for x(t) by inverting I - A0.",
         "Output starts 2 percent low; spending and money both help, but through different "
         "channels, and the planner dislikes interest-rate volatility."],
        A0=mat([[0, -0.5], [0.4, 0]]), A1=mat([[0.6, 0], [0, 0.5]]),
        B1=mat([[0.6, 0], [0, -0.8]]), C1=mat([[0], [0]]), Z=col([0]), X0=col([-2, 3]),
        W=col([1, 0.5]), LAMBDA=col([0.3, 0.3]), XDES=col([0, 3]), forms=dict(system="403"))
    pindopen = additive(model(
        "PIND3", "Open economy with simultaneous trade and prices",
        [("Y", "Output, percent deviation"), ("NX", "Net exports, percent of GDP"),
         ("PRICE", "Price level, percent deviation")],
        [("GSPEND", "Government spending, deviation"), ("RATE", "Policy rate, deviation")],
        [("WORLD", "World demand, deviation")], quarters(2027, 8),
        ["Within the quarter net exports fall as output and prices rise, and output rises "
         "with net exports (Pindyck form, with the contemporaneous links in A0). Shocks to "
         "output, trade and prices are additive with variances 0.3, 0.5 and 0.2.",
         "The planner keeps output and prices at target and net exports at zero with two "
         "instruments; run the comparison to see the policies under noise."],
        A0=mat([[0, 0.5, 0], [-0.2, 0, -0.3], [0.2, 0, 0]]),
        A1=mat([[0.6, 0, 0], [0, 0.5, 0], [0, 0, 0.8]]), B1=mat([[0.5, -0.3], [0, 0], [0, -0.1]]),
        C1=mat([[0], [0.4], [0]]), Z=col([1]), X0=col([-1, -2, 1]), W=col([1, 0.5, 1]),
        LAMBDA=col([0.3, 0.3]), forms=dict(system="403"), G=mat([[-0.5, 0, 0], [0.3, 0, 0.5]])),
        [0.3, 0.5, 0.2])
    pindfwd = model(
        "PINDFW2", "Simultaneous equations with expected output",
        [("Y", "Output, percent deviation"), ("INFL", "Inflation, percent")],
        [("RATE", "Policy rate, percent")], [("CONST", "Constant")], quarters(2027, 10),
        ["A Pindyck-form system with a lead: inflation this quarter depends on this "
         "quarter's output (through A0) and on the output expected next quarter (DHAT1, "
         "forward variables, lead 1). Output falls when the policy rate rises.",
         "The planner brings inflation from 5 to its 2 percent target. The example joins "
         "the two forms that the Form Specifications dialog offers for the system equations "
         "with expectations."],
        A0=mat([[0, 0], [0.2, 0]]), A1=mat([[0.7, 0], [0, 0.6]]), B1=mat([[-0.4], [0]]),
        C1=mat([[0.8], [0.8]]), Z=col([1]), DHAT1=mat([[0, 0], [0.2, 0]]), X0=col([1, 5]),
        W=col([0.5, 1]), LAMBDA=col([0.1]), XDES=col([0, 2]), UDES=col([2]),
        maxLead="1", forms=dict(system="403", forward="405"))
    return [islm, pindopen, pindfwd]


def markets_and_firms():
    cobweb = model(
        "COBWEB2", "Cobweb cycle in a grain market",
        [("PRICE", "Grain price, per tonne"), ("SUPPLY", "Harvest, million tonnes")],
        [("BUFFER", "Buffer-stock purchases, mn tonnes")], [("DEMAND", "Demand shifter")],
        years(2027, 2038),
        ["Farmers plant this year for last year's price, so a high price brings a large "
         "harvest and a low price next year: the cobweb cycle. An agency buys grain into a "
         "buffer stock (or sells from it, a negative purchase), which raises the price "
         "of the following year.",
         "The planner wants a price of 200 and a harvest of 50 with small stock movements. "
         "The example teaches how a buffer stock damps the cycle."],
        first=2027,
        A=mat([[0, -3], [0.15, 0]]), B=mat([[3], [0]]), C=mat([[1], [0]]), Z=col([350]),
        X0=col([240, 45]), W=col([1, 5]), LAMBDA=col([1]), XDES=col([200, 50]),
        G=mat([[-0.01, 0.3]]), g=col([-15]))
    cobnoise = additive(model(
        "COBNZ2", "Grain market with harvest shocks",
        [("PRICE", "Grain price, per tonne"), ("SUPPLY", "Harvest, million tonnes")],
        [("BUFFER", "Buffer-stock purchases, mn tonnes")], [("DEMAND", "Demand shifter")],
        years(2027, 2038),
        ["The cobweb market of COBWEB2 with the weather: each harvest is hit by an additive "
         "shock with variance 4 (a standard deviation of 2 million tonnes), the price by one "
         "with variance 25.",
         "Run the comparison: the buffer-stock agency re-plans every year from the harvest "
         "it sees. With additive noise only, the methods that re-solve (CE, CEWO, OLF, "
         "OLIN) agree; the handcrafted rule does worse."],
        first=2027,
        A=mat([[0, -3], [0.15, 0]]), B=mat([[3], [0]]), C=mat([[1], [0]]), Z=col([350]),
        X0=col([240, 45]), W=col([1, 5]), LAMBDA=col([1]), XDES=col([200, 50]),
        G=mat([[-0.01, 0.3]]), g=col([-15])), [25, 4])
    buffer = uncertain(model(
        "BUFFER1", "Buffer stock with an unknown supply response",
        [("PRICE", "Coffee price, percent deviation")],
        [("STOCK", "Stock release, thousand tonnes")], [("CONST", "Constant")],
        years(2027, 2034),
        ["An international agency stabilises the coffee price by releasing stock. How much "
         "a release lowers the price is not known: the agency believes 0.8 points per "
         "thousand tonnes with variance 0.1 (one uncertain parameter in B).",
         "Open loop feedback takes this uncertainty into account and releases less than "
         "certainty equivalence would; over 20 runs, compare which does better."],
        first=2027,
        A=mat([[0.8]]), B=mat([[-0.8]]), C=mat([[0.5]]), X0=col([10]), W=col([1]),
        LAMBDA=col([0.2]), G=mat([[0.8]])),
        [("BREL", "Price effect of a stock release", 1, 1, 1, -0.8, 0.1)], [1])
    invent = model(
        "INVENT2", "Production smoothing with seasonal sales",
        [("STOCK", "Finished-goods inventory, units"), ("WORK", "Workforce, persons")],
        [("PROD", "Production, units"), ("HIRE", "Net hiring, persons")],
        [("SALES", "Sales, units")], steps("M", 13),
        ["A factory in the production-smoothing tradition: inventory rises with production "
         "and falls with sales; the workforce changes by net hiring. Sales follow a seasonal "
         "path (z time varying); the desired inventory follows sales (x desired time "
         "varying) and production should stay near the workforce's capacity of 10 units a "
         "person (u desired time varying).",
         "The weights make both overtime and idle time, hiring and firing costly. The plan "
         "builds stock before the peak months instead of hiring for them."],
        A=mat([[1, 0], [0, 1]]), B=mat([[1, 0], [0, 1]]), C=mat([[-1], [0]]),
        ZT=[["900", "950", "1100", "1300", "1400", "1300", "1100", "950", "900", "900",
             "1000", "1200"]],
        X0=col([400, 100]), W=col([1, 5]), LAMBDA=col([0.5, 20]),
        XDEST=[["400", "420", "480", "560", "600", "560", "480", "420", "400", "400", "440",
                "520", "560"], ["100"] * 13],
        UDEST=[["1000"] * 12, ["0"] * 12], forms=dict(z="411", xdes="418", udes="421"),
        G=mat([[-0.5, 0], [0, 0]]), g=col([1300, 0]))
    invnoise = additive(model(
        "INVNZ2", "Inventory under random demand",
        [("STOCK", "Inventory, units"), ("BACKLOG", "Order backlog, units")],
        [("PROD", "Production, units")], [("SALES", "Expected sales, units")], steps("W", 10),
        ["A wholesaler's inventory falls with sales and rises with production; unfilled "
         "orders pile up in a backlog that is served from the next week's stock. Weekly "
         "sales are random around 500 units (additive noise with variance 900 on the stock "
         "and 400 on the backlog).",
         "The target is a buffer of 300 units and no backlog. Run the comparison to see how "
         "the methods that re-plan every week cope with the noise."],
        A=mat([[0.9, -0.5], [0, 0.5]]), B=mat([[1], [0]]), C=mat([[-1], [0.1]]), Z=col([500]),
        X0=col([200, 40]), W=col([1, 2]), LAMBDA=col([0.1]), XDES=col([300, 0]),
        UDES=col([500]), G=mat([[-0.5, 0.5]]), g=col([650])), [900, 400])
    invmeas = measured(uncertain(model(
        "INVMS2", "Inventory counted with error",
        [("STOCK", "Inventory, units"), ("ORDERS", "Open orders, units")],
        [("PROD", "Production, units")], [("SALES", "Sales, units")], steps("W", 8),
        ["The wholesaler of INVNZ2 does not know its stock exactly: the count is a mix of "
         "stock and open orders (H not the identity) with counting errors of variance 100, "
         "and the share of open orders that turns into sales each week is uncertain (one "
         "parameter in A, believed 0.5 with variance 0.02).",
         "A Kalman filter estimates the stock and the parameter together from the counts; "
         "compare the methods over 20 runs."],
        A=mat([[0.9, -0.5], [0, 0.5]]), B=mat([[1], [0]]), C=mat([[-1], [0.1]]), Z=col([500]),
        X0=col([200, 40]), W=col([1, 1]), LAMBDA=col([0.1]), XDES=col([300, 0]),
        UDES=col([500]), G=mat([[-0.5, 0.5]]), g=col([650])),
        [("SELL", "Share of open orders sold in a week", 0, 2, 2, 0.5, 0.02)], [100, 50],
        switches=("0", "0", "1", "1", "1", "0")),
        [("COUNT", "Stock count, units"), ("ORDOBS", "Orders on the books, units")],
        [[1, 0.2], [0, 1]], [100, 25], [400, 100])
    return [cobweb, cobnoise, buffer, invent, invnoise, invmeas]


def growth():
    solow = model(
        "SOLOW2", "Capital accumulation with a saving target",
        [("CAPITAL", "Capital stock, per worker"), ("OUTPUT", "Output, per worker")],
        [("INVEST", "Investment, per worker")], [("TECH", "Technology level")],
        years(2027, 2046),
        ["Capital grows by investment and depreciates by 6 percent a year; output is a "
         "linearised production function of capital with a share of 0.35 and of "
         "technology. Consumption is what output leaves after investment, so investment "
         "costs welfare now and pays later.",
         "Over twenty years the planner moves the economy from a capital stock of 60 to 80 "
         "and output from 30 to 34, with investment near 5 a worker. The example shows "
         "saving on the way to a new steady state."],
        first=2027,
        A=mat([[0.94, 0], [0.1, 0.5]]), B=mat([[1], [0]]), C=mat([[0], [12]]), Z=col([1]),
        X0=col([60, 30]), W=col([0.2, 1]), LAMBDA=col([1]), XDES=col([80, 34]), UDES=col([5]),
        G=mat([[-0.1, 0]]), g=col([11]))
    harrod = model(
        "HDOMAR1", "Growth along a planned path",
        [("OUTPUT", "Output, bn")], [("INVEST", "Investment, bn")], [("NONE", "No input")],
        years(2027, 2041),
        ["Output grows by the investment of the year before divided by a capital-output "
         "ratio of 3, and falls by a depreciation of 5 percent. The plan wants output to grow "
         "by 3 percent a year from 500 (x desired time varying); investment is desired at "
         "its path-keeping level.",
         "A one-state growth plan: its solution shows the investment that the capital-output "
         "ratio asks for."],
        first=2027,
        A=mat([[0.95]]), B=mat([[0.3333]]), C=mat([[0]]), Z=col([0]), X0=col([480]),
        W=col([1]), LAMBDA=col([0.1]),
        XDEST=[[s(round(500 * 1.03 ** t, 1)) for t in range(15)]], UDES=col([120]),
        forms=dict(xdes="418"), G=mat([[0.24]]))
    public = model(
        "PUBCAP3", "Public investment with rising costs",
        [("OUTPUT", "Output, index"), ("PCAP", "Public capital, index"),
         ("DEBT", "Public debt, percent of GDP")],
        [("PINV", "Public investment, percent of GDP"), ("TAX", "Tax rate, percent")],
        [("CONST", "Constant")], years(2027, 2046),
        ["Public capital raises output; it is built by public investment, financed by taxes "
         "or debt. Taxes lower output. The cost of public investment rises over time as the "
         "best projects are done first (Lambda time varying): its weight doubles over the "
         "twenty years.",
         "Solve and see how the rising cost shapes the investment path, and how taxes bring "
         "debt down by the end of the plan."],
        first=2027,
        A=mat([[0.7, 0.1, 0], [0, 0.95, 0], [0, 0, 1]]),
        B=mat([[0.2, -0.3], [1, 0], [1, -1]]), C=mat([[30], [0], [0]]), X0=col([100, 50, 60]),
        W=col([1, 0.1, 0.2]), LAMBDAT=[path(0.5, 1, 19), ["0.5"] * 19],
        XDES=col([110, 70, 60]), UDES=col([3, 30]),
        forms=dict(**{"lambda": "416"}))
    return [solow, harrod, public]


def gap_model(acronym, name, desc, a=0.8, b=0.5, c=0.2, x0=-2.0, w=1.0, lam=0.2, periods=8,
              g=-0.8):
    """The one-state output-gap economy the learning examples share: YGAP(t+1) = a YGAP(t) +
    b GSPEND(t) + c."""
    return model(acronym, name, [("YGAP", "Output gap, percent")],
                 [("GSPEND", "Government spending, deviation")], [("CONST", "Constant term")],
                 years(2027, 2026 + periods), desc, first=2027, A=mat([[a]]), B=mat([[b]]),
                 C=mat([[c]]), Z=col([1]), X0=col([x0]), W=col([w]), LAMBDA=col([lam]),
                 G=mat([[g]]))


def uncertainty():
    brainard = uncertain(gap_model(
        "BRAIN1", "Attenuation under an uncertain multiplier",
        ["The multiplier of government spending on the output gap is uncertain: believed to "
         "be 0.5 with variance 0.09 (one parameter in B, ITHN kind 1). With a multiplicative "
         "uncertainty the expected loss of a large move rises with the variance, so the "
         "optimal policy moves less than under certainty: the attenuation result.",
         "Solve by QLP and by OLF and compare the first control: OLF's is smaller. Then run "
         "the comparison of the five methods over 20 runs."]),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.5, 0.09)], [0.05])
    persist = uncertain(gap_model(
        "PERSIST1", "Unknown persistence of the output gap",
        ["How fast the output gap closes by itself is not known: the persistence A(1,1) is "
         "believed 0.8 with variance 0.04 (ITHN kind 0, a parameter in A). The policy "
         "multiplier is known.",
         "Uncertainty in A is uncertainty about where the state goes whatever the policy "
         "does; OLF counts the variance it adds to the state's path."]),
        [("APERS", "Persistence of the output gap", 0, 1, 1, 0.8, 0.04)], [0.05])
    drift = uncertain(gap_model(
        "DRIFT1", "Unknown drift of demand",
        ["The constant term of the gap equation, the drift of demand, is not known: believed "
         "0.2 with variance 0.25 (ITHN kind 2, a parameter in c). An additive unknown adds a "
         "variance that no policy can change, so certainty equivalence holds: OLF and CE "
         "choose the same first control.",
         "A teaching case where OLF does not beat CE: compare the averages over 20 runs."]),
        [("DRIFT", "Drift of demand", 2, 1, 1, 0.2, 0.25)], [0.05])
    allthree = uncertain(model(
        "UNCABC2", "Uncertain persistence, multiplier and drift",
        [("YGAP", "Output gap, percent"), ("INFL", "Inflation, percent")],
        [("RATE", "Policy rate, percent")], [("CONST", "Constant")], quarters(2027, 8),
        ["Three parameters are uncertain at once: the persistence of inflation (A, kind 0), "
         "the effect of the rate on the gap (B, kind 1) and the drift of inflation (c, kind "
         "2), with variances 0.01, 0.02 and 0.04 and no correlation between them.",
         "Each kind enters the OLF recursion differently; the example shows all three ITHN "
         "kinds in one model."],
        A=mat([[0.7, 0], [0.2, 0.7]]), B=mat([[-0.4], [0]]), C=mat([[0.8], [0.4]]), Z=col([1]),
        X0=col([-1, 4]), W=col([0.5, 1]), LAMBDA=col([0.1]), XDES=col([0, 2]), UDES=col([2]),
        G=mat([[0.5, 1]])),
        [("IPERS", "Persistence of inflation", 0, 2, 2, 0.7, 0.01),
         ("RATEEF", "Effect of the rate on the gap", 1, 1, 1, -0.4, 0.02),
         ("IDRIFT", "Drift of inflation", 2, 2, 1, 0.4, 0.04)], [0.1, 0.05])
    different = uncertain(gap_model(
        "CBDM1", "True multiplier differs from the belief",
        ["The policy maker believes the spending multiplier is 0.5 (variance 0.04); in truth "
         "it is 0.3 in every run (Certain But Different From Mean, with the true value in "
         "TH0DIFF). No random draw of the parameter: only the additive noise differs "
         "between runs.",
         "The example shows learning: CE and OLF update the belief from what they see and "
         "move towards the true multiplier; CEWO keeps its first belief and does worse."]),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.5, 0.04)], [0.05],
        switches=("0", "1", "0", "1", "0", "0"), true=[0.3])
    different2 = uncertain(gap_model(
        "CBDM2", "Persistence higher than believed",
        ["The policy maker thinks the output gap closes quickly (persistence 0.6, variance "
         "0.02), but in every run the true persistence is 0.9 (Certain But Different From "
         "Mean). The gap therefore stays open longer than planned, and the estimate of the "
         "persistence rises as the years go by.",
         "Compare CE and CEWO: learning the persistence pays."], x0=-3),
        [("APERS", "Persistence of the output gap", 0, 1, 1, 0.6, 0.02)], [0.05],
        switches=("0", "1", "0", "1", "0", "0"), true=[0.9])
    readin = uncertain(gap_model(
        "READIN1", "Read-in shocks for a reproducible history",
        ["The uncertain-multiplier economy with its random terms read in (source of random "
         "terms: read in): the system shocks of XSIS are a recession in 2029 and a recovery "
         "in 2031, the same in every run, and the true multiplier is the belief itself.",
         "Every run then sees the same history; the runs differ only in how each method "
         "reacts. Use this to study one history in detail."]),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.5, 0.04)], [0.05],
        switches=("0", "0", "0", "0", "0", "0"), source="454",
        xsis=[["0", "0", "-1.5", "0", "1", "0", "0"]])
    return [brainard, persist, drift, allthree, different, different2, readin]


def measurement():
    meas = measured(uncertain(model(
        "MEASY2", "Output gap measured with error",
        [("YGAP", "Output gap, percent"), ("INFL", "Inflation, percent")],
        [("RATE", "Policy rate, percent")], [("CONST", "Constant")], quarters(2027, 8),
        ["The output gap cannot be observed: the statistics office reports a mix of the gap "
         "and inflation (H not the identity) with errors of variance 0.5, inflation with "
         "errors of variance 0.05. The effect of the rate on the gap is uncertain (believed "
         "-0.4, variance 0.02).",
         "The Kalman filter estimates the states and the parameter from the reports. The "
         "example shows measurement error with an observation matrix that mixes the "
         "states."],
        A=mat([[0.7, 0], [0.2, 0.7]]), B=mat([[-0.4], [0]]), C=mat([[0.8], [0.4]]), Z=col([1]),
        X0=col([-1, 4]), W=col([0.5, 1]), LAMBDA=col([0.1]), XDES=col([0, 2]), UDES=col([2]),
        G=mat([[0.5, 1]])),
        [("RATEEF", "Effect of the rate on the gap", 1, 1, 1, -0.4, 0.02)], [0.1, 0.05],
        switches=("1", "0", "1", "1", "1", "0")),
        [("YREP", "Reported output gap, percent"), ("IREP", "Reported inflation, percent")],
        [[1, 0.3], [0, 1]], [0.5, 0.05], [0.5, 0.1])
    tvp = measured(uncertain(gap_model(
        "TVP1", "A multiplier that drifts over time",
        ["The spending multiplier is not only unknown but moves from year to year as a "
         "random walk (time-varying parameters): theta(t+1) = D theta(t) + eta with D = 1 "
         "and a variance of eta (GAM) of 0.005. The gap is observed with a small error.",
         "Because the parameter keeps moving, the filter can never become sure of it: every "
         "period adds the variance of eta to that of the estimate."]),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.5, 0.04)], [0.05],
        switches=("1", "0", "0", "1", "1", "1")),
        [("YREP", "Reported output gap, percent")], [[1]], [0.1], [0.1], gam=[0.005])
    tvp2 = measured(uncertain(model(
        "TVP2", "Drifting pass-through of the exchange rate",
        [("INFL", "Inflation, percent"), ("EXRATE", "Exchange rate, percent deviation")],
        [("RATE", "Policy rate, percent")], [("CONST", "Constant")], quarters(2027, 8),
        ["How much of a depreciation passes into inflation changes over time: the "
         "pass-through A(1,2) is believed 0.2 (variance 0.01) and fades: each quarter it "
         "keeps nine tenths of its value (D = 0.9) and is hit by a shock of variance 0.002. The exchange "
         "rate is observed mixed with inflation news (H not the identity).",
         "A second time-varying-parameter example, with a parameter equation that is not a "
         "random walk."],
        A=mat([[0.6, 0.2], [0, 0.7]]), B=mat([[-0.1], [-0.8]]), C=mat([[0.8], [0]]),
        Z=col([1]), X0=col([5, 6]), W=col([1, 0.2]), LAMBDA=col([0.2]), XDES=col([2, 0]),
        UDES=col([2]), G=mat([[0.5, 0.2]])),
        [("PASSTH", "Pass-through of the exchange rate", 0, 1, 2, 0.2, 0.01)], [0.1, 1],
        switches=("1", "0", "0", "1", "1", "1")),
        [("IREP", "Reported inflation, percent"), ("XREP", "Reported exchange rate")],
        [[1, 0], [0.1, 1]], [0.05, 0.5], [0.1, 1], gam=[0.002], d=diag([0.9]))
    readin2 = measured(uncertain(gap_model(
        "READIN2", "Measurement error with read-in terms",
        ["Every random term is read in (source of random terms: read in): the system "
         "shocks XSIS, the measurement errors ZETAS, the initial deviations of the state "
         "(X0DEV) and of the parameter (TH0DEV). The true multiplier is 0.4, the belief "
         "0.5, because TH0DEV holds -0.1.",
         "Every run sees the same history, so the differences between methods come from "
         "their decisions alone."]),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.5, 0.04)], [0.05],
        switches=("1", "0", "0", "0", "0", "0"), source="454",
        xsis=[["0", "-0.5", "0", "0.5", "0", "0", "0"]]),
        [("YREP", "Reported output gap, percent")], [[1]], [0.1], [0.1], source="454",
        zetas=[["0.2", "-0.3", "0.1", "0", "0.2", "-0.1", "0"]], th0dev=col([-0.1]),
        x0dev=col([0.3]))
    return [meas, tvp, tvp2, readin2]


def policy_and_caution():
    credib = uncertain(model(
        "CREDIB2", "Credibility that policy itself builds",
        [("INFL", "Inflation, percent"), ("YGAP", "Output gap, percent")],
        [("RATE", "Policy rate, percent")], [("CONST", "Constant")], quarters(2027, 8),
        ["How strongly inflation expectations, and so inflation, respond to the policy rate "
         "is uncertain (believed -0.3, variance 0.02), and it depends on policy itself: every "
         "point of the rate above neutral makes the central bank more credible and moves the "
         "parameter by 0.05 (policy-to-parameter effect, N).",
         "OLIN sees this effect and OLF does not, so their policies and criteria differ. "
         "Compare the two over 20 runs."],
        A=mat([[0.8, 0.2], [0, 0.7]]), B=mat([[-0.3], [-0.5]]), C=mat([[0.4], [1]]),
        Z=col([1]), X0=col([5, 0]), W=col([1, 0.5]), LAMBDA=col([0.1]), XDES=col([2, 0]),
        UDES=col([2]), G=mat([[0.8, 0.5]]), forms=dict(policy="407"), N=mat([[-0.05]])),
        [("CRED", "Effect of the rate on inflation", 1, 1, 1, -0.3, 0.02)], [0.05, 0.1])
    advert = uncertain(model(
        "ADVERT1", "Advertising that shapes its own effect",
        [("SALES", "Sales, percent above trend")], [("ADVERT", "Advertising, percent")],
        [("CONST", "Constant")], steps("M", 8),
        ["A firm's sales respond to advertising with an uncertain effect (believed 0.6, "
         "variance 0.05); each campaign also changes that effect, here it wears out by 0.02 "
         "for every point of advertising (policy-to-parameter effect, N).",
         "OLIN takes the wear-out into account and OLF does not, so the two choose "
         "different advertising paths; compare their controls and criteria."],
        A=mat([[0.7]]), B=mat([[0.6]]), C=mat([[0]]), Z=col([0]), X0=col([0]), W=col([1]),
        LAMBDA=col([0.3]), XDES=col([5]), UDES=col([2]), G=mat([[-0.3]]), g=col([3]),
        forms=dict(policy="407"), N=mat([[-0.02]])),
        [("ADEFF", "Effect of advertising on sales", 1, 1, 1, 0.6, 0.05)], [0.2])
    caution = uncertain(gap_model(
        "CAUTION1", "A caution experiment",
        ["An economy built for the caution experiment (Preferences: Caution Experiment): the "
         "multiplier is uncertain with variance 0.04. Turn the experiment on with element "
         "(1,1) of SITT0, a value of 0.25 and period 1, then solve by OLF: the uncertainty "
         "is raised in that period and the first control moves less, the policy becomes "
         "more cautious.",
         "From the command line: ovaro-cli solve caution1.ovi --method olf --caution "
         "1,1,0.25,1, and without --caution for the plain OLF solution."], x0=-3),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.5, 0.04)], [0.05])
    return [credib, advert, caution]


def teaching():
    bigvar = uncertain(gap_model(
        "OLFWIN1", "Where OLF beats CE: a very uncertain multiplier",
        ["Teaching set, case 1. The multiplier is believed 0.4 with a large variance of "
         "0.16; the gap starts far from target. Certainty equivalence acts as if the "
         "multiplier were surely 0.4 and moves spending a lot; OLF, knowing that a large "
         "move also adds a large variance, moves less.",
         "Over 20 runs OLF has the lower average criterion, although CE has the lower "
         "criterion in more single runs: OLF gives up a little in most runs to avoid the "
         "large losses of the runs where the multiplier is far from 0.4. Compare with "
         "OLFLOSE1, where the uncertainty is small."], b=0.4, x0=-4, lam=0.1),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.4, 0.16)], [0.05])
    smallvar = uncertain(gap_model(
        "OLFLOSE1", "OLF does not beat CE: a well-known multiplier",
        ["Teaching set, case 2. The same economy as OLFWIN1, but the multiplier is known "
         "almost exactly (variance 0.001). OLF and CE then choose nearly the same policy and "
         "their average criteria agree to four digits; the extra work of OLF buys nothing.",
         "Together with OLFWIN1 and DRIFT1 it shows when the uncertainty matters: when it is "
         "large and multiplies the control."], b=0.4, x0=-4, lam=0.1),
        [("BMULT", "Spending multiplier", 1, 1, 1, 0.4, 0.001)], [0.05])
    twoway = uncertain(model(
        "OLFWIN2", "Where OLF beats CE: two uncertain instruments",
        [("YGAP", "Output gap, percent"), ("INFL", "Inflation, percent")],
        [("GSPEND", "Government spending, deviation"), ("RATE", "Policy rate, percent")],
        [("CONST", "Constant")], quarters(2027, 8),
        ["Teaching set, case 3. Both instruments have uncertain effects on the gap: "
         "spending (believed 0.5, variance 0.1) and the rate (believed -0.4, variance "
         "0.01). OLF shifts the work towards the better-known instrument, the rate; CE uses "
         "both as if they were equally sure.",
         "Compare the control paths of OLF and CE in one run, then the averages over 20 "
         "runs: OLF's is the lower one."],
        A=mat([[0.7, 0], [0.2, 0.7]]), B=mat([[0.5, -0.4], [0, 0]]), C=mat([[0.2], [0.4]]),
        Z=col([1]), X0=col([-3, 3]), W=col([1, 1]), LAMBDA=col([0.1, 0.1]), XDES=col([0, 2]),
        UDES=col([0, 2]), G=mat([[-0.5, 0], [0.4, 0.8]])),
        [("GMULT", "Effect of spending on the gap", 1, 1, 1, 0.5, 0.3),
         ("RATEEF", "Effect of the rate on the gap", 1, 1, 2, -0.4, 0.01)], [0.05, 0.05])
    persist = uncertain(gap_model(
        "OLFLOSE2", "OLF does not beat CE: uncertain persistence",
        ["Teaching set, case 4. Only the persistence of the gap is uncertain (variance "
         "0.01), a parameter that the policy cannot scale. OLF's correction for the variance "
         "is small and the two methods come close; the comparison shows which way the runs "
         "fall."], x0=-2),
        [("APERS", "Persistence of the output gap", 0, 1, 1, 0.8, 0.01)], [0.05])
    return [bigvar, smallvar, twoway, persist]


def sizes():
    regions, per = 4, 5
    names = [("YGAP", "output gap, percent"), ("INFL", "inflation, percent"),
             ("UNEMP", "unemployment, percent"), ("KINV", "investment, percent of GDP"),
             ("DEBT", "debt, percent of GDP")]
    n, k = regions * per, 2 * regions
    a = [[0.0] * n for _ in range(n)]
    b = [[0.0] * k for _ in range(n)]
    c = [[0.0] for _ in range(n)]
    x0, xdes, w = [], [], []
    own = [[0.6, 0, 0, 0.1, 0], [0.2, 0.7, 0, 0, 0], [-0.3, 0, 0.6, 0, 0],
           [0.2, 0, 0, 0.6, 0], [-0.3, 0, 0, 0, 1.0]]
    for r in range(regions):
        base = r * per
        for i in range(per):
            for j in range(per):
                a[base + i][base + j] = own[i][j]
        # Demand spills over to the neighbouring regions' output gaps.
        for other in ((r + 1) % regions, (r - 1) % regions):
            a[base][other * per] = 0.1
        b[base][r] = 0.5          # regional spending
        b[base][regions + r] = -0.3  # regional tax
        b[base + 4][r] = 1
        b[base + 4][regions + r] = -1
        b[base + 3][regions + r] = -0.1
        c[base + 1][0] = 0.4
        c[base + 2][0] = 2.4 + 0.4 * r
        c[base + 3][0] = 8
        x0 += [-1 - 0.5 * r, 1.5, 6 + r, 18, 60 + 10 * r]
        xdes += [0, 2, 5, 20, 60]
        w += [1, 1, 0.5, 0.2, 0.05]
    labels = [(f"{acr[:6]}{r + 1}", f"Region {r + 1} {desc}") for r in range(regions)
              for acr, desc in names]
    labels = [labels[r * per + i] for r in range(regions) for i in range(per)]
    big = model(
        "REGION20", "Four regions, twenty states, forty quarters", labels,
        [(f"GSP{r + 1}", f"Region {r + 1} spending, percent of GDP") for r in range(regions)] +
        [(f"TAX{r + 1}", f"Region {r + 1} tax rate, deviation") for r in range(regions)],
        [("CONST", "Constant")], quarters(2027, 40),
        ["A federation of four regions, each with five states (output gap, inflation, "
         "unemployment, investment and regional debt) and two instruments (regional "
         "spending and a regional tax): 20 states, 8 controls, 40 quarters. Demand spills "
         "over to the neighbouring regions, so every region's policy helps the others.",
         "The regions start at different points of the cycle and with different debts. The "
         "example shows the size of problem the workbench solves at once: a QLP solve takes "
         "a fraction of a second."],
        A=mat(a), B=mat(b), C=mat(c), X0=col(x0), W=col(w), LAMBDA=col([0.5] * k),
        XDES=col(xdes))
    six = uncertain(model(
        "SECTOR6", "Six sectors with two uncertain multipliers",
        [("AGRI", "Agriculture output, deviation"), ("MANUF", "Manufacturing output, dev."),
         ("CONSTR", "Construction output, deviation"), ("SERV", "Services output, deviation"),
         ("INFL", "Inflation, percent"), ("EMPL", "Employment, deviation")],
        [("GINFRA", "Infrastructure spending"), ("RATE", "Policy rate, deviation"),
         ("SUBS", "Farm subsidy")],
        [("CONST", "Constant")], years(2027, 2036),
        ["Six sectors linked by an input-output pattern: manufacturing buys from "
         "agriculture, construction from manufacturing, services from all. Infrastructure "
         "spending works through construction, the rate through manufacturing and "
         "construction, the subsidy through agriculture.",
         "Two effects are uncertain: that of infrastructure spending on construction (0.6, "
         "variance 0.04) and that of the rate on manufacturing (-0.3, variance 0.01). A "
         "medium-sized stochastic model for the comparison."],
        first=2027,
        A=mat([[0.6, 0, 0, 0, 0, 0], [0.1, 0.6, 0, 0, 0, 0], [0, 0.1, 0.5, 0, 0, 0],
               [0.05, 0.1, 0.1, 0.6, 0, 0], [0, 0.1, 0.05, 0.1, 0.7, 0],
               [0.1, 0.2, 0.2, 0.3, 0, 0.2]]),
        B=mat([[0, 0, 0.5], [0, -0.3, 0], [0.6, -0.2, 0], [0, 0, 0], [0, 0, 0], [0, 0, 0]]),
        C=mat([[0], [0], [0], [0], [0.6], [0]]), Z=col([1]),
        X0=col([-1, -2, -3, -1, 1, -2]), W=col([0.2, 0.5, 0.5, 0.5, 1, 1]),
        LAMBDA=col([0.3, 0.3, 0.3]), XDES=col([0, 0, 0, 0, 2, 0])),
        [("GINFR", "Effect of infrastructure on construction", 1, 3, 1, 0.6, 0.04),
         ("RATEM", "Effect of the rate on manufacturing", 1, 2, 2, -0.3, 0.01)],
        [0.1, 0.1, 0.1, 0.1, 0.05, 0.1])
    return [big, six]


GENERIC, OPEN = "Generic closed economy", "Small open economy"
STOCH = {"1720": "Deterministic", "1722": "Additive noise", "1724": "Parameter uncertainty",
         "1728": "Measurement error"}


def library():
    """The rows of the example table, in menu order. Groups of examples follow each other with
    one unused id between them, so that an example added to a group later keeps the ids of the
    others."""
    team = "Ovaro team"
    by_acronym = {}
    for m in ([TRACK1, INFL2, LEARN1] + closed_economy() + open_economy() +
              forward_looking() + pindyck() + markets_and_firms() + growth() + uncertainty() +
              measurement() + policy_and_caution() + teaching() + sizes()):
        by_acronym[m["acronym"]] = m
    groups = [
        [("TRACK1", team, GENERIC, "Regular, constant", "Stabilisation"),
         ("INFL2", team, GENERIC, "Regular, time-varying paths", "Inflation targeting"),
         ("LEARN1", team, GENERIC, "Regular, constant", "Learning and caution"),
         ("KCROSS2", "Keynesian income-expenditure", GENERIC, "Regular, constant",
          "Fiscal policy"),
         ("MULACC2", "Samuelson multiplier-accelerator", GENERIC,
          "Regular, time-varying paths", "Stabilisation"),
         ("FISCAL3", team, GENERIC, "Terminal-different W", "Fiscal policy"),
         ("TINB3", "Tinbergen targets and instruments", GENERIC, "Time-varying W or Lambda",
          "Fiscal policy"),
         ("ELECT2", "Nordhaus political business cycle", GENERIC, "Time-varying W or Lambda",
          "Fiscal policy"),
         ("REGUL3", "Hicks IS-LM", GENERIC, "Quadratic-form criterion", "Monetary policy"),
         ("PHIL2", "Accelerationist Phillips curve", GENERIC, "Quadratic-form criterion",
          "Inflation targeting")],
        [("MUNDFL3", "Mundell-Fleming open economy", OPEN, "Regular, time-varying paths",
          "Open economy"),
         ("EMERG3", team, "Emerging market", "Regular, constant", "Open economy"),
         ("COMEXP2", team, "Commodity exporter", "Regular, constant", "Fiscal policy")],
        [("DORN2", "Dornbusch overshooting", OPEN, "Forward variables, lead 1", "Open economy"),
         ("NKFWD2", "New Keynesian Phillips curve", GENERIC, "Forward variables, lead 2",
          "Inflation targeting"),
         ("CAGAN2", "Cagan money demand", GENERIC, "Forward variables, lead 2",
          "Monetary policy"),
         ("WAGE3", "Taylor staggered contracts", GENERIC, "Forward variables, lead 3",
          "Monetary policy"),
         ("HOUSE3", team, GENERIC, "Forward variables, lead 3", "Housing"),
         ("FWDNZ1", team, GENERIC, "Forward variables, lead 1", "Stabilisation")],
        [("PIND2", "Hicks IS-LM", GENERIC, "Pindyck form", "Monetary policy"),
         ("PIND3", "Mundell-Fleming open economy", OPEN, "Pindyck form", "Open economy"),
         ("PINDFW2", team, GENERIC, "Pindyck form", "Inflation targeting")],
        [("COBWEB2", "Ezekiel cobweb", "World commodity market", "Regular, constant",
          "Commodity market"),
         ("COBNZ2", "Ezekiel cobweb", "World commodity market", "Regular, constant",
          "Commodity market"),
         ("BUFFER1", team, "World commodity market", "Regular, constant", "Commodity market"),
         ("INVENT2", "Holt-Modigliani-Muth-Simon production smoothing", "Firm",
          "Regular, time-varying paths", "Inventory"),
         ("INVNZ2", "Holt-Modigliani-Muth-Simon production smoothing", "Firm",
          "Regular, constant", "Inventory"),
         ("INVMS2", team, "Firm", "Regular, constant", "Inventory")],
        [("SOLOW2", "Solow-Swan growth", GENERIC, "Regular, constant", "Growth"),
         ("HDOMAR1", "Harrod-Domar growth", GENERIC, "Regular, time-varying paths", "Growth"),
         ("PUBCAP3", team, GENERIC, "Time-varying W or Lambda", "Growth")],
        [("BRAIN1", "Brainard multiplicative uncertainty", GENERIC, "Regular, constant",
          "Learning and caution"),
         ("DRIFT1", team, GENERIC, "Regular, constant", "Learning and caution"),
         ("UNCABC2", team, GENERIC, "Regular, constant", "Learning and caution"),
         ("CBDM1", team, GENERIC, "Regular, constant", "Learning and caution"),
         ("CBDM2", team, GENERIC, "Regular, constant", "Learning and caution"),
         ("READIN1", team, GENERIC, "Regular, constant", "Learning and caution")],
        [("MEASY2", team, GENERIC, "Regular, constant", "Measurement and filtering"),
         ("TVP1", team, GENERIC, "Regular, constant", "Measurement and filtering"),
         ("TVP2", team, OPEN, "Regular, constant", "Measurement and filtering"),
         ("READIN2", team, GENERIC, "Regular, constant", "Measurement and filtering")],
        [("CREDIB2", team, GENERIC, "Policy-to-parameter effect", "Monetary policy"),
         ("ADVERT1", "Nerlove-Arrow advertising", "Firm", "Policy-to-parameter effect",
          "Marketing"),
         ("CAUTION1", team, GENERIC, "Regular, constant", "Learning and caution")],
        [("OLFWIN1", team, GENERIC, "Regular, constant", "Teaching: OLF and CE"),
         ("OLFLOSE1", team, GENERIC, "Regular, constant", "Teaching: OLF and CE"),
         ("OLFWIN2", team, GENERIC, "Regular, constant", "Teaching: OLF and CE"),
         ("OLFLOSE2", team, GENERIC, "Regular, constant", "Teaching: OLF and CE")],
        [("REGION20", team, "Federation of regions", "Regular, constant", "Large models"),
         ("SECTOR6", "Leontief input-output", GENERIC, "Regular, constant", "Large models")],
    ]
    rows = []
    slot = 0
    for group in groups:
        for acronym, author, country, form, subject in group:
            m = by_acronym[acronym]
            rows.append(row(3600 + 4 * slot, acronym.lower(), m["name"], author, country, form,
                            STOCH[m["stoch"]], subject, m))
            slot += 1
        slot += 1
    return rows
