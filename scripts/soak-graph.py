#!/usr/bin/env python3
"""soak-graph.py FILE.svg < OUTPUT   draws what a soak test printed, and prints its first and last figures

Each curve is a quantity in percent of what it was after the first thousand requests.
"""
import collections
import sys

QUANTITIES = ('heap bytes in use', 'held objects', 'files', 'bytes of files')
COLOURS = ('#c03028', '#2060b0', '#208040', '#806020')
WIDTH, HEIGHT, LEFT, TOP, SPAN = 640, 240, 50, 30, 10  # SPAN: percent above and below 100


def curve(requests, values, most, top):
    points = (f'{LEFT + WIDTH * request / most:.1f},'
              f'{top + HEIGHT / 2 - (100 * value / max(values[0], 1) - 100) * HEIGHT / 2 / SPAN:.1f}'
              for request, value in zip(requests, values))
    return ' '.join(points)


def panel(major, rows, top):
    requests = [row[0] for row in rows]
    yield f'<text x="{LEFT}" y="{top - 8}">Windows {major}: {requests[-1]:,} requests</text>'
    for percent in (100 - SPAN, 100, 100 + SPAN):
        y = top + HEIGHT / 2 - (percent - 100) * HEIGHT / 2 / SPAN
        yield f'<path d="M{LEFT} {y}h{WIDTH}" stroke="#ccc"/><text x="8" y="{y + 4}">{percent} %</text>'
    for index, (name, colour) in enumerate(zip(QUANTITIES, COLOURS), 1):
        values = [row[index] for row in rows]
        print(f'figure: soak on {major}, {requests[-1]:,} requests: {name} {values[0]:,} at first, {values[-1]:,} at last')
        if values[0] > 0:
            yield (f'<polyline points="{curve(requests, values, requests[-1], top)}" fill="none" stroke="{colour}"/>'
                   f'<text x="{LEFT + 150 * (index - 1)}" y="{top + HEIGHT + 16}" fill="{colour}">{name}</text>')


def main():
    stages = collections.defaultdict(list)
    for line in sys.stdin:
        if line.startswith('soak '):
            major, *row = map(int, line.split()[1:])
            stages[major].append(row)
    if not stages:
        sys.exit('no line of a soak test')
    parts = [part for place, (major, rows) in enumerate(stages.items())
             for part in panel(major, rows, TOP + place * (HEIGHT + 60))]
    size = f'width="{LEFT + WIDTH + 20}" height="{TOP + len(stages) * (HEIGHT + 60)}"'
    with open(sys.argv[1], 'w', encoding='ascii') as file:
        file.write('\n'.join([f'<svg xmlns="http://www.w3.org/2000/svg" {size} font-family="sans-serif" font-size="12">',
                              '<rect width="100%" height="100%" fill="white"/>', *parts, '</svg>\n']))


main()
