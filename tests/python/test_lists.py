# SPDX-License-Identifier: Apache-2.0
"""Who owns a list, for how long, and what it does afterwards; on real answers, and on made ones."""

import ctypes
import gc
import os
import signal
import sys
import threading
import time
import warnings

import pytest

import diskscout
from diskscout import library

THREADS = 8


@pytest.fixture
def host(show, source_dir):
    show(source_dir / "tests/hosts/real-kernel")


class Made:
    """What the made plug-in says of itself."""

    def __init__(self, library):
        self.library = ctypes.CDLL(str(library))

    def number(self, name):
        return ctypes.c_int.in_dll(self.library, name)

    def text(self, name):
        return (ctypes.c_char * 64).in_dll(self.library, name)


@pytest.fixture
def made(made_library):
    """Whatever a test does with the made plug-in, all of it came back once, and nobody met anybody inside."""
    made = Made(made_library)
    made.number("made_go").value = 1
    before = [made.number(name).value for name in ("memory_counter_hdd", "memory_counter_block")]
    yield made
    gc.collect()
    assert [made.number(name).value for name in ("memory_counter_hdd", "memory_counter_block")] == before
    assert made.number("made_faults").value == 0
    assert made.number("made_overlaps").value == 0


# ---- in and out ----

def test_a_list_is_the_librarys_until_the_with_ends(classic, host):
    before = classic.live_records
    with classic.disks() as disks:
        assert not disks.closed
        assert (len(disks), classic.live_records) == (5, before + 5)
        assert repr(disks) == "<list of STORAGE_DISK_LIST, 5 records>"
    assert disks.closed
    assert classic.live_records == before
    assert repr(disks) == "<list of STORAGE_DISK_LIST, closed>"


def test_a_list_of_today_likewise(block, show, build_dir):
    show(build_dir / "tests/block/hosts/desktop")
    before = block.live_records
    for query in (block.devices, block.links, block.contents, block.mounts, block.arrays):
        with query() as records:
            assert block.live_records == before + len(records)
        assert block.live_records == before


def test_lists_end_in_any_order(classic, host):
    before = classic.live_records
    disks, cdroms, again = classic.disks(), classic.cdroms(), classic.disks()
    disks.close()
    assert [disk.device_name for disk in again] == ["/dev/hda", "/dev/hdb", "/dev/sda", "/dev/sdb", "/dev/sdc"]
    again.close()
    cdroms.close()
    assert classic.live_records == before


def test_a_list_is_a_sequence(classic, host):
    with classic.disks() as disks:
        assert disks[-1].device_name == "/dev/sdc"
        assert [disk.disk_id for disk in disks[1:4:2]] == [1, 3]
        assert disks[0] in disks and disks.index(disks[2]) == 2
        assert [disk.disk_id for disk in reversed(disks)] == [4, 3, 2, 1, 0]
        with pytest.raises(IndexError):
            disks[5]


def test_closing_twice_gives_back_once(made, made_library):
    plugin = diskscout.Plugin(made_library)
    with plugin.disks() as disks:
        disks.close()
        disks.close()
    disks.close()
    plugin.close()
    plugin.close()


def test_a_list_that_is_closed_says_so(classic, host):
    with classic.disks() as disks:
        walk = iter(disks)
        next(walk)
    uses = (lambda: len(disks), lambda: disks[0], lambda: disks[0:1], lambda: list(disks), lambda: next(walk),
            lambda: disks.__enter__(), lambda: None in disks, lambda: bool(disks))
    for use in uses:
        with pytest.raises(diskscout.ClosedError, match="this list of STORAGE_DISK_LIST is closed"):
            use()


