#!/usr/bin/env python3
"""Writes two_arms.xml: two four-joint arms, covered with spheres, that reach past each other over a table.

    make_two_arms.py > two_arms.xml

Lengths in metres. The arms face each other; each swings its forearm across the middle, and half-way they pass within a
few centimetres. Standard library only.
"""
import math

CYCLES = 60
BASES = [((-0.55, 0.0, 0.0), 0.0), ((0.55, 0.0, 0.0), math.pi)]  # position, yaw
# link: length along its x axis, number of spheres, radius
LINKS = [("shoulder", 0.0, 1, 0.07), ("upper_arm", 0.32, 5, 0.055), ("forearm", 0.30, 5, 0.045), ("hand", 0.14, 3, 0.035)]


def multiply(a, b):
    w, x, y, z = a
    s, p, q, r = b
    return (w*s - x*p - y*q - z*r, w*p + x*s + y*r - z*q, w*q - x*r + y*s + z*p, w*r + x*q - y*p + z*s)


def rotate(q, v):
    _, x, y, z = multiply(multiply(q, (0.0, *v)), (q[0], -q[1], -q[2], -q[3]))
    return (x, y, z)


def about(axis, angle):
    return (math.cos(angle/2), *(c*math.sin(angle/2) for c in axis))


def joints(arm, s):
    """Yaw of the shoulder, pitch of the upper arm, of the forearm and of the hand; s runs from 0 to 1."""
    swing = math.cos(math.pi*s)
    lift = 0.20*math.sin(math.pi*s)
    if arm == 0:
        return (0.75*swing, -0.62 - lift, 0.74 + lift, -0.2)
    return (0.75*swing, -0.55 + lift, 0.55, 0.2)


def frames_of(arm, s):
    (x, y, z), yaw = BASES[arm]
    yaw_joint, *pitches = joints(arm, s)
    turn = about((0.0, 0.0, 1.0), yaw + yaw_joint)
    place = (x, y, z + 0.30)
    result = [(place, turn)]
    for (name, length, _, _), pitch in zip(LINKS[1:], pitches):
        turn = multiply(turn, about((0.0, 1.0, 0.0), pitch))
        result.append((place, turn))
        step = rotate(turn, (length, 0.0, 0.0))
        place = tuple(a + b for a, b in zip(place, step))
    return result


def text(values):
    return " ".join(f"{v:.9g}" for v in values)


def main():
    poses = [[frames_of(arm, k/(CYCLES - 1)) for k in range(CYCLES)] for arm in (0, 1)]
    print('<?xml version="1.0" encoding="UTF-8"?>')
    print("<!-- Two arms that reach past each other; written by make_two_arms.py. -->")
    print("<scene>")
    for arm in (0, 1):
        for link, (name, length, count, radius) in enumerate(LINKS):
            print(f"<body><name>{name}_{arm}</name><manipulator>{arm}</manipulator><link>{link}</link>")
            print("<shapes>")
            for i in range(count):
                x = length*(i + 0.5)/count
                print(f"<sphere><center>{text((x, 0.0, 0.0))}</center><radius>{radius}</radius></sphere>")
            print("</shapes>")
            print("<frames>")
            for pose in poses[arm]:
                place, turn = pose[link]
                print(f"<frame><translation>{text(place)}</translation><orientation>{text(turn)}</orientation></frame>")
            print("</frames></body>")
        for first, second in zip(LINKS, LINKS[1:]):
            print(f"<ignoredPair><first>{first[0]}_{arm}</first><second>{second[0]}_{arm}</second></ignoredPair>")
    print("<body><name>table</name><manipulator>2</manipulator><link>0</link><shapes>")
    for i in range(5):
        for j in range(3):
            print(f"<sphere><center>{text((0.12*(i - 2), 0.12*(j - 1), -0.06))}</center><radius>0.09</radius></sphere>")
    print("</shapes></body>")
    print("</scene>")


main()
