#!/usr/bin/python3
"""The catalogue against Regina (B. A. Burton et al., https://regina-normal.github.io).

usage: invariants_test.py KORVEX data/prime_knots_to_10.tsv

Needs Debian's package regina-normal; without it the exit status is 77, which means skipped.

Regina's conventions and ours, all in this file:

  orientation  Regina's planar diagram codes and ours are the same. Its oriented Gauss codes write a
               passage as + over or - under, then < where the other strand passes from right to left
               and > where it passes from left to right: O1+ is +<1, U1+ is ->1, O1- is +>1 and
               U1- is -<1.
  HOMFLY-PT    Link.homflyAZ() has our a as x and our z as y.
  Jones        Link.jones() has our t^1/2 as x: all exponents are doubled.
  Alexander    Regina 7.3 has none; it is its HOMFLY-PT polynomial at a = 1, z = t^1/2 - t^-1/2.
"""
import csv
import re
import subprocess
import sys
import unittest

try:
    import regina
except ImportError:
    print("skipped: Debian's package regina-normal is not installed", file=sys.stderr)
    sys.exit(77)

DATA = sys.argv.pop(2)
KORVEX = sys.argv.pop(1)


def read_rows(lines):
    rows = (line for line in lines if not line.startswith("#"))
    return list(csv.DictReader(rows, delimiter="\t"))


def catalogue():
    shown = subprocess.check_output([KORVEX, "table", "--format", "tsv"], text=True)
    return read_rows(shown.splitlines())


def link_of_pd(text):
    numbers = [int(number) for number in re.findall(r"\d+", text)]
    return regina.Link.fromPD([tuple(numbers[k : k + 4]) for k in range(0, len(numbers), 4)])


def link_of_gauss_code(text):
    strand = {"O+": "+<", "U+": "->", "O-": "+>", "U-": "-<"}
    passages = re.findall(r"([OU])(\d+)([+-])", text)
    if not passages:
        return regina.Link(1)  # the circle
    tokens = [strand[over + sign] + number for over, number, sign in passages]
    return regina.Link.fromOrientedGauss(" ".join(tokens))


def homfly_terms(text):
    """Our text of a HOMFLY-PT polynomial as (exponent of a, exponent of z, coefficient)."""
    terms = re.findall(r"\((-?\d+),(-?\d+)\):(-?\d+)", text)
    return [tuple(int(number) for number in term) for term in terms]


def jones_terms(text):
    """Our text of a Jones polynomial as {exponent of t: coefficient}."""
    return {int(e): int(c) for e, c in (term.split(":") for term in text.split())}


def as_regina_jones(terms):
    low, high = min(terms), max(terms)
    doubled = [terms.get(k // 2, 0) if k % 2 == 0 else 0 for k in range(2 * low, 2 * high + 1)]
    return regina.Laurent(2 * low, doubled)


def mirrored_homfly(terms):
    return [(-a, z, coefficient) for a, z, coefficient in terms]


def mirrored_jones(terms):
    return {-exponent: coefficient for exponent, coefficient in terms.items()}


def alexander(homfly):
    """Coefficients of the Alexander polynomial from the terms of HOMFLY-PT: z^2 is t - 2 + 1/t."""
    total = {}
    for _, z, coefficient in homfly:
        part = {0: coefficient}
        for _ in range(z // 2):
            product = {}
            for exponent, value in part.items():
                for shift, factor in ((1, 1), (0, -2), (-1, 1)):
                    product[exponent + shift] = product.get(exponent + shift, 0) + factor * value
            part = product
        for exponent, value in part.items():
            total[exponent] = total.get(exponent, 0) + value
    exponents = [exponent for exponent, value in total.items() if value]
    values = [total.get(exponent, 0) for exponent in range(min(exponents), max(exponents) + 1)]
    return values if values[0] > 0 else [-value for value in values]


def differences(link, jones, homfly):
    """Which of our polynomials Regina does not find for the link."""
    found = []
    if link.jones() != as_regina_jones(jones):
        found.append("Jones")
    if link.homflyAZ() != regina.Laurent2(homfly):
        found.append("HOMFLY-PT")
    return found


def row_differences(link, row):
    return differences(link, jones_terms(row["jones"]), homfly_terms(row["homfly"]))


class Invariants(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.catalogue = catalogue()
        with open(DATA, encoding="ascii") as file:
            cls.primes = read_rows(file)

    def test_regina_agrees_on_hands(self):
        right = link_of_gauss_code("U1+O2+U3+O1+U2+O3+")
        self.assertEqual(right.writhe(), 3)
        self.assertEqual(right.jones(), as_regina_jones({1: 1, 3: 1, 4: -1}))
        self.assertEqual(right.homflyAZ(), regina.Laurent2([(-2, 0, 2), (-4, 0, -1), (-2, 2, 1)]))

    def test_every_row_has_the_polynomials_of_its_diagram(self):
        names = {row["plain"] for row in self.catalogue}
        self.assertEqual(len([name for name in names if "#" not in name]), 250)
        for row in self.catalogue:
            with self.subTest(row["name"]):
                link = link_of_gauss_code(row["gauss_code"])
                self.assertEqual(link.countComponents(), 1)
                self.assertEqual(row_differences(link, row), [])

    def test_every_prime_has_the_polynomials_of_its_planar_diagram_code(self):
        hands = {}
        for row in self.catalogue:
            hands.setdefault(row["plain"], []).append(row)
        self.assertEqual(len(self.primes), 249)
        for prime in self.primes:
            with self.subTest(prime["name"]):
                link = link_of_pd(prime["pd"])
                self.assertEqual(row_differences(link, prime), [])
                rows = hands[prime["name"]]
                self.assertLessEqual(len(rows), 2)
                self.assertIn([], [row_differences(link, row) for row in rows])
                jones = mirrored_jones(jones_terms(prime["jones"]))
                homfly = mirrored_homfly(homfly_terms(prime["homfly"]))
                link.reflect()
                self.assertEqual(differences(link, jones, homfly), [])
                self.assertIn([], [row_differences(link, row) for row in rows])

    def test_every_row_has_the_alexander_polynomial_and_the_determinant(self):
        for row in self.catalogue:
            with self.subTest(row["name"]):
                values = alexander(homfly_terms(row["homfly"]))
                self.assertEqual(row["alexander"], " ".join(map(str, values)))
                determinant = sum(value * (-1) ** k for k, value in enumerate(values))
                self.assertEqual(int(row["determinant"]), abs(determinant))

    def test_a_damaged_row_is_found(self):
        for row in self.catalogue[1:]:
            with self.subTest(row["name"]):
                link = link_of_gauss_code(row["gauss_code"])
                jones, homfly = jones_terms(row["jones"]), homfly_terms(row["homfly"])
                wrong_jones = dict(jones)
                wrong_jones[min(jones)] += 1
                self.assertEqual(differences(link, wrong_jones, homfly), ["Jones"])
                wrong_homfly = [(a, z, c + (k == 0)) for k, (a, z, c) in enumerate(homfly)]
                self.assertEqual(differences(link, jones, wrong_homfly), ["HOMFLY-PT"])


if __name__ == "__main__":
    unittest.main()
