#!/usr/bin/env python3
"""Draws a planting plan: beds bounded by loose lines, arcs, splines and polylines, with islands, copies and faults.

Writes OUT.crv, a curve a line, and OUT.truth, a zone a line: area of the outline, number of islands, centre of gravity.
The same options give the same bytes. Standard library only.

Curves: L x1 y1 x2 y2 | A cx cy r from to | C cx cy r | P closed n (x y bulge)... | S four points of a cubic span |
N degree n knots... points... | E cx cy ux uy vx vy from sweep (radians)
"""
import argparse
import math
import random
import sys

ap = argparse.ArgumentParser()
ap.add_argument("-n", "--beds", type=int, default=400)
ap.add_argument("--seed", type=int, default=1)
ap.add_argument("--gap", type=float, default=0.0, help="largest gap cut off curve ends")
ap.add_argument("--gap-frac", type=float, default=0.08)
ap.add_argument("--fuzz", type=float, default=4e-6, help="end error below the 1e-5 tolerance")
ap.add_argument("--dup", type=float, default=0.03)
ap.add_argument("--overshoot", type=float, default=0.15)
ap.add_argument("--islands", type=float, default=0.15)
ap.add_argument("--runs", type=float, default=0.8, help="part of every third row drawn as long curves (T-junctions)")
ap.add_argument("--lines-only", action="store_true", help="no arcs and splines")
ap.add_argument("--clean", action="store_true", help="no T-junctions, duplicates, fuzz, overshoots")
ap.add_argument("--smooth", type=float, default=0.0,
                help="part of the curves drawn as arcs of ellipses and splines of several spans")
ap.add_argument("--origin", type=float, nargs=2, default=(5000.0, 3000.0))
ap.add_argument("out")
a = ap.parse_args()
if a.clean:
    a.fuzz = a.dup = a.overshoot = a.runs = 0.0
R = random.Random(a.seed)
S = 10.0
N = a.beds
nx = max(1, math.ceil(math.sqrt(N)))
ny = math.ceil(N / nx)
OX, OY = a.origin  # added when writing: truth far out is as exact as near

GL = []          # 8-point Gauss-Legendre on [0,1]
for x, w in ((0.1834346424956498, 0.3626837833783620), (0.5255324099163290, 0.3137066458778873),
             (0.7966664774136267, 0.2223810344533745), (0.9602898564975363, 0.1012285362903763)):
    GL += [(0.5 + x / 2, w / 2), (0.5 - x / 2, w / 2)]


def arc_of(p, q, b):
    """centre, radius, start angle, signed sweep of the bulge segment"""
    th = 4 * math.atan(b)
    dx, dy = q[0] - p[0], q[1] - p[1]
    c = math.hypot(dx, dy)
    r = c / 2 / abs(math.sin(th / 2))
    h = c / 2 / math.tan(th / 2)
    cx, cy = (p[0] + q[0]) / 2 - dy / c * h, (p[1] + q[1]) / 2 + dx / c * h
    return cx, cy, r, math.atan2(p[1] - cy, p[0] - cx), th


def bez(c, t):
    u = 1 - t
    w = (u * u * u, 3 * u * u * t, 3 * u * t * t, t * t * t)
    return sum(w[k] * c[k][0] for k in range(4)), sum(w[k] * c[k][1] for k in range(4))


def bezd(c, t):
    u = 1 - t
    w = (3 * u * u, 6 * u * t, 3 * t * t)
    return tuple(sum(w[k] * (c[k + 1][m] - c[k][m]) for k in range(3)) for m in (0, 1))


def sub_bez(c, t0, t1):
    p, q = bez(c, t0), bez(c, t1)
    d, e = bezd(c, t0), bezd(c, t1)
    k = (t1 - t0) / 3
    return [p, (p[0] + d[0] * k, p[1] + d[1] * k), (q[0] - e[0] * k, q[1] - e[1] * k), q]


def cr(p, q):
    return p[0] * q[1] - p[1] * q[0]


def ell(g, t):
    """point and derivative of an elliptical arc"""
    cx, cy, ux, uy, vx, vy, a0, th = g[1:]
    co, si = math.cos(a0 + th * t), math.sin(a0 + th * t)
    return (cx + ux * co + vx * si, cy + uy * co + vy * si,
            (vx * co - ux * si) * th, (vy * co - uy * si) * th)


