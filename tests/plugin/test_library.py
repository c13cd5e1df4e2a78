# SPDX-License-Identifier: Apache-2.0
"""What each built library is as a file: its exports, its needs, its hardening, and what loading it runs."""

import collections
import pathlib
import re
import subprocess

import pytest

RUNTIME = {"libc.so.6", "libstdc++.so.6", "libgcc_s.so.1", "libm.so.6"}

# What a plug-in in a foreign process leaves alone: unbounded copies, threads, signals, exit handlers and what
# belongs to the process as a whole.
FORBIDDEN = {
    "strcpy", "strcat", "sprintf", "vsprintf", "strncpy", "strncat", "strtok", "atoi", "gets", "alloca",
    "pthread_create", "signal", "sigaction", "sigprocmask", "pthread_sigmask", "atexit", "at_quick_exit", "on_exit",
    "setlocale", "chdir", "umask", "__tls_get_addr", "__cxa_thread_atexit_impl", "dlopen",
}
# Memory that somebody would have to give back: its records are made with new, and nothing else is.
MEMORY = {"malloc", "calloc", "realloc", "strdup", "strndup", "getline", "getdelim", "asprintf", "vasprintf"}
# What only looks starts no program, changes nothing, writes nowhere and ends nobody.
CHANGES = {
    "system", "popen", "fork", "vfork", "clone", "posix_spawn", "posix_spawnp", "execve", "execv", "execvp", "execl",
    "execlp", "wait", "waitpid", "kill", "raise", "exit", "_exit", "abort", "alarm", "sleep", "nanosleep",
    "getenv", "secure_getenv", "setenv", "putenv", "unsetenv", "rand", "srand", "random",
    "write", "pwrite", "writev", "unlink", "unlinkat", "rename", "mkdir", "mkdirat", "mknod", "mknodat", "symlink",
    "link", "chmod", "fchmod", "chown", "truncate", "ftruncate", "fsync", "sync", "mount", "umount", "umount2",
    "printf", "fprintf", "vfprintf", "puts", "fputs", "putchar", "fwrite", "perror", "stdin", "stdout", "stderr",
    "fopen", "fdopen", "fopen64", "syslog", "socket", "connect", "pthread_mutex_lock", "pthread_once",
}

Library = collections.namedtuple("Library", "file exported headers named others forbidden")
LIBRARIES = [
    Library("diskscout.so", "src/diskscout.map", ("src/diskscout.h", "src/diskscout_raid.h"), {"libuuid.so.1"}, RUNTIME, FORBIDDEN | MEMORY),
    Library("diskscout-block.so", "block/diskscout-block.map", ("block/diskscout_block.h",), {"libblkid.so.1", "libc.so.6"}, set(), FORBIDDEN | CHANGES),
]


@pytest.fixture(scope="module", params=LIBRARIES, ids=lambda library: library.file)
def facts(request):
    return request.param


@pytest.fixture(scope="module")
def library(build_dir, facts):
    return build_dir / facts.file


