# SPDX-License-Identifier: Apache-2.0
"""A copy of the project in build/mutate, built once like the preset "dev", in which the objects of one changed source at a
time are compiled and linked in. The checkout itself is only read. Each run takes a copy that no other run holds."""
import fcntl
import json
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import time

# What a changed object is compiled with besides: no warning is an error, nothing is there for a debugger, and an index
# outside a container of the standard library ends the program, as it would under the sanitizers.
EXTRA = ["-w", "-g0", "-D_GLIBCXX_ASSERTIONS"]
QUICK_LINK = " -Wl,--strip-all" + (" -fuse-ld=lld" if shutil.which("ld.lld") else "")
MEMORY = 4 << 30  # bytes a test program may take
TOO_LARGE = "*ABrowser*:*APrintedPage*"  # the tests whose programs reserve more


class Workshop:
    def __init__(self, root):
        self.root = root
        self.place = self._free_place(os.path.join(root, "build", "mutate"))
        self.tree = os.path.join(self.place, "tree")
        self.build = os.path.join(self.tree, "build", "dev")
        self.temporary = os.path.join(self.place, "tmp")
        self.linked = set()  # what holds the present change

    def _free_place(self, parent):
        for number in range(1, 1000):
            place = os.path.join(parent, str(number))
            os.makedirs(place, exist_ok=True)
            self.lock = open(os.path.join(place, "lock"), "w")
            try:
                fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                return place
            except BlockingIOError:
                self.lock.close()
        raise SystemExit("mutate: no free folder in build/mutate")

    # The copy and its first build.

    def prepare(self, programs):
        """Brings the copy up to date and builds the test programs."""
        self._copy()
        self._give_back()
        environment = dict(os.environ, CCACHE_BASEDIR=self.tree, CCACHE_NOHASHDIR="1")
        commands = [["cmake", "--build", "--preset", "dev", "--target", *programs]]
        if not os.path.exists(os.path.join(self.build, "build.ninja")):
            commands.insert(0, ["cmake", "--preset", "dev", "-D", "CORE_JOIN_TESTS=ON"])
        for command in commands:
            done = self._run(command, cwd=self.tree, env=environment, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT)
            if done[0]:
                raise SystemExit(done[1].decode(errors="replace") + "mutate: the unchanged sources do not build")
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as file:
            entries = json.load(file)
        self.commands, self.object_of = {}, {}
        for entry in entries:
            words = shlex.split(entry["command"])
            name = os.path.relpath(os.path.join(entry["directory"], words[words.index("-o") + 1]), self.build)
            self.commands[name] = entry
            self.object_of[os.path.relpath(entry["file"], self.tree)] = name
        self.includers = self._includers()
        self.links = {}

    def _includers(self):
        """From each header to the objects that were made with it."""
        listed = subprocess.run(["ninja", "-t", "deps"], cwd=self.build, stdout=subprocess.PIPE, text=True, check=True)
        found, name = {}, None
        for line in listed.stdout.splitlines():
            if line.startswith("    "):
                path = os.path.relpath(os.path.join(self.build, line.strip()), self.tree)
                if path.endswith(".h") and not path.startswith(".."):
                    found.setdefault(path, []).append(name)
            elif ": #deps" in line:
                name = line.split(":")[0]
        return {path: [name for name in names if name in self.commands] for path, names in found.items()}

    def _copy(self):
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=self.root,
                                stdout=subprocess.PIPE, check=True).stdout.decode().split("\0")
        wanted = {name for name in listed if name and os.path.isfile(os.path.join(self.root, name))}
        for name in wanted:
            source, target = os.path.join(self.root, name), os.path.join(self.tree, name)
            if not _same(source, target):
                os.makedirs(os.path.dirname(target), exist_ok=True)
                shutil.copy(source, target)  # with the time of now, so that it is built again
        for folder, folders, names in os.walk(self.tree):
            if folder == self.tree and "build" in folders:
                folders.remove("build")
            for name in names:
                path = os.path.join(folder, name)
                if os.path.relpath(path, self.tree) not in wanted:
                    os.remove(path)

    # Planting.

    def _commands(self, program):
        """The commands that link a test program and what it stands on, in order."""
        if program not in self.links:
            listed = subprocess.run(["ninja", "-t", "commands", f"bin/{program}"], cwd=self.build,
                                    stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()
            self.links[program] = [line for line in listed if " -c " not in line and ".o" in line]
        return self.links[program]

    def objects(self, file, program):
        """The objects that hold a source; for a header those of the library, of the host and of the test program."""
        if file.endswith(".cpp"):
            return [self.object_of[file]] if file in self.object_of else []
        ours = ("core/CMakeFiles/", "host/CMakeFiles/", f"tests/CMakeFiles/{program}.dir/")
        return [name for name in self.includers.get(file, []) if name.startswith(ours)]

    def compile(self, file, text, program):
        """The objects made with the changed source, or None when it does not compile. A changed header is laid before the
        true one; a changed source lies beside the true one."""
        header = file.endswith(".h")
        changed = os.path.join(self.place, "changed", file.removeprefix("include/")) if header \
            else os.path.join(self.tree, file.removesuffix(".cpp") + ".changed.cpp")
        os.makedirs(os.path.dirname(changed), exist_ok=True)
        with open(changed, "w", encoding="utf-8") as out:
            out.write(text)
        objects = self.objects(file, program)
        try:
            for name in objects:
                entry = self.commands[name]
                words = [word for word in shlex.split(entry["command"]) if word != "-Werror"]
                if "ccache" in os.path.basename(words[0]):
                    words.pop(0)
                words[words.index("-o") + 1] = os.path.join(self.build, name) + ".changed"
                if header:
                    words.insert(1, f"-I{os.path.join(self.place, 'changed')}")
                else:
                    words[words.index(entry["file"])] = changed
                if self._run([*words, *EXTRA], cwd=entry["directory"], limit=300)[0] != 0:
                    return None
        finally:
            os.remove(changed)
        return objects

    def link(self, program, changed):
        """Links the program with the changed objects: a shared library alone, a static one and all that takes it."""
        affected = {name: name + ".changed" for name in changed}
        for command in self._commands(program):
            words = command.split()
            if not any(word in affected for word in words):
                continue
            output = re.search(r"(?: -o|\bar qc) (\S+)", command).group(1)
            if output.endswith(".a"):
                affected[output] = output
            if output in self.linked:
                continue
            self._keep(output)
            for old, new in affected.items():
                command = re.sub(rf"(?<=\s){re.escape(old)}(?=\s|$)", new, command)
            if " -o " in command:
                command = command.replace(" -o ", f"{QUICK_LINK} -o ", 1)
            code, output_text = self._run(["sh", "-c", command], cwd=self.build, stdout=subprocess.PIPE,
                                          stderr=subprocess.STDOUT)
            if code:
                return False
            self.linked.add(output)
        return True

    def _keep(self, output):
        path = os.path.join(self.build, output)
        if not os.path.exists(path + ".kept"):
            shutil.copy2(path, path + ".part")
            os.replace(path + ".part", path + ".kept")

    def _give_back(self):
        """Puts the unchanged binaries back, with their times."""
        for folder in ("lib", "bin"):
            folder = os.path.join(self.build, folder)
            for name in os.listdir(folder) if os.path.isdir(folder) else ():
                if name.endswith(".kept"):
                    os.replace(os.path.join(folder, name), os.path.join(folder, name.removesuffix(".kept")))

    def undo(self):
        self.linked.clear()
        self._give_back()

    # Running.

    def test(self, program, seconds=None, only=None):
        """How a test program ends: "passed", "failed" or "time-out", and the processor time that it took. `seconds`
        bounds that time; the clock on the wall is given much more, for a machine that does other things too."""
        shutil.rmtree(self.temporary, ignore_errors=True)
        os.makedirs(self.temporary)
        command = [os.path.join(self.build, "bin", program), "--gtest_brief=1", "--gtest_fail_fast",
                   f"--gtest_filter={only or '*'}-{TOO_LARGE}"]
        seconds = seconds or 600
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        code, _ = self._run(command, cwd=self.temporary, env=dict(os.environ, TMPDIR=self.temporary),
                            limit=30 + 10 * seconds, processor=seconds)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        spent = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        if code in (None, -signal.SIGXCPU, -signal.SIGKILL):
            return "time-out", spent
        return "passed" if code == 0 else "failed", spent

    def timed(self, program):
        """What the tests take with the unchanged sources, None when they fail; remembered until they are built again."""
        path = os.path.join(self.place, "times.json")
        times = {}
        if os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                times = json.load(file)
        build = [os.stat(os.path.join(self.build, name)).st_mtime_ns for name in (f"bin/{program}", "lib/libcore.so")]
        if times.get(program, {}).get("build") != build:
            result, spent = self.test(program)
            times[program] = {"build": build, "seconds": spent if result == "passed" else None}
            with open(path, "w", encoding="utf-8") as file:
                json.dump(times, file)
        return times[program]["seconds"]

    def _run(self, command, limit=None, processor=None, **options):
        """The exit code (None: stopped after `limit` seconds) and the output. Nothing of it outlives the call."""
        def bounds():
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            if processor:
                resource.setrlimit(resource.RLIMIT_CPU, (int(processor) + 1, int(processor) + 3))
                resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))

        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        child = subprocess.Popen(command, start_new_session=True, preexec_fn=bounds, stdin=subprocess.DEVNULL, **options)
        try:
            output, _ = child.communicate(timeout=limit)
            return child.returncode, output
        except subprocess.TimeoutExpired:
            return None, b""
        finally:
            try:
                os.killpg(child.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            child.wait()

    def close(self):
        self._give_back()
        shutil.rmtree(self.temporary, ignore_errors=True)
        self.lock.close()


def _same(a, b):
    try:
        with open(a, "rb") as x, open(b, "rb") as y:
            return x.read() == y.read()
    except FileNotFoundError:
        return False
