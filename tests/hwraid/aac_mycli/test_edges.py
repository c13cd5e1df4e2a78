# SPDX-License-Identifier: Apache-2.0
"""Values that are right and look like none, and words that the records have no value for."""

import pytest
from screens import CONTAINER, CONTAINER_ID, HELLO, MAIN, MANAGEMENT, SUB_MENUS, visit


@pytest.fixture
def spare_000(site):
    """The hot spare of container 3 is the disk whose packed address is 0."""
    state = site.state.read_text()
    assert state.count("spare at=1:10:0\n") == 1
    site.state.write_text(state.replace("spare at=1:10:0\n", "spare at=0:00:0\n"))
    return site


def test_failover_disk_0(spare_000):
    result = CONTAINER_ID + "\n" + "HotSpare    :(0 0 0)\ncontainer show failover return:0\n"
    assert spare_000.run("3\n4\n3\n0\n0\n") == visit(CONTAINER, result)


def test_container_with_failover_disk_0(spare_000):
    """The five other containers have none."""
    transcript = spare_000.run("3\n1\n0\n0\n")
    (record,) = [text for text in transcript.split("-" * 30 + "\n") if "Label: five\n" in text]
    assert record.endswith("HotSpare    :(0 0 0)\n")
    assert transcript.count("HotSpare    :none\n") == 5


def test_kept_container_with_failover_disk_0(spare_000):
    transcript = spare_000.run("6\n5\n0\n0\n")
    assert transcript.count("nHotSpare:00000000\nszLabel:five\n") == 1
    assert transcript.count("nHotSpare:ffffffff\n") == 5


@pytest.fixture
def perhaps_clustered(site):
    """The word stands for no value: -1, for which the console says No."""
    state = site.state.read_text()
    assert state.count("clustering=Yes") == 1
    site.state.write_text(state.replace("clustering=Yes", "clustering=Perhaps"))
    return site


def test_clustering_that_is_not_known(perhaps_clustered):
    transcript = perhaps_clustered.run("1\n1\n0\n0\n")
    assert transcript.count("Clustering  : ") == transcript.count("Clustering  : No\n") == 3


def test_kept_clustering_that_is_not_known(perhaps_clustered):
    transcript = perhaps_clustered.run("6\n1\n0\n0\n")
    assert transcript.startswith(HELLO + MAIN + SUB_MENUS[MANAGEMENT][0])
    assert transcript.count("Clustering:-1, \n") == 1
    assert transcript.count("Clustering:0, \n") == 2
