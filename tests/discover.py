"""Tells CTest the tests of a program, as long as the program has not changed since.

discover.py PROGRAM LIST RUNNER LOCK

Each test is run in a process of its own; one that has parameters runs with all of them, since starting
a process costs far more here than most tests do.
"""

import os
import re
import subprocess
import sys

program, listed_in, runner, lock = sys.argv[1:]
SHARED = ("TIMEOUT 120", 'PASS_REGULAR_EXPRESSION "all tests of this program passed"',
          'FAIL_REGULAR_EXPRESSION "fatal exception"', f'RESOURCE_LOCK "{lock}"')
# That one of several parameters is skipped says nothing of the others.
ALONE = r'SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\] 1 test"'


def tests():
    """Each test, and whether it stands for many."""
    said = subprocess.run(
        [runner, program, "--gtest_list_tests"], capture_output=True, text=True, errors="replace", timeout=60
    ).stdout
    found = {}
    suite = None
    for line in said.replace("\r", "").splitlines():
        # Remarks on types and parameters stand behind a number sign.
        name = line.split("#")[0].rstrip()
        if re.fullmatch(r"\S+\.", name):
            suite = name
        elif suite and re.fullmatch(r"  \S+", name):
            test, _, parameter = name.strip().partition("/")
            found[suite + test] = bool(parameter)
    if not found:
        sys.exit(f"{program} lists no tests:\n{said}")
    return found


def is_current():
    return os.path.exists(listed_in) and os.path.getmtime(listed_in) > max(
        os.path.getmtime(program), os.path.getmtime(__file__))


def text():
    if not os.path.exists(program):
        name = os.path.basename(program)
        return f'add_test({name}_is_not_built "{program}")\n'
    lines = []
    for test, has_parameters in tests().items():
        chosen = test + "/*" if has_parameters else test
        properties = SHARED if has_parameters else (*SHARED, ALONE)
        lines.append(f'add_test({test} "{runner}" "{program}" "--gtest_filter={chosen}")\n')
        lines.append(f"set_tests_properties({test} PROPERTIES {' '.join(properties)})\n")
    return "".join(lines)


if not (os.path.exists(program) and is_current()):
    listed = text()
    with open(listed_in, "w", encoding="utf-8") as file:
        file.write(listed)
