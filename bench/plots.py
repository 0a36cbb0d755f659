#!/usr/bin/env python3
"""Times plots as PDF of 100,000 references of 13 lines and circles each, and the peer's on the same drawing.

    bench/plots.py [--program build/bin/verdelis] [--references 100000] [--rounds 3]

Prints processor time (both threads of a program count) and elapsed time of the best round, and the size of the file.
The peer is LibreCAD's dxf2pdf where it is installed.
"""
import argparse, os, resource, shutil, subprocess, sys, tempfile, time

HERE = os.path.dirname(os.path.abspath(__file__))

def timed(command, rounds, environment):
    best = None
    for _ in range(rounds):
        before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.perf_counter()
        done = subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        after, elapsed = resource.getrusage(resource.RUSAGE_CHILDREN), time.perf_counter() - start
        if done.returncode != 0:
            sys.exit('%s: %s' % (command[0], done.stderr.decode(errors='replace')))
        cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        best = min(best or (cpu, elapsed), (cpu, elapsed))
    return best

def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument('--program', default=os.path.join(HERE, '..', 'build', 'bin', 'verdelis'))
    arguments.add_argument('--references', type=int, default=100000)
    arguments.add_argument('--rounds', type=int, default=3)
    a = arguments.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        drawing, page = os.path.join(folder, 'plan.dxf'), os.path.join(folder, 'plan.pdf')
        subprocess.run([sys.executable, os.path.join(HERE, 'make_big_drawing.py'), drawing, '--inserts', str(a.references),
                        '--polylines', '0', '--texts', '0', '--parts', '13'], check=True)
        environment = dict(os.environ, QT_QPA_PLATFORM='offscreen', HOME=folder, XDG_RUNTIME_DIR=folder)
        rows = [('verdelis plot', [a.program, 'plot', drawing, page, '--root', os.path.join(folder, 'root')], page)]
        peer = shutil.which('librecad')
        if peer:
            # It takes no folder for the result: it writes where it stands.
            rows.append(('librecad dxf2pdf', [peer, 'dxf2pdf', '-a', drawing], page))
        os.chdir(folder)
        times = []
        for name, command, result in rows:
            if os.path.exists(result):
                os.remove(result)
            cpu, elapsed = timed(command, a.rounds, environment)
            times.append(cpu)
            print('%-20s %6.2f s processor  %6.2f s elapsed  %6.1f MB' % (name, cpu, elapsed, os.path.getsize(result) / 1e6))
        print('librecad: not installed' if not peer else '%.1f times as fast' % (times[1] / times[0]))

if __name__ == '__main__':
    main()