def ellipse_arc(p, q, b, k):
    """the arc of a bulge, stretched by k across its chord"""
    cx, cy, r, a0, th = arc_of(p, q, b)
    length = math.hypot(q[0] - p[0], q[1] - p[1])
    nx_, ny_ = -(q[1] - p[1]) / length, (q[0] - p[0]) / length

    def stretch(x, y):
        d = (x * nx_ + y * ny_) * (k - 1)
        return x + d * nx_, y + d * ny_
    c = stretch(cx - p[0], cy - p[1])
    return ("E", p[0] + c[0], p[1] + c[1], *stretch(r, 0.0), *stretch(0.0, r), a0, th)


def with_knots(c, new):
    """the cubic span as a spline of several spans (Boehm's insertion)"""
    knots, pts = [0.0] * 4 + [1.0] * 4, list(c)
    for t in new:
        k = max(i for i in range(len(knots) - 1) if knots[i] <= t)
        merged = []
        for i in range(len(pts) + 1):
            if i <= k - 3:
                merged.append(pts[i])
            elif i > k:
                merged.append(pts[i - 1])
            else:
                f = (t - knots[i]) / (knots[i + 3] - knots[i])
                merged.append(tuple((1 - f) * pts[i - 1][m] + f * pts[i][m] for m in (0, 1)))
        pts = merged
        knots.insert(k + 1, t)
    return knots, pts


def contrib(g):
    """(area, first moments) of Green's integral along the geometry, forward"""
    k = g[0]
    if k == "L":
        (x1, y1), (x2, y2) = g[1], g[2]
        return (0.5 * (x1 * y2 - x2 * y1), (y2 - y1) * (x1 * x1 + x1 * x2 + x2 * x2) / 6,
                -(x2 - x1) * (y1 * y1 + y1 * y2 + y2 * y2) / 6)
    mx = my = 0.0
    if k == "A":
        p, q, b = g[1:]
        cx, cy, r, a0, th = arc_of(p, q, b)
        area = 0.5 * cr(p, q) + r * r / 2 * (th - math.sin(th))
        for t, w in GL:
            an = a0 + th * t
            co, si = math.cos(an), math.sin(an)
            x, y = cx + r * co, cy + r * si
            mx += w * 0.5 * x * x * r * co * th
            my += w * 0.5 * y * y * r * si * th
        return area, mx, my
    if k == "E":
        area = 0.0
        for t, w in GL:
            x, y, dx, dy = ell(g, t)
            area += w * 0.5 * (x * dy - y * dx)
            mx += w * 0.5 * x * x * dy
            my -= w * 0.5 * y * y * dx
        return area, mx, my
    c = g[1]
    area = (6 * cr(c[0], c[1]) + 3 * cr(c[0], c[2]) + cr(c[0], c[3]) + 3 * cr(c[1], c[2])
            + 3 * cr(c[1], c[3]) + 6 * cr(c[2], c[3])) / 20
    for t, w in GL:
        x, y = bez(c, t)
        d = bezd(c, t)
        mx += w * 0.5 * x * x * d[1]
        my -= w * 0.5 * y * y * d[0]
    return area, mx, my


# ---------------------------------------------------------------- nodes and edges
J = 0.10 * S
V = [[(i * S + R.uniform(-J, J), j * S + R.uniform(-J, J)) for j in range(ny + 1)] for i in range(nx + 1)]


def kept(i, j):
    return 0 <= i < nx and 0 <= j < ny and j * nx + i < N


def rnd_geom(p, q):
    u = R.random()
    if a.smooth and R.random() < a.smooth:
        return ellipse_arc(p, q, R.choice((-1, 1)) * R.uniform(0.03, 0.16), R.uniform(0.4, 1.8))
    if a.lines_only or u < 0.5:
        return ("L", p, q)
    if u < 0.85:
        return ("A", p, q, R.choice((-1, 1)) * R.uniform(0.03, 0.16))
    dx, dy = q[0] - p[0], q[1] - p[1]
    s, t = R.uniform(-.12, .12), R.uniform(-.12, .12)
    return ("S", [p, (p[0] + dx / 3 - dy * s, p[1] + dy / 3 + dx * s),
                  (p[0] + 2 * dx / 3 - dy * t, p[1] + 2 * dy / 3 + dx * t), q])


