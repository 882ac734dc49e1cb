# SPDX-License-Identifier: Apache-2.0
"""What the checks share: the files of the project, and running a program."""
import os
import subprocess


def run(*command, given=None):
    """The exit code and the output of a program, both streams in one; `given` is its input."""
    done = subprocess.run(command, input=given, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace")
    return done.returncode, done.stdout


def files(*endings):
    """The project's own files: those git knows, and new ones it is not told to ignore."""
    names = run("git", "ls-files", "--cached", "--others", "--exclude-standard")[1].splitlines()
    kept = []
    for name in names:
        if name.endswith(endings) or not endings:
            try:
                with open(name, "rb"):
                    kept.append(name)
            except OSError:
                pass  # deleted, not yet committed
    return kept


def relative(line):
    """A line of a program's output with the paths of the project's files counted from its top."""
    return line.replace(os.getcwd() + "/", "")


def text(name):
    with open(name, encoding="utf-8", errors="replace") as file:
        return file.read()


def room_of(path):
    """The room that a source or a test belongs to: the layer, "host", or the name of another folder such as "bench". What
    libcore_script.so is made of belongs to "script"."""
    parts = path.removeprefix("include/").split("/")
    if parts[0] == "host" and parts[1:2] and parts[1] in ("language", "library", "engine", "exchange"):
        return "script"
    return parts[1].removesuffix(".h") if parts[0] in ("core", "tests") and len(parts) > 1 else parts[0]


def sources():
    return files(".h", ".cpp")


def outcome(code, output, lines=40):
    return output.strip().splitlines()[-lines:] or [f"exit code {code}"] if code else []