def tool(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def dynamic_symbols(library, kind):
    lines = tool("nm", "-D", kind, str(library)).splitlines()
    return {line.split()[-1].split("@")[0] for line in lines}


def needed(library):
    return set(re.findall(r"\(NEEDED\).*\[(.*)\]", tool("readelf", "-dW", str(library))))


def declared(header):
    """Functions and data of an exported header."""
    text = re.sub(r"/\*.*?\*/", "", header, flags=re.DOTALL)
    text = text[text.index("#pragma GCC visibility push(default)"):text.index("#pragma GCC visibility pop")]
    return set(re.findall(r"(\w+)(?:\([^()]*\)|\[\w+\])?;", text))


def test_exports_are_the_agents_interface_and_nothing_else(library, facts, source_dir):
    """The list of them, what the file has, and what the headers promise."""
    listed = re.findall(r"^\t\t(\w+);$", (source_dir / facts.exported).read_text(encoding="utf-8"), re.MULTILINE)
    assert len(listed) == len(set(listed)) >= 3
    assert dynamic_symbols(library, "--defined-only") == set(listed)
    assert set.union(*(declared((source_dir / name).read_text(encoding="utf-8")) for name in facts.headers)) == set(listed)


def test_links_what_it_is_said_to_link_only(library, facts):
    assert facts.named <= needed(library) <= facts.named | facts.others


def test_calls_nothing_that_a_guest_should_not(library, facts):
    used = dynamic_symbols(library, "--undefined-only")
    checked = {re.sub(r"^__(.*)_chk$", r"\1", name) for name in used}
    assert (used | checked) & facts.forbidden == set()


def test_has_no_static_constructors(library):
    names = tool("nm", str(library))
    assert "_GLOBAL__sub_I" not in names
    sections = tool("readelf", "-SW", str(library))
    # frame_dummy and its counterpart alone, which every object of the compiler brings.
    for name in ("init", "fini"):
        size = re.search(rf"\.{name}_array\s+{name.upper()}_ARRAY\s+\S+\s+\S+\s+(\S+)", sections)
        assert int(size.group(1), 16) == 8
    assert ".preinit_array" not in sections
    assert ".ctors" not in sections


def test_has_no_memory_of_each_thread_and_writes_to_no_code(library):
    assert not re.search(r"^\s+TLS\s", tool("readelf", "-lW", str(library)), re.MULTILINE)
    dynamic = tool("readelf", "-dW", str(library))
    assert "STATIC_TLS" not in dynamic
    assert "TEXTREL" not in dynamic


def test_relocations_are_read_only_once_it_is_loaded(library):
    headers = tool("readelf", "-lW", str(library))
    dynamic = tool("readelf", "-dW", str(library))
    assert "GNU_RELRO" in headers
    assert re.search(r"\(FLAGS\).*BIND_NOW", dynamic)
    assert re.search(r"\(FLAGS\).*SYMBOLIC", dynamic)


def test_stack_is_not_executable(library):
    assert re.search(r"GNU_STACK.* RW +0x", tool("readelf", "-lW", str(library)))


def test_can_be_loaded_by_dlopen(library):
    assert "NOOPEN" not in tool("readelf", "-dW", str(library))


def test_was_built_with_the_hardening_flags(library):
    used = dynamic_symbols(library, "--undefined-only")
    assert "__stack_chk_fail" in used
    assert any(name.endswith("_chk") for name in used), "no checked libc call: _FORTIFY_SOURCE is missing"
    code = tool("objdump", "-d", "--no-show-raw-insn", str(library))
    assert re.search(r"<GetItemInfo>:\n\s+\S+\s+endbr64", code), "no landing pad: -fcf-protection is missing"
    assert re.search(r"orq? +\$0x0,\(%rsp\)", code), "large frames are not probed page by page"


# ---- what loading runs ----

LOADER = """
#include <dlfcn.h>
int main(int argc, char **argv) { return argc != 2 || dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) == 0; }
"""


@pytest.fixture(scope="module")
def loader(tmp_path_factory):
    folder = tmp_path_factory.mktemp("loader")
    (folder / "loader.c").write_text(LOADER)
    subprocess.run(["cc", "-std=c99", "-Wall", "-Wextra", "-Werror", str(folder / "loader.c"), "-o",
                    str(folder / "loader")], check=True)
    return folder / "loader"


def closure(library):
    """What the library names as needed, what those name, and so on: {name: file}."""
    files = dict(re.findall(r"^\s*(\S+) => (/\S+)", tool("ldd", str(library)), re.MULTILINE))
    known, wanted = {}, needed(library)
    while wanted:
        name = wanted.pop()
        # The loader itself is named by the C library and stands in no table of places.
        known[name] = files.get(name)
        if known[name]:
            wanted |= needed(known[name]) - set(known)
    return known


def test_loading_runs_no_constructor_but_those_of_the_libraries_that_it_names(library, loader):
    done = subprocess.run([str(loader), str(library)], check=True, capture_output=True, text=True,
                          env={"LD_DEBUG": "files"})
    before, after = done.stderr.split("transferring control: ", 1)
    ran = [[pathlib.Path(path).name for path in re.findall(r"calling init: (\S+)", part)] for part in (before, after)]
    # The program's own: the C library and its loader.
    assert "libc.so.6" in ran[0]
    assert ran[1][-1] == library.name
    assert len(ran[1]) == len(set(ran[1]))
    assert set(ran[1]) == (set(closure(library)) | {library.name}) - set(ran[0])


def test_what_the_named_libraries_bring_is_known(library, facts):
    """A library that comes with one of those named has constructors, too."""
    brought = {name for name in closure(library) if not name.startswith("ld-linux")}
    assert brought <= facts.named | facts.others