out = []            # emitted curves
hor, ver = {}, {}
on_run = set()      # nodes a long curve passes through
run_edges = set()
for j in range(1, ny):
    if j % 3 != 1 or R.random() > a.runs:
        continue
    i = 0
    while i + 2 <= nx:
        b = min(nx, i + R.randint(2, 5))
        m = b - i
        if m < 2 or not all(kept(k, j) or kept(k, j - 1) for k in range(i, b)):
            break
        p, q = V[i][j], V[b][j]
        u = R.random()
        ts = [0.0] + [(k + R.uniform(-.12, .12)) / m for k in range(1, m)] + [1.0]
        dx, dy = q[0] - p[0], q[1] - p[1]
        if a.lines_only or u < 0.5:
            g = ("L", p, q)
            pts = [(p[0] + dx * t, p[1] + dy * t) for t in ts]
            pts[0], pts[-1] = p, q
            subs = [("L", pts[k], pts[k + 1]) for k in range(m)]
        elif u < 0.85:
            bg = R.choice((-1, 1)) * R.uniform(0.02, 0.05)
            g = ("A", p, q, bg)
            cx, cy, r, a0, th = arc_of(p, q, bg)
            pts = [(cx + r * math.cos(a0 + th * t), cy + r * math.sin(a0 + th * t)) for t in ts]
            pts[0], pts[-1] = p, q
            subs = [("A", pts[k], pts[k + 1], math.tan(th * (ts[k + 1] - ts[k]) / 4)) for k in range(m)]
        else:
            s, t2 = R.uniform(-.03, .03), R.uniform(-.03, .03)
            c = [p, (p[0] + dx / 3 - dy * s, p[1] + dy / 3 + dx * s),
                 (p[0] + 2 * dx / 3 - dy * t2, p[1] + 2 * dy / 3 + dx * t2), q]
            g = ("S", c)
            subs = [("S", sub_bez(c, ts[k], ts[k + 1])) for k in range(m)]
            pts = [bez(c, t) for t in ts]
            pts[0], pts[-1] = p, q
        for k in range(1, m):
            V[i + k][j] = pts[k]
            on_run.add((i + k, j))
        for k in range(m):
            hor[i + k, j] = subs[k]
            run_edges.add((i + k, j))
        out.append(g)
        i = b

cut_nodes = set()
stubs = []          # (place in out, edge, its changes at the ends, nodes) of edges that stand out over a run


def emit(g, n0, n1):
    """emit one edge between nodes n0, n1 with the wanted faults"""
    ch = [0.0, 0.0]     # lengthening (+) or cutting (-) at either end
    if g[0] not in "SE":
        for e, n in ((0, n0), (1, n1)):
            u = R.random()
            if n in on_run:
                if a.gap > 0 and u < a.gap_frac and n not in cut_nodes:
                    ch[e] = -a.gap * R.uniform(.2, .95)
                    cut_nodes.add(n)
                elif u < a.gap_frac + a.overshoot:
                    ch[e] = S * R.uniform(.02, .05)
                elif R.random() < .5:
                    ch[e] = R.uniform(-a.fuzz, a.fuzz)
            elif a.gap > 0 and u < a.gap_frac and n not in cut_nodes:
                ch[e] = -a.gap * R.uniform(.2, .95)
                cut_nodes.add(n)
            elif u > .8:
                ch[e] = -a.fuzz * R.random()
        if max(ch) > a.fuzz:
            stubs.append((len(out), g, ch, (n0, n1)))
    out.append(changed(g, *ch))


def changed(g, ch0, ch1):
    """the edge with its ends lengthened or cut"""
    if g[0] == "L" and (ch0 or ch1):
        (x1, y1), (x2, y2) = g[1], g[2]
        if ch0 or ch1:
            L = math.hypot(x2 - x1, y2 - y1)
            ux, uy = (x2 - x1) / L, (y2 - y1) / L
            g = ("L", (x1 - ux * ch0, y1 - uy * ch0), (x2 + ux * ch1, y2 + uy * ch1))
    elif g[0] == "A" and (ch0 or ch1):
        cx, cy, r, a0, th = arc_of(*g[1:])
        s = 1 if th > 0 else -1
        a1 = a0 + th + s * ch1 / r
        a0 -= s * ch0 / r
        g = ("R", cx, cy, r, a0, a1) if s > 0 else ("R", cx, cy, r, a1, a0)
    return g


def point(g, t):
    """a point of an edge, also beyond its ends for lines and arcs"""
    if g[0] == "L":
        return tuple(g[1][m] + (g[2][m] - g[1][m]) * t for m in (0, 1))
    if g[0] == "A":
        cx, cy, r, a0, th = arc_of(*g[1:])
        return cx + r * math.cos(a0 + th * t), cy + r * math.sin(a0 + th * t)
    return bez(g[1], t) if g[0] == "S" else ell(g, t)[:2]


