"""Two Wine prefixes that share one folder, each with a server of its own, stand for two computers:
nothing but the files themselves is common to them.

two_computers.py ROOT STATION.EXE

The first computer is the prefix of the tests, the second a copy of it that goes at the end. What a
station can do is told in LockStation.cpp.
"""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

ROOT, STATION = pathlib.Path(sys.argv[1]), sys.argv[2]
WINE, WINESERVER = "/usr/bin/wine", "/usr/lib/wine/wineserver64"
FIRST = pathlib.Path(os.environ.get("WINEPREFIX", ROOT / "build/prefix"))
SECOND = ROOT / "build/second-prefix"
SECOND_NAME = "SECOND"


class Computer:
    """A Wine prefix, and the programs that run in it."""

    def __init__(self, prefix, name=None):
        self.name = name
        self.environment = dict(os.environ, WINEPREFIX=str(prefix), WINEDEBUG="-all", LC_ALL="C.UTF-8")
        self.server = None

    def run(self, *command):
        subprocess.run([WINE, *command], env=self.environment, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)

    def switch_on(self):
        self.server = subprocess.Popen([WINESERVER, "-f", "-p"], env=self.environment,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        # The platform sets the name anew at each start.
        key = r"HKLM\System\CurrentControlSet\Control\ComputerName\ActiveComputerName"
        self.run("reg", "add", key, "/v", "ComputerName", "/d", self.name, "/f")

    def switch_off(self):
        subprocess.run([WINESERVER, "-k"], env=self.environment)
        self.server.wait()

    def lose_power(self):
        self.server.kill()
        self.server.wait()


def set_up_second():
    shutil.rmtree(SECOND, ignore_errors=True)
    # Scratch files of tests that run meanwhile may go before they are copied, which is no loss.
    subprocess.run(["cp", "-a", "--reflink=auto", FIRST, SECOND], stderr=subprocess.DEVNULL)
    computer = Computer(SECOND, SECOND_NAME)
    computer.switch_on()
    return computer


class Station:
    """A program on one of the computers that takes and releases locks."""

    def __init__(self, computer):
        self.computer = computer
        self.process = subprocess.Popen(
            [ROOT / "scripts/lib/run-test", STATION, "--child-action", "be a lock station"],
            env=dict(computer.environment, VRUTILS_CHILD_SECONDS="100"),
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, start_new_session=True)
        answer = self.process.stdout.readline().strip()
        assert answer == "ready", f"a station said {answer!r}"

    def ask(self, command):
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().strip()

    def turn_to(self, file):
        answer = self.ask("Z:" + str(file).replace("/", "\\"))
        assert answer == "turned", f"a station said {answer!r}"

    def leave(self):
        """Programs that have lost their computer do not end by themselves."""
        if self.process.poll() is not None:
            return
        if self.computer.server and self.computer.server.poll() is not None:
            os.killpg(self.process.pid, signal.SIGKILL)
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait()


class TwoComputers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.addClassCleanup(shutil.rmtree, SECOND)
        first, cls.second = Computer(FIRST), set_up_second()
        cls.addClassCleanup(cls.second.switch_off)
        cls.here = cls.station(first)
        cls.man_second()

    @classmethod
    def man_second(cls):
        cls.there, cls.neighbour = cls.station(cls.second), cls.station(cls.second)

    @classmethod
    def station(cls, computer):
        station = Station(computer)
        cls.addClassCleanup(station.leave)
        return station

    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=ROOT / "build")
        self.addCleanup(folder.cleanup)
        file = pathlib.Path(folder.name) / "clip.mxf"
        self.lock_file = file.with_name("clip.mxf.lck")
        for station in (self.here, self.there, self.neighbour):
            station.turn_to(file)

    def test_second_is_refused_while_the_first_holds(self):
        self.assertEqual("taken", self.here.ask("take"))
        self.assertEqual("refused", self.there.ask("take"))
        self.assertEqual("refused", self.there.ask("take"))

    def test_first_is_refused_while_the_second_holds(self):
        self.assertEqual("taken", self.there.ask("take"))
        self.assertEqual("refused", self.here.ask("take"))

    def test_a_refused_taker_does_not_free_the_lock_for_its_neighbour(self):
        self.assertEqual("taken", self.here.ask("take"))
        self.assertEqual("refused", self.there.ask("take"))
        self.assertEqual("refused", self.neighbour.ask("take"))

    def test_the_lock_goes_to_the_second_after_the_release(self):
        self.here.ask("take")
        self.here.ask("release")
        self.assertFalse(self.lock_file.exists())
        self.assertEqual("taken", self.there.ask("take"))
        self.assertEqual(SECOND_NAME, self.lock_file.read_text("utf-16-le"))

    def test_the_lock_goes_to_the_second_after_a_refusal_and_the_release(self):
        self.here.ask("take")
        self.there.ask("take")
        self.here.ask("release")
        self.assertFalse(self.lock_file.exists())
        self.assertEqual("taken", self.there.ask("take"))
        self.assertEqual("refused", self.here.ask("take"))

    def test_a_computer_that_loses_its_power_loses_its_locks(self):
        self.assertEqual("taken", self.there.ask("take"))
        self.assertEqual("refused", self.here.ask("take"))
        self.second.lose_power()
        self.addCleanup(self.man_second)
        self.addCleanup(self.second.switch_on)
        self.addCleanup(self.neighbour.leave)
        self.addCleanup(self.there.leave)
        self.assertTrue(self.lock_file.exists())
        self.assertEqual("taken", self.here.ask("take"))

    # What follows tells how far the platform goes here, and judges only what is promised.

    def test_what_the_platform_carries_across(self):
        self.assertEqual("opened", self.here.ask("open"))
        opened = self.there.ask("open")
        print("a file that is open without sharing: the other computer's open answers", opened)
        self.assertEqual("locked", self.here.ask("lock"))
        if opened == "opened":
            print("a range that is locked: the other computer's lock answers", self.there.ask("lock"))

    def test_what_a_taker_leaves_who_is_refused(self):
        self.here.ask("take")
        own = self.lock_file.read_text("utf-16-le")
        self.there.ask("take")
        print("the name of the holder,", own, "has become", self.lock_file.read_text("utf-16-le"))

    def test_what_computers_without_a_name_do(self):
        self.assertEqual("taken", self.here.ask("take without a name"))
        print("two without a name: the second is", self.there.ask("take without a name"))
        print("after one without a name: one with a name is", self.neighbour.ask("take"))

    def test_what_becomes_of_a_lock_taken_between_close_and_deletion(self):
        self.here.ask("take")
        self.assertEqual("closed", self.here.ask("pause and release"))
        self.assertEqual("taken", self.there.ask("take"))
        print("a lock taken between close and deletion: the file is", self.here.ask("go on"))


unittest.main(argv=sys.argv[:1], verbosity=2)
