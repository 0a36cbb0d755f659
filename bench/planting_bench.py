#!/usr/bin/env python3
"""Measures laying out rows of plants with the program: one line per workload.

    bench/planting_bench.py [build/bin/verdelis]

Each is a run of a script, less the time of opening the drawing and doing nothing."""
import math
import os
import subprocess
import sys
import tempfile
import time

PROGRAM = sys.argv[1] if len(sys.argv) > 1 else 'build/bin/verdelis'


def drawing(path, vertices, closed):
    """A symbol (handle A1) and a winding polyline (A2) of 1 m arcs, or a closed one round a circle."""
    groups = [(0, 'SECTION'), (2, 'HEADER'), (9, '$ACADVER'), (1, 'AC1009'), (0, 'ENDSEC'),
              (0, 'SECTION'), (2, 'BLOCKS'),
              (0, 'BLOCK'), (8, 0), (2, 'TREE'), (70, 0), (10, 0), (20, 0), (30, 0), (3, 'TREE'),
              (0, 'CIRCLE'), (8, 0), (10, 300), (20, 100), (30, 0), (40, 500), (0, 'ENDBLK'), (8, 0),
              (0, 'ENDSEC'), (0, 'SECTION'), (2, 'ENTITIES'),
              (0, 'INSERT'), (5, 'A1'), (8, 0), (2, 'TREE'), (10, 0), (20, -9000), (30, 0),
              (0, 'POLYLINE'), (5, 'A2'), (8, 0), (66, 1), (70, int(closed)), (10, 0), (20, 0), (30, 0)]
    for i in range(vertices):
        if closed:
            angle, radius = 2 * math.pi * i / vertices, vertices * 1000 / (2 * math.pi)
            x, y = radius * math.cos(angle), radius * math.sin(angle)
        else:
            x, y = i * 1000, 8000 * math.sin(i * 0.11)
        groups += [(0, 'VERTEX'), (8, 0), (10, x), (20, y), (30, 0), (42, 0.3 if i % 2 else -0.3)]
    groups += [(0, 'SEQEND'), (8, 0), (0, 'ENDSEC'), (0, 'EOF')]
    with open(path, 'w') as file:
        file.writelines('%d\n%s\n' % group for group in groups)


def seconds(arguments):
    best = math.inf
    for _ in range(3):
        start = time.perf_counter()
        done = subprocess.run([PROGRAM, 'run'] + arguments, capture_output=True, text=True, check=False)
        best = min(best, time.perf_counter() - start)
    return best, done.stdout


with tempfile.TemporaryDirectory() as folder:
    os.environ['VERDELIS_ROOT'] = os.path.join(folder, 'root')
    for closed in (False, True):
        path = os.path.join(folder, 'path.dxf')
        drawing(path, 20000, closed)
        nothing, _ = seconds([path])
        for count in (25000, 100000):
            lines = ['BLOCKARRAY', '#A2', 'D', str(count), '', '#A1', '']
            script = os.path.join(folder, 'script.scr')
            # Answers are remembered, so each run begins by the shipped ones.
            with open(script, 'w') as file:
                file.write('\n'.join(lines) + '\n')
            best = math.inf
            for _ in range(3):
                subprocess.run(['rm', '-rf', os.environ['VERDELIS_ROOT']], check=True)
                subprocess.run([PROGRAM, 'run', path], capture_output=True, check=True)
                start = time.perf_counter()
                done = subprocess.run([PROGRAM, 'run', path, '-s', script], capture_output=True, text=True,
                                      check=False)
                best = min(best, time.perf_counter() - start)
            wanted = '已布置%d个图块' % (count - closed)
            if wanted not in done.stdout:
                sys.exit('BLOCKARRAY said: ' + done.stdout + done.stderr)
            print('%-52s %.2f s' % ('BLOCKARRAY, %d copies, %s path of 20,000 arcs'
                                    % (count, 'closed' if closed else 'open'), best - nothing))