def encloses(g, end, stub, other, node):
    """whether an edge that goes on beyond a node, or is extended there, meets the one that begins there once more, with a
    real zone between them"""
    length = math.hypot(g[2][0] - g[1][0], g[2][1] - g[1][1])
    far = point(other, 1)
    back = math.hypot(far[0] - node[0], far[1] - node[1]) < S / 2
    sides = []
    for i in range(1, 80):
        beyond = 1.1 * (stub + a.gap) * i / 79 / length
        p = point(g, 1 + beyond if end else -beyond)
        p = (p[0] - node[0], p[1] - node[1])
        d = math.hypot(*p)
        low, high = 0.0, 0.5
        for _ in range(40):         # the other edge's point as far from the node
            t = (low + high) / 2
            q = point(other, 1 - t if back else t)
            low, high = (t, high) if math.hypot(q[0] - node[0], q[1] - node[1]) < d else (low, t)
        sides.append(cr(p, (q[0] - node[0], q[1] - node[1])) / d)
    return min(sides) < -2e-5 and max(sides) > 2e-5 or (
        max(map(abs, sides)) > 2e-5 and abs(sides[-1]) < 0.05 * max(map(abs, sides)))


for j in range(ny + 1):
    for i in range(nx):
        if (i, j) not in hor and (kept(i, j) or kept(i, j - 1)):
            hor[i, j] = rnd_geom(V[i][j], V[i + 1][j])
            emit(hor[i, j], (i, j), (i + 1, j))
for i in range(nx + 1):
    j = 0
    while j < ny:
        if not (kept(i, j) or kept(i - 1, j)):
            j += 1
            continue
        m = R.randint(2, 5) if i % 4 == 2 else 1
        es = []
        while len(es) < m and j < ny and (kept(i, j) or kept(i - 1, j)):
            g = rnd_geom(V[i][j], V[i][j + 1])
            if m > 1 and g[0] in "SE":
                g = ("L", V[i][j], V[i][j + 1])
            ver[i, j] = g
            es.append(g)
            j += 1
        if m > 1 and len(es) > 1:
            vs = [(g[1][0], g[1][1], g[3] if g[0] == "A" else 0.0) for g in es] + [(es[-1][2][0], es[-1][2][1], 0.0)]
            out.append(("P", 0, vs))
        else:
            for k, g in enumerate(es):
                jj = j - len(es) + k
                emit(g, (i, jj), (i, jj + 1))

# An end that stands out and crosses the edge beyond encloses a zone that nobody drew: such ends are left as they were.
for place, g, ch, nodes in stubs:
    for end in (0, 1):
        i, j = nodes[end]
        other = ver.get((i, j) if end else (i, j - 1))
        if ch[end] > a.fuzz and other and encloses(g, end, ch[end], other, V[i][j]):
            ch[end] = 0.0
            out[place] = changed(g, *ch)

# ---------------------------------------------------------------- truth: beds, islands
zones = []
CH = {k: contrib(g) for k, g in hor.items()}
CV = {k: contrib(g) for k, g in ver.items()}


def add_zone(area, cx, cy, kind, parent):
    zones.append({"id": len(zones), "kind": kind, "parent": parent, "gross": area, "net": area,
                  "cx": cx, "cy": cy, "holes": []})
    z = zones[-1]
    if parent is not None:
        zones[parent]["holes"].append(z["id"])
        zones[parent]["net"] -= area
    return z["id"]


for c in range(N):
    i, j = c % nx, c // nx
    p, q, r, s = CH[i, j], CV[i + 1, j], CH[i, j + 1], CV[i, j]
    A, mx, my = (p[k] + q[k] - r[k] - s[k] for k in range(3))
    add_zone(A, mx / A, my / A, "bed", None)