def test_an_exception_inside_the_with_gives_back_and_goes_on(classic, host):
    before = classic.live_records
    with pytest.raises(ZeroDivisionError):
        with classic.disks() as disks:
            print(len(disks) // 0)
    assert disks.closed and classic.live_records == before


def test_records_are_copies_and_stay(made, made_library):
    with diskscout.Plugin(made_library) as plugin, plugin.disks() as disks:
        first = disks[0]
        assert first is not disks[0] and first == disks[0]
    # Its memory is 0xdd by now.
    assert (first.device_name, first.size_bytes) == ("x" * 64, 2**64 - 1)
    with pytest.raises(AttributeError):
        first.size_bytes = 0


def test_the_plugin_closes_what_is_open_still(classic, block, host):
    before = classic.live_records
    with classic:
        disks, cdroms = classic.disks(), classic.cdroms()
    assert disks.closed and cdroms.closed
    assert classic.live_records == before
    for use in (classic.disks, classic.__enter__, lambda: classic.stcli("help")):
        with pytest.raises(diskscout.ClosedError, match=r"diskscout\.so is closed"):
            use()
    with block:
        pass
    with pytest.raises(diskscout.ClosedError, match=r"diskscout-block\.so is closed"):
        block.mounts()


def test_two_plugins_share_the_library_and_not_the_lists(build_dir, host):
    one, two = diskscout.Plugin(directory=build_dir), diskscout.Plugin(directory=build_dir)
    disks = two.disks()
    one.close()
    assert len(disks) == 5
    two.close()


# ---- forgotten ----

def test_a_list_that_is_forgotten_goes_back_with_a_warning(classic, host):
    before = classic.live_records
    with warnings.catch_warnings(record=True) as said:
        warnings.simplefilter("always")
        classic.disks()
        gc.collect()
    assert classic.live_records == before
    assert [(one.category, str(one.message)) for one in said] == [
        (ResourceWarning, "a list of STORAGE_DISK_LIST was not closed")]


def test_a_list_that_is_closed_is_not_warned_of(classic, host):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with classic.disks():
            pass
        gc.collect()


def test_a_list_outlives_its_plugin(build_dir, host):
    disks = diskscout.Plugin(directory=build_dir).disks()
    gc.collect()
    with disks:
        assert len(disks) == 5


@pytest.fixture
def slow(made, made_library):
    """A thread that is inside the library, for its list of drives; it comes out when it is let out."""
    plugin = diskscout.Plugin(made_library)
    made.number("made_go").value = 0
    ended = []

    def ask():
        try:
            plugin.cdroms().close()
        except diskscout.ClosedError as error:
            ended.append(error)

    thread = threading.Thread(target=ask)
    # Who waits for it all the same goes on late, and fails.
    in_time = threading.Timer(10, lambda: setattr(made.number("made_go"), "value", 1))

    def begin():
        thread.start()
        in_time.start()
        while made.number("made_waiting").value == 0:
            time.sleep(0.001)

    def end():
        in_time.cancel()
        made.number("made_go").value = 1
        thread.join()
        return ended

    plugin.begin, plugin.end = begin, end
    return plugin


def test_forgetting_waits_for_nobody(slow):
    """While another thread is inside, what is forgotten is left for it to give back."""
    forgotten = slow.disks()
    slow.begin()
    with pytest.warns(ResourceWarning):
        del forgotten
        gc.collect()
    assert slow.live_records == 3
    slow.end()
    assert slow.live_records == 0


def test_a_list_that_comes_after_its_plugin_was_closed_goes_back(slow):
    slow.begin()
    slow.close()
    (error,) = slow.end()
    assert str(error) == f"{slow.path} is closed"
    assert slow.live_records == 0


@pytest.mark.parametrize("asked, host, told", [("Plugin", "tests/hosts/real-kernel", "5"),
                                               ("BlockPlugin", "tests/block/hosts/notebook", "9")])
def test_an_interpreter_that_ends_with_a_list_open_ends_well(interpreter, build_dir, source_dir, asked, host, told):
    program = (f"import sys, diskscout\nplugin = diskscout.{asked}(directory=sys.argv[1])\n"
               "kept = getattr(plugin, 'devices' if 'Block' in sys.argv[2] else 'disks')()\nprint(len(kept))\n")
    place = source_dir / host if "block" not in host else build_dir / host
    done = interpreter("-c", program, build_dir, asked, host=place)
    assert (done.stdout, done.stderr, done.returncode) == (f"{told}\n", "", 0)


# ---- closed in the middle ----

def test_what_closes_a_list_while_it_is_read_does_not_take_it_away(made, made_library, monkeypatch):
    """A signal handler, or the collector, in the thread that makes the copy."""
    plugin = diskscout.Plugin(made_library)
    disks = plugin.disks()
    (row, end), *others = diskscout.Disk.ROWS
    assert row.member == "nDiskID"
    closing = row._replace(shape=row.shape._replace(take=lambda value: disks.close() or value))
    monkeypatch.setattr(diskscout.Disk, "ROWS", ((closing, end), *others))
    assert disks[0].device_name == "x" * 64
    assert disks.closed and plugin.live_records == 0


def test_threads_read_and_close_at_once(made, made_library):
    plugin = diskscout.Plugin(made_library)
    wrong = []

    def read(disks):
        try:
            while True:
                if disks[0].device_name != "x" * 64:
                    wrong.append(disks[0])
        except diskscout.ClosedError:
            pass

    for _ in range(20):
        disks = plugin.disks()
        readers = [threading.Thread(target=read, args=(disks,)) for _ in range(3)]
        for one in readers:
            one.start()
        time.sleep(0.002)
        disks.close()
        for one in readers:
            one.join()
    assert wrong == []
    assert plugin.live_records == 0


# ---- threads inside the library ----

def in_threads(work):
    failed = []

    def guarded():
        try:
            work()
        except BaseException as error:
            failed.append(error)

    threads = [threading.Thread(target=guarded) for _ in range(THREADS)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failed == []


@pytest.fixture
def quick_switches():
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e-5)
    yield
    sys.setswitchinterval(interval)


def test_one_thread_at_a_time_is_inside_the_classic_library(made, made_library, quick_switches):
    plugins = [diskscout.Plugin(made_library), diskscout.Raid(made_library)]

    def ask():
        for _ in range(30):
            with plugins[0].disks() as disks, plugins[1].tasks("aac0") as tasks:
                assert (len(disks), len(tasks)) == (2, 2)

    in_threads(ask)


def test_threads_ask_the_classic_library(classic, host):
    def ask():
        for _ in range(3):
            with classic.disks() as disks, classic.partitions() as partitions:
                assert (len(disks), len(partitions)) == (5, 12)

    in_threads(ask)


def test_threads_ask_the_library_of_today(block, show, build_dir, quick_switches):
    show(build_dir / "tests/block/hosts/notebook")

    def ask():
        for _ in range(3):
            with block.devices() as devices, block.mounts() as mounts:
                assert (len(devices), len(mounts)) == (9, 6)

    in_threads(ask)


# ---- forked children ----

def child_does(work):
    """How a forked child ends: 0 after its work, or the signal that ended it because it came to no end."""
    child = os.fork()
    if child == 0:
        try:
            signal.signal(signal.SIGALRM, signal.SIG_DFL)
            signal.alarm(5)
            work()
            os._exit(0)
        finally:
            os._exit(1)
    return os.waitpid(child, 0)[1]


@pytest.mark.filterwarnings("ignore:.*fork:DeprecationWarning")
def test_a_child_asks_that_was_forked_while_a_thread_was_inside(slow):
    kept = slow.disks()

    def ask():
        with slow.disks() as disks:
            assert len(disks) == 2
        slow.close()
        assert kept.closed

    slow.begin()
    ended = child_does(ask)
    slow.end()
    assert ended == 0
    assert not kept.closed and slow.live_records == 2
    slow.close()


@pytest.mark.filterwarnings("ignore:.*fork:DeprecationWarning")
def test_a_child_closes_what_another_thread_was_reading(made, made_library, monkeypatch):
    plugin = diskscout.Plugin(made_library)
    disks = plugin.disks()
    reading, go_on = threading.Event(), threading.Event()
    (row, end), *others = diskscout.Disk.ROWS
    waiting = row._replace(shape=row.shape._replace(take=lambda value: reading.set() or go_on.wait(10)))
    monkeypatch.setattr(diskscout.Disk, "ROWS", ((waiting, end), *others))
    reader = threading.Thread(target=lambda: disks[0])
    reader.start()
    reading.wait()
    ended = child_does(plugin.close)
    go_on.set()
    reader.join()
    assert ended == 0
    plugin.close()
    assert plugin.live_records == 0


def test_a_lock_that_the_forking_thread_holds_stays_its_own(made, made_library):
    plugin = diskscout.Plugin(made_library)
    with library.CLASSIC_THREADS._inside:
        with library.CLASSIC_THREADS._inside:
            ended = child_does(lambda: plugin.disks().close() or library.CLASSIC_THREADS._inside.release())
    assert ended == 0


# ---- answers that no host gives ----

def test_texts_without_an_end_and_without_sense(made, made_library):
    with diskscout.Plugin(made_library) as plugin, plugin.disks() as disks:
        assert disks[0].device_name == "x" * 64
        assert disks[0].model == "A\udcff\udcfe\u00e4"
        assert disks[0].model.encode("utf-8", "surrogateescape") == b"A\xff\xfe\xc3\xa4"
        assert disks[0].vendor == ""


def test_numbers_at_their_ends(made, made_library):
    with diskscout.Plugin(made_library) as plugin, plugin.disks() as disks:
        assert disks[0].size_bytes == 2**64 - 1
        assert disks[0].total_blocks == 2**32 - 1
        assert disks[0].used_by_system is True
        assert disks[1].used_by_system is False


def test_a_failure_has_what_was_found_and_nothing_stays(made, made_library):
    with diskscout.Plugin(made_library) as plugin:
        with pytest.raises(diskscout.QueryError) as failure:
            plugin.partitions()
        assert [(part.partition_index, part.boot_byte) for part in failure.value.found] == [(0, 128), (1, 0)]
        assert plugin.live_records == 0


def test_codes_without_a_name_are_numbers(made, made_library):
    with diskscout.Plugin(made_library) as plugin, plugin.containers("aac0") as containers:
        (one,) = containers
    assert (one.raid_type, type(one.raid_type)) == (42, int)
    assert one.usage is diskscout.ContainerUsage.NTFS
    assert (one.member_count, one.members) == (70, (0, 0x010A02))
    assert diskscout.Address.of(one.members[1]) == (1, 10, 2)
    assert (one.total_size_low32, one.hot_spare) == (2**31, None)


def test_records_of_other_releases(made, made_library):
    with diskscout.BlockPlugin(made_library) as plugin, plugin.devices() as devices:
        later, earlier = devices
    assert (later.record_size, earlier.record_size) == (312, 248)
    for device in (later, earlier):
        assert (device.kind, device.state, device.removable) == ("disk", "running", True)
        assert (device.partition_number, device.size_bytes, device.rotational) == (None, None, None)
        assert device.links == ("/dev/a", "/dev/b")
    assert (later.dm_target, later.under_swap, later.under_root) == ("linear", True, False)
    # Behind the end of its record.
    assert (earlier.dm_target, earlier.under_swap, earlier.under_root) == (None, None, None)


def test_a_priority_of_minus_one_is_one(made, made_library):
    with diskscout.BlockPlugin(made_library) as plugin, plugin.mounts() as mounts:
        assert [(mount.kind, mount.priority) for mount in mounts] == [("mount", None), ("swap", -1)]


def test_what_only_a_running_kernel_tells(made, made_library):
    with diskscout.BlockPlugin(made_library) as plugin, plugin.contents() as contents, plugin.arrays() as arrays:
        (content,), (array,) = contents, arrays
    assert (content.error, content.ambiguous) == (None, True)
    assert [(entry.number, entry.start_bytes, entry.size_bytes, entry.flags) for entry in content.partitions] == [
        (1, 512, 1024, -3)]
    assert (array.sync_done_sectors, array.sync_speed_kib, array.mismatches_sectors) == (5000000000, 1200, None)
    # A name that should not be null is empty, and no end of the process.
    assert (array.name, array.uuid, array.members) == ("", None, ())


def test_an_empty_answer_is_an_empty_list(made, made_library):
    with diskscout.Plugin(made_library) as plugin, plugin.raid_space("aac0", 0x010A02) as space:
        assert list(space) == []
        assert not space
    assert made.text("made_argument").raw[:9] == b"\x02\x0a\x01\x00aac0\0"


def test_a_failure_of_today_has_the_name_of_errno(made, made_library):
    with diskscout.BlockPlugin(made_library) as plugin:
        with pytest.raises(diskscout.BlockError) as failure:
            plugin.links()
    assert str(failure.value) == "CMD_GET_BLOCK_LINKS failed: EIO (5): Input/output error"
    assert (failure.value.operation, failure.value.code, failure.value.name) == ("CMD_GET_BLOCK_LINKS", 5, "EIO")


def test_a_list_of_an_operation_goes_back_after_a_failure_too(made, made_library):
    with diskscout.Raid(made_library) as raid:
        with raid.tasks("aac0") as tasks:
            assert (tasks[0].task_id, tasks[0].function, tasks[0].done) == (None, 99, 0.25)
            assert tasks[0].state is diskscout.TaskState.OTHER
        with pytest.raises(diskscout.RaidError) as failure:
            raid.tasks("broken")
        assert str(failure.value) == "Aac_Get_Task_List failed: -77"
        assert (failure.value.code, failure.value.name, len(failure.value.found)) == (-77, "", 2)


def test_flags_come_in_their_order(made, made_library):
    with diskscout.Raid(made_library) as raid:
        raid.initialize_disk("aac0", 5, with_data=True)
        assert made.text("made_words").value == b"aac0 1 0 5"
        raid.initialize_disk("aac0", 5, in_use=True)
        assert made.text("made_words").value == b"aac0 0 1 5"


def test_what_is_no_text_or_no_number_is_refused(made, made_library):
    """Whatever the type checker would have said, nothing is asked."""
    with diskscout.Plugin(made_library) as plugin, diskscout.Raid(made_library) as raid:
        for call in (plugin.containers, plugin.raid_disks, plugin.raid_partitions, raid.containers, raid.tasks,
                     plugin.stcli, lambda text: plugin.raid_space(text, 0),
                     lambda text: raid.create_raid1("aac0", (1, 2), label=text)):
            for text, told in ((None, "None"), (b"aac0", "b'aac0'"), (7, "7")):
                with pytest.raises(TypeError, match=f"^{told} is no text$"):
                    call(text)
        for call in (lambda number: plugin.raid_space("aac0", number), lambda number: raid.disk_space("aac0", number),
                     raid.controller_name, lambda number: raid.create_raid0("aac0", (1, number)),
                     lambda number: raid.create_raid0("aac0", (1, 2), size_megabytes=number)):
            for number, told in (("x", "'x'"), (1.5, "1.5"), ([], r"\[\]")):
                with pytest.raises(TypeError, match=f"^{told} is no number$"):
                    call(number)


def test_words_of_a_command_come_as_they_are(made, made_library):
    with diskscout.Plugin(made_library) as plugin:
        plugin.stcli("disk", "a b", "\u00e4\udcff")
        assert made.text("made_words").value == b"disk a b \xc3\xa4\xff "
        with pytest.raises(ValueError, match="a null"):
            plugin.stcli("help\0")
