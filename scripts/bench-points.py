#!/usr/bin/env python3
"""A large points file for measuring zel station: the sample's measured points
repeated, each copy moved by a few centimetres so that no two rows are the
same point, with ids that stay unique.

    scripts/bench-points.py OUT ROWS [SOURCE]

ROWS rows of id,east,north,height are written to OUT (a header first), taken
from SOURCE (default data/sample/points.csv) copy after copy. The movement is
drawn from a fixed seed, so the same ROWS gives the same file. The file is
made for a run and thrown away, never kept in the repository.
"""
import random
import sys

# Largest movement of a copied point, metres: small against the sample's
# offsets from the track (a few metres), so every copy stays near the same
# elements, large enough that each copy needs a foot of its own.
JITTER_M = 0.05


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    out, rows = sys.argv[1], int(sys.argv[2])
    source = sys.argv[3] if len(sys.argv) == 4 else "data/sample/points.csv"
    lines = open(source).read().splitlines()
    points = []
    for line in lines[1:]:
        f = line.split(",")
        points.append((f[0], float(f[1]), float(f[2]), f[3] if len(f) > 3 else ""))
    rng = random.Random(16)
    with open(out, "w") as f:
        f.write("id,east,north,height\n")
        written = 0
        copy = 0
        while written < rows:
            for pid, e, n, h in points:
                if written == rows:
                    break
                de = rng.uniform(-JITTER_M, JITTER_M)
                dn = rng.uniform(-JITTER_M, JITTER_M)
                f.write("C%04d%s,%.4f,%.4f,%s\n" % (copy, pid, e + de, n + dn, h))
                written += 1
            copy += 1


if __name__ == "__main__":
    main()
