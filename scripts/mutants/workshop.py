"""Builds the library with one fault and runs the tests on it, beside a build that stays as it is."""
import json
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import time

LIBRARY = 'libpm_limited_support.so'


class Build:
    """The finished build of the tree without faults: how each file is compiled, and the tests."""

    def __init__(self, root: pathlib.Path, folder: pathlib.Path):
        self.root, self.folder = root, folder
        self.compiles = {}  # path of a source -> (object, command)
        for line in self._ninja('-t', 'commands', f'bin/{LIBRARY}').splitlines():
            words = shlex.split(line.removeprefix(': && ').removesuffix(' && :'))
            if '-c' in words:
                self.compiles[words[words.index('-c') + 1]] = (words[words.index('-o') + 1], words)
            elif f'bin/{LIBRARY}' in words:
                self.link = words
        self.objects = {path for path in self.link if path.endswith('.o')}
        self.users = {}  # path of a header or source -> sources that include it
        for block in self._ninja('-t', 'deps').split('\n\n'):
            name, *paths = block.strip().split('\n')
            if name.split(':')[0] in self.objects:
                source = paths[0].strip()
                for path in paths:
                    self.users.setdefault(os.path.realpath(folder / path.strip()), []).append(
                        os.path.realpath(folder / source))
        self.tests = self._tests()

    def _ninja(self, *arguments):
        return subprocess.run(['ninja', '-C', self.folder, '--quiet', *arguments], check=True, capture_output=True,
                              text=True).stdout

    def _tests(self):
        shown = subprocess.run(['ctest', '--show-only=json-v1'], cwd=self.folder, check=True, capture_output=True,
                               text=True).stdout
        tests = {}
        for test in json.loads(shown)['tests']:
            if test['name'] != 'install_tests':  # builds a project of its own
                folder = next(p['value'] for p in test['properties'] if p['name'] == 'WORKING_DIRECTORY')
                tests[test['name']] = (test['command'], folder)
        return tests


class Bench:
    """A folder in which one fault after another is built and tried."""

    def __init__(self, build: Build, folder: pathlib.Path):
        self.build, self.folder = build, folder
        shutil.rmtree(folder, ignore_errors=True)
        (folder / 'source').mkdir(parents=True)
        (folder / 'home').mkdir()
        # The simulated Windows looks for the library beside the program, so the programs are here, too.
        (folder / 'bin').mkdir()
        for path in (build.folder / 'bin').iterdir():
            if path.is_file() and path.name != LIBRARY:
                os.link(path, folder / 'bin' / path.name)

    def compile(self, path: str, text: str) -> str:
        """Builds the library with that text for the file: 'built', 'same' (no code changed) or 'broken'."""
        relative = os.path.relpath(path, self.build.root)
        changed = self.folder / 'source' / relative
        changed.parent.mkdir(parents=True, exist_ok=True)
        changed.write_text(text)
        try:
            return self._compile(path, changed)
        finally:
            changed.unlink()

    def _compile(self, path, changed):
        objects, same = {}, True
        for source in self.build.users[path]:
            name, command = self.build.compiles[source]
            made = self.folder / 'objects' / name
            made.parent.mkdir(parents=True, exist_ok=True)
            words = [str(changed) if word == path else str(made) if word == name else word for word in command]
            words = [word for word in words if word not in ('-MD',)]
            for option in ('-MT', '-MF'):
                if option in words:
                    at = words.index(option)
                    del words[at:at + 2]
            # Headers are included by their path below the plug-in's folder; the changed one comes first.
            plugin = next(word[2:] for word in command if word.startswith('-I') and path.startswith(word[2:] + '/'))
            words.insert(1 if 'ccache' not in words[0] else 2,
                         '-I' + str(self.folder / 'source' / os.path.relpath(plugin, self.build.root)))
            if subprocess.run(words, cwd=self.build.folder, capture_output=True).returncode != 0:
                return 'broken'
            same = same and made.read_bytes() == (self.build.folder / name).read_bytes()
            objects[name] = str(made)
        if same:
            return 'same'
        words = [objects.get(word, word) for word in self.build.link]
        words[words.index('-o') + 1] = str(self.folder / 'bin' / LIBRARY)
        return 'broken' if subprocess.run(words, cwd=self.build.folder, capture_output=True).returncode else 'built'

    def run(self, name: str, seconds: float, fail_fast=True) -> tuple[bool, float, str]:
        """Whether that test passes within the time; how long it took; what it printed."""
        command, folder = self.build.tests[name]
        was, now = str(self.build.folder / 'bin'), str(self.folder / 'bin')
        command = [word.replace(was, now) for word in command]
        if fail_fast and command[0].startswith(now):
            command.append('--gtest_fail_fast')
        environment = {**os.environ, 'LD_LIBRARY_PATH': now, 'TMPDIR': str(self.folder / 'home')}
        started = time.monotonic()
        process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors='replace',
                                   start_new_session=True)
        try:
            printed, _ = process.communicate(timeout=seconds)
            passed = process.returncode == 0
        except subprocess.TimeoutExpired:
            printed, passed = 'too slow', False
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)  # with the processes that the test has started
            except ProcessLookupError:
                pass
        if process.returncode is None:
            process.communicate()
        passed = passed and not re.search(r'\[  SKIPPED \]', printed)
        return passed, time.monotonic() - started, printed
