"""Puts random one-line faults into the plug-in and reports those that no test notices.

    ./test --mutants N [SEED] [--in PART]

N faults, the same ones for the same seed (1 otherwise) and the same sources, in files whose path has PART in it.

Faults whose code is the same as before don't count, nor do those that don't compile: others are drawn in their
place. The tree is only read; everything is built in build/mutants.
"""
import argparse
import concurrent.futures
import os
import pathlib
import random
import shutil
import subprocess
import sys
import time

from faults import faults_in
from workshop import Bench, Build

PLUGIN = 'platform_abstraction_layer/platform_abstraction_layer_windows/src/plugins/pm_limited_support'
LEAST_SECONDS = 10


class Judge:
    """Runs the tests on a fault, those first that notice most faults of its folder for their time."""

    def __init__(self, seconds: dict[str, float]):
        self.seconds = seconds  # of each test on the library without a fault
        self.noticed = {}  # (test, folder) -> faults noticed there

    def order(self, folder):
        return sorted(self.seconds, key=lambda test: -(1 + self.noticed.get((test, folder), 0)) / self.seconds[test])

    def first_failure(self, bench: Bench, folder: str) -> str | None:
        for test in self.order(folder):
            passed, _, _ = bench.run(test, max(LEAST_SECONDS, 3 * self.seconds[test]))
            if not passed:
                self.noticed[test, folder] = self.noticed.get((test, folder), 0) + 1
                return test
        return None


def random_faults(build, part, random_numbers):
    """All faults in a random order; every line of code is as likely to come first."""
    lines = {}
    for path in sorted(build.users):
        if path.startswith(str(build.root / PLUGIN)) and part in path.removeprefix(str(build.root / PLUGIN)):
            for fault in faults_in(path, pathlib.Path(path).read_text()):
                lines.setdefault((path, fault.line), []).append(fault)
    chosen = [random_numbers.choice(faults) for _, faults in sorted(lines.items())]
    random_numbers.shuffle(chosen)
    return chosen


def with_fault(fault):
    lines = pathlib.Path(fault.path).read_text().split('\n')
    lines[fault.line - 1] = fault.after
    return '\n'.join(lines)


def built_build(root):
    folder = root / 'build' / 'mutants'
    configure = ['cmake', '-S', root, '-B', folder, '-G', 'Ninja', '-DCMAKE_BUILD_TYPE=Debug',
                 '-DCMAKE_CXX_FLAGS_DEBUG=-O1 -w']
    if shutil.which('ccache'):
        configure.append('-DCMAKE_CXX_COMPILER_LAUNCHER=ccache')
    subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(['cmake', '--build', folder], check=True, stdout=subprocess.DEVNULL)
    return Build(root, folder)


def main():
    parser = argparse.ArgumentParser(prog='./test --mutants')
    parser.add_argument('count', type=int)
    parser.add_argument('seed', type=int, nargs='?', default=1)
    parser.add_argument('--in', dest='part', default='', help='only in files whose path below the plug-in has this')
    arguments = parser.parse_args()
    root = pathlib.Path(__file__).resolve().parents[2]
    build = built_build(root)
    workers = os.cpu_count() or 1
    benches = [Bench(build, build.folder / f'bench-{number}') for number in range(workers)]

    shutil.copy(build.folder / 'bin' / 'libpm_limited_support.so', benches[0].folder / 'bin')
    seconds = {}
    for test in build.tests:
        passed, seconds[test], printed = benches[0].run(test, 600)
        if not passed:
            sys.exit(f'{test} fails without a fault:\n{printed[-3000:]}')
    judge = Judge(seconds)

    remaining = iter(random_faults(build, arguments.part, random.Random(arguments.seed)))
    killed, survivors, left_out = 0, [], 0
    started = time.monotonic()

    def judged(bench, fault):
        outcome = bench.compile(fault.path, with_fault(fault))
        if outcome != 'built':
            return outcome
        return judge.first_failure(bench, os.path.dirname(fault.path)) or 'survived'

    with concurrent.futures.ThreadPoolExecutor(workers) as pool:
        running = {}
        idle = list(benches)
        while True:
            while idle and killed + len(survivors) + len(running) < arguments.count:
                fault = next(remaining, None)
                if fault is None:
                    break
                bench = idle.pop()
                running[pool.submit(judged, bench, fault)] = (bench, fault)
            if not running:
                break
            for done in concurrent.futures.wait(running, return_when='FIRST_COMPLETED').done:
                bench, fault = running.pop(done)
                idle.append(bench)
                outcome = done.result()
                shown = fault._replace(path=os.path.relpath(fault.path, root / PLUGIN))
                if outcome == 'survived':
                    survivors.append(shown)
                    print(f'SURVIVED {shown}', flush=True)
                elif outcome in ('same', 'broken'):
                    left_out += 1
                else:
                    killed += 1
                judged_faults = killed + len(survivors)
                print(f'{judged_faults} of {arguments.count}', end='\r', file=sys.stderr, flush=True)
    count = killed + len(survivors)
    if count:
        print(f'{killed} of {count} faults noticed ({100 * killed / count:.1f} %), {left_out} others left out, '
              f'{(time.monotonic() - started) / count:.1f} s each; seed {arguments.seed}')


main()