for c in range(N):
    if R.random() > a.islands:
        continue
    i, j = c % nx, c // nx
    mxp = [sum(v[k] for v in (V[i][j], V[i + 1][j], V[i][j + 1], V[i + 1][j + 1])) / 4 for k in (0, 1)]
    for side in ((-1,), (1,), (-1, 1))[R.randrange(3)]:
        x, y = mxp[0] + side * .17 * S, mxp[1] + R.uniform(-.08, .08) * S
        u, r = R.random(), R.uniform(.06, .10) * S
        if a.smooth and R.random() < a.smooth:
            k, an = R.uniform(.5, 1), R.uniform(0, 3)
            co, si = math.cos(an), math.sin(an)
            out.append(("E", x, y, r * co, r * si, -k * r * si, k * r * co, R.uniform(0, 6), 2 * math.pi))
            add_zone(math.pi * r * r * k, x, y, "island", c)
        elif u < .45 and not a.lines_only:
            out.append(("C", x, y, r))
            z = add_zone(math.pi * r * r, x, y, "island", c)
            if R.random() < .4:
                r2 = r * R.uniform(.3, .6)
                out.append(("C", x, y, r2))
                add_zone(math.pi * r2 * r2, x, y, "island", z)
        elif u < .75 and not a.lines_only:
            h = r * R.uniform(.3, .7)          # capsule: straight part 2h, caps of radius r
            out.append(("P", 1, [(x - r, y - h, 1.0), (x + r, y - h, 0.0), (x + r, y + h, 1.0), (x - r, y + h, 0.0)]))
            add_zone(math.pi * r * r + 4 * r * h, x, y, "island", c)
        else:
            an = R.uniform(0, 1.5)
            co, si = r * math.cos(an), r * math.sin(an)
            q = [(x + co, y + si), (x - si, y + co), (x - co, y - si), (x + si, y - co)]
            for k in range(4):
                out.append(("L", q[k], q[(k + 1) % 4]))
            add_zone(2 * r * r, x, y, "island", c)

# ---------------------------------------------------------------- duplicates
for g in [g for g in out if R.random() < a.dup]:
    u = R.random()
    if g[0] == "L":
        (x1, y1), (x2, y2) = g[1], g[2]
        if u < .3:
            out.append(g)
        elif u < .5:
            out.append(("L", g[2], g[1]))
        elif u < .7:
            out.append(("L", (x1 + 2e-6, y1 - 2e-6), (x2 + 2e-6, y2 - 2e-6)))
        else:
            t0, t1 = R.uniform(0, .4), R.uniform(.6, 1)
            out.append(("L", (x1 + (x2 - x1) * t0, y1 + (y2 - y1) * t0), (x1 + (x2 - x1) * t1, y1 + (y2 - y1) * t1)))
    elif g[0] in "AR":
        if g[0] == "A":
            cx, cy, r, a0, th = arc_of(*g[1:])
            b0, b1 = (a0, a0 + th) if th > 0 else (a0 + th, a0)
        else:
            cx, cy, r, b0, b1 = g[1:]
        if u < .5:
            out.append(g)
        else:
            t0, t1 = R.uniform(0, .4), R.uniform(.6, 1)
            out.append(("R", cx, cy, r, b0 + (b1 - b0) * t0, b0 + (b1 - b0) * t1))
    elif g[0] == "S" and u < .5:
        out.append(("S", g[1][::-1]))
    else:
        out.append(g)
R.shuffle(out)

# ---------------------------------------------------------------- writers


def norm_arc(g):
    if g[0] == "A":
        cx, cy, r, a0, th = arc_of(*g[1:])
        return (cx, cy, r, a0, a0 + th) if th > 0 else (cx, cy, r, a0 + th, a0)
    return g[1:]


def at(p):
    """a point as it is written"""
    return p[0] + OX, p[1] + OY


nseg = 0
with open(a.out + ".crv", "w") as f:
    for g in out:
        k = g[0]
        if k == "L":
            f.write("L %r %r %r %r\n" % (*at(g[1]), *at(g[2])))
            nseg += 1
        elif k in "AR":
            f.write("A %r %r %r %r %r\n" % (*at(norm_arc(g)), *norm_arc(g)[2:]))
            nseg += 1
        elif k == "C":
            f.write("C %r %r %r\n" % (*at(g[1:]), g[3]))
            nseg += 1
        elif k == "E":
            f.write("E %r %r %r %r %r %r %r %r\n" % (*at(g[1:]), *g[3:]))
            nseg += 1
        elif k == "S" and a.smooth and R.random() < 0.7:
            knots, pts = with_knots(g[1], sorted(R.uniform(0.1, 0.9) for _ in range(R.randint(1, 4))))
            f.write("N 3 %d " % len(pts) + " ".join(map(repr, knots)) + " " + " ".join("%r %r" % at(p) for p in pts) + "\n")
            nseg += 1
        elif k == "S":
            f.write("S " + " ".join("%r %r" % at(p) for p in g[1]) + "\n")
            nseg += 1
        else:
            f.write("P %d %d " % (g[1], len(g[2])) + " ".join("%r %r %r" % (*at(p), p[2]) for p in g[2]) + "\n")
            nseg += len(g[2]) - (0 if g[1] else 1)

with open(a.out + ".truth", "w") as f:
    for z in zones:
        f.write("%r %d %r %r\n" % (z["gross"], len(z["holes"]), *at((z["cx"], z["cy"]))))
print("%d zones, %d curves, %d segments" % (len(zones), len(out), nseg), file=sys.stderr)
