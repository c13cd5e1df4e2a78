"""What the built library is as a file: its exports, its needs, its hardening."""

import re
import subprocess

import pytest

EXPORTS = {
    "GetItemInfo", "SetItemInfo", "stcli", "memory_counter_hdd", "memory_counter_hwraid", "g_szConfigFileName",
    "Aac_Clear_Container_List", "Aac_Clear_Controller_List", "Aac_Clear_Disk_List", "Aac_Clear_Disk_Partition_List",
    "Aac_Clear_Disk_Space_List", "Aac_Clear_Task_List", "Aac_Container_Delete", "Aac_Container_Remove_Failover",
    "Aac_Container_Set_Failover", "Aac_Container_Show_Failover", "Aac_Create_Raid0", "Aac_Create_Raid1",
    "Aac_Create_Raid10", "Aac_Create_Raid5", "Aac_Disk_Initialize", "Aac_Disk_Show_Defect", "Aac_Disk_Show_Partition",
    "Aac_Disk_Show_Space", "Aac_Get_Container_Corresponding_Disk_Name", "Aac_Get_Container_List",
    "Aac_Get_Container_Task", "Aac_Get_Controller_List", "Aac_Get_Controller_Name", "Aac_Get_Disk_List",
    "Aac_Get_Task_List", "AnalyzeControllerFile", "AnalyzeDiskFile", "AnalyzeDiskInitializeFile",
    "AnalyzeDiskShowDefectFile", "AnalyzeDiskShowSpaceFile", "AnalyzePartitionFile", "AnalyzeTaskFile",
    "Analyze_Create_Raid_Created_File",
}

# What a plug-in in a foreign process leaves alone: memory that somebody would have to give back, unbounded
# copies, threads, signals and exit handlers.
FORBIDDEN = {
    "malloc", "calloc", "realloc", "strdup", "strndup", "getline", "getdelim", "asprintf", "vasprintf",
    "strcpy", "strcat", "sprintf", "vsprintf", "strncpy", "strncat", "strtok", "atoi", "gets", "alloca",
    "pthread_create", "signal", "sigaction", "sigprocmask", "atexit", "at_quick_exit", "on_exit",
    "setlocale", "chdir", "umask",
}


@pytest.fixture(scope="module")
def library(build_dir):
    return build_dir / "diskscout.so"


def tool(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def dynamic_symbols(library, kind):
    lines = tool("nm", "-D", kind, str(library)).splitlines()
    return {line.split()[-1].split("@")[0] for line in lines}


def test_exports_are_the_agents_interface_and_nothing_else(library):
    assert dynamic_symbols(library, "--defined-only") == EXPORTS


def test_links_libc_the_cxx_runtime_and_libuuid_only(library):
    needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", tool("readelf", "-dW", str(library))))
    assert "libuuid.so.1" in needed
    assert needed <= {"libc.so.6", "libstdc++.so.6", "libgcc_s.so.1", "libm.so.6", "libuuid.so.1"}


def test_calls_nothing_that_a_guest_should_not(library):
    used = dynamic_symbols(library, "--undefined-only")
    checked = {re.sub(r"^__(.*)_chk$", r"\1", name) for name in used}
    assert (used | checked) & FORBIDDEN == set()


def test_has_no_static_constructors(library):
    names = tool("nm", str(library))
    assert "_GLOBAL__" not in names
    # frame_dummy alone, which every object of the compiler brings.
    size = re.search(r"\.init_array\s+INIT_ARRAY\s+\S+\s+\S+\s+(\S+)", tool("readelf", "-SW", str(library)))
    assert int(size.group(1), 16) == 8


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
