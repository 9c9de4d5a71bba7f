#!/usr/bin/env python3
"""Writes a GPX track of about 1 MB that looks recorded: a walk with turns, climbs, a break, and noise.

usage: make_track.py [POINTS [SEED]] > track.gpx      The same arguments give the same octets.
"""
import math
import random
import sys
from datetime import datetime, timedelta, timezone


def main():
    points = int(sys.argv[1]) if len(sys.argv) > 1 else 9750
    rng = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 16)
    lat, lon, elevation = 46.8523, 9.5312, 585.0
    heading, speed, slope = 0.7, 1.4, 0.0
    time = datetime(2024, 6, 9, 5, 58, 12, tzinfo=timezone.utc)
    out = sys.stdout
    out.write('<?xml version="1.0" encoding="UTF-8"?>\n'
              '<gpx xmlns="http://www.topografix.com/GPX/1/1" version="1.1" creator="make_track.py">\n'
              '  <metadata>\n    <name>Morning walk</name>\n    <time>2024-06-09T12:40:00Z</time>\n  </metadata>\n'
              '  <trk>\n    <name>Morning walk</name>\n    <type>hiking</type>\n    <trkseg>\n')
    for n in range(points):
        if n == points // 2:  # a rest: the recorder was stopped
            out.write('    </trkseg>\n    <trkseg>\n')
            time += timedelta(minutes=25)
        heading += rng.gauss(0, 0.12)
        speed = min(2.2, max(0.4, speed + rng.gauss(0, 0.05)))
        slope = min(0.25, max(-0.25, slope + rng.gauss(0, 0.01)))
        seconds = rng.choice((1, 2, 2, 3, 4))
        metres = speed * seconds
        lat += metres * math.cos(heading) / 111320
        lon += metres * math.sin(heading) / (111320 * math.cos(math.radians(lat)))
        elevation += metres * slope
        time += timedelta(seconds=seconds)
        out.write(f'      <trkpt lat="{lat + rng.gauss(0, 4e-6):.6f}" lon="{lon + rng.gauss(0, 4e-6):.6f}">'
                  f'<ele>{elevation + rng.gauss(0, 0.3):.1f}</ele><time>{time:%Y-%m-%dT%H:%M:%SZ}</time>'
                  f'</trkpt>\n')
    out.write('    </trkseg>\n  </trk>\n</gpx>\n')


main()
