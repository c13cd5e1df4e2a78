# SPDX-License-Identifier: Apache-2.0
"""Every field of every record of the classic lists, on all captured hosts of their time."""

import json
import pathlib

import pytest

import diskscout

HOSTS = sorted(found.parent for found in (pathlib.Path(__file__).resolve().parents[1] / "hosts").glob("*/host.txt"))
# What the hosts' expected answers call otherwise.
NAMES = {"part_number": "partition_count", "ex_part_number": "extended_partition_count",
         "part_index": "partition_index", "start": "start_bytes", "size": "size_bytes",
         "total_space": "total_space_bytes", "used_space": "used_space_bytes"}
TEXTS = {"vendor", "model", "serial_number", "firmware_version", "mount_point", "label", "file_system", "device_name",
         "description", "interface", "media", "disk_device_name", "type"}


def expected_records(host, kind):
    """The answers that were worked out by hand, as the records hold them."""
    records = json.loads((host / "expected.json").read_text(encoding="utf-8"))[kind]
    told = [{NAMES.get(key, key): value for key, value in record.items() if key != "active"} for record in records]
    return [{key: "" if value is None and key in TEXTS else value for key, value in record.items()}
            for record in told]


def shown(value):
    """As the expected answers show what is no UTF-8."""
    return value.encode("utf-8", "surrogateescape").decode("utf-8", "replace") if isinstance(value, str) else value


def fails(host, kind):
    return kind in json.loads((host / "expected.json").read_text(encoding="utf-8"))["failed"]


@pytest.mark.parametrize("host", HOSTS, ids=lambda host: host.name)
def test_every_field(classic, show, host):
    show(host)
    for kind, query in (("disks", classic.disks), ("partitions", classic.partitions), ("cdroms", classic.cdroms)):
        if fails(host, kind):
            with pytest.raises(diskscout.QueryError) as failure:
                query()
            assert (failure.value.code, failure.value.name) == (-1, "")
            records = failure.value.found
        else:
            with query() as records:
                records = list(records)
        told = [{name: shown(value) for name, value in vars(record).items()} for record in records]
        # As text, because to Python true equals 1.
        assert json.dumps(told, indent=1, sort_keys=True) == json.dumps(expected_records(host, kind), indent=1,
                                                                        sort_keys=True)


def test_a_failed_query_says_which_and_has_what_was_found(classic, show):
    """Of this host's disks the second has no node: the partitions of the first were found."""
    (host,) = (host for host in HOSTS if host.name == "missing-node")
    show(host)
    before = classic.live_records
    with pytest.raises(diskscout.QueryError, match="^CMD_GET_PARTITIONS failed: -1$") as failure:
        classic.partitions()
    assert failure.value.operation == "CMD_GET_PARTITIONS"
    assert len(failure.value.found) == len(expected_records(host, "partitions"))
    assert classic.live_records == before
