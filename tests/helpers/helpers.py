"""What the tests of the credential helpers share: the tables of tests/vectors, and calls in an empty home."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

VECTORS = pathlib.Path(__file__).parent.parent / "vectors"


def unescaped(cell):
    """The bytes of a cell: "\\n" is a newline, "\\xNN" a byte, "\\\\" a backslash, "*N" N times the last byte."""
    def byte(match):
        escape = match[0]
        if escape.startswith(b"*"):
            return escape[-1:] * int(match[1])
        return {b"\\n": b"\n", b"\\\\": b"\\"}.get(escape) or bytes([int(escape[2:], 16)])
    return re.sub(rb"\*(\d+)\*.|\\(?:n|\\|x[0-9a-f]{2})", byte, cell.encode())


def vectors(name):
    for line in (VECTORS / name).read_text().splitlines():
        if line and not line.startswith("#"):
            yield line.split("\t")


class Home:
    """An empty home without a display or a terminal, and without a bus unless that is wanted. Programs are looked
    for in `folder` first."""

    def __init__(self, folder, on_bus=False):
        self.folder = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.folder.name)
        self.environment = {"HOME": self.folder.name, "PATH": f"{os.path.abspath(folder)}:{os.environ['PATH']}", "LC_ALL": "C",
                            "GIT_CONFIG_NOSYSTEM": "1", "GIT_TERMINAL_PROMPT": "0"}
        kept = r".*SAN_OPTIONS" + ("|DBUS_.*" if on_bus else "")
        self.environment |= {name: value for name, value in os.environ.items() if re.fullmatch(kept, name)}

    def run(self, *command, stdin=b"", **environment):
        return subprocess.run(command, input=stdin, capture_output=True, cwd=self.path, start_new_session=True,
                              env=self.environment | environment, check=False, timeout=60)


class Expectations:
    """Counts what was expected, and reports what was not."""

    def __init__(self):
        self.count = self.failures = 0

    def equal(self, what, actual, expected):
        self.count += 1
        if actual != expected:
            self.failures += 1
            print(f"{what}: expected\n  {str(expected)[:300]}\nbut found\n  {str(actual)[:300]}", file=sys.stderr)

    def finish(self, what):
        print(f"{self.count} {what}, {self.failures} failed")
        sys.exit(1 if self.failures or not self.count else 0)
