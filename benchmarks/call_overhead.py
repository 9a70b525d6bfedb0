"""The cost of the library's own part of a call, from several runs of call_overhead.

    call_overhead.py COMMAND...      call_overhead with its arguments, with its launcher before it if it needs one

The address at which the system loads a library is random, and at some addresses a call takes half as long
again. So the result of one process is not enough. Prints the medians over the processes. The exit status is
1 if oc_read costs more than 1.10 of its floor.
"""
import statistics
import subprocess
import sys

PROCESSES = 9
GATE = 1.10


def main(command):
    rows = {}
    for _ in range(PROCESSES):
        printed = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
        for line in printed.splitlines():
            sdk, call, *figures = line.split()
            rows.setdefault((sdk, call), []).append([float(figure) for figure in figures])

    print(f"  {'SDK':<16} {'call':<15} {'library':>12} {'floor':>12} {'ratio':>8} {'from':>8} {'to':>8}")
    held = True
    for (sdk, call), runs in rows.items():
        library, floor, ratio = (statistics.median(figures) for figures in zip(*runs))
        ratios = [figures[-1] for figures in runs]
        print(f"  {sdk:<16} {call:<15} {library:9.1f} ns {floor:9.1f} ns {ratio:8.3f}"
              f" {min(ratios):8.3f} {max(ratios):8.3f}")
        held = held and (call != "oc_read" or ratio <= GATE)
    if not rows:
        sys.exit("call_overhead.py: nothing was measured")
    print(f"  oc_read at most {GATE:.2f} of the floor: {'yes' if held else 'NO'}")
    return 0 if held else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
