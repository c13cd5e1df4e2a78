// SPDX-License-Identifier: Apache-2.0
// The text that a new state file begins with: a mirror with a hot spare, a volume of one
// disk, a stripe of two mirrors of which one is being rebuilt, free disks, an enclosure's processor,
// and a second controller that is read only.
#include "sample.h"

const char SAMPLE_STATE[] = R"(
format version=1
controller name=aac0 type="EXAMPLE 2200S" availability=read/write clustering=No opens=yes channels=2 next_task=107
disk at=0:00:0 type=Disk removable=no vendor=ACME product=EX103073FL3800 revision=SA1B blocks=143374805 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=3 grown_defects=0 bad_status=no
disk at=0:01:0 type=Disk removable=no vendor=ACME product=EX103073FL3800 revision=SA1B blocks=143374805 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=12 grown_defects=1 bad_status=no
disk at=0:02:0 type=Disk removable=no vendor=ACME product=EX103073FL3800 revision=SA1B blocks=143374805 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=0 grown_defects=0 bad_status=no
disk at=0:03:0 type=Disk removable=no vendor=ACME product=EX103073FL3800 revision=SA1B blocks=143374805 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=7 grown_defects=0 bad_status=no
disk at=0:04:0 type=Disk removable=no vendor="EXAMPLE A" product="FAST DISK 73" revision=1.02 blocks=143374805 bytes_per_block=512 usage=Initialized shared=no rate=160 primary_defects=0 grown_defects=0 bad_status=no
disk at=0:05:0 type=Disk removable=no vendor="EXAMPLE A" product="FAST DISK 73" revision=1.02 blocks=143374805 bytes_per_block=512 usage="Not Initialized" shared=no rate=160 primary_defects=0 grown_defects=0 bad_status=no
disk at=0:06:0 type=Processor removable=no vendor=ACME product=ENCLOSURE revision=0.9 blocks=0 bytes_per_block=0 usage=Unowned shared=no rate=0 primary_defects=0 grown_defects=0 bad_status=no
disk at=1:00:0 type=Disk removable=no vendor=ACME product=EX106146 revision=SA2C blocks=286749488 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=1 grown_defects=0 bad_status=no
disk at=1:01:0 type=Disk removable=no vendor=ACME product=EX106146 revision=SA2C blocks=286749488 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=2 grown_defects=0 bad_status=no
disk at=1:02:0 type=Disk removable=no vendor=ACME product=EX106146 revision=SA2C blocks=286749488 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=4 grown_defects=0 bad_status=no
disk at=1:10:0 type=Disk removable=no vendor=ACME product=EX106146 revision=SA2C blocks=286749488 bytes_per_block=512 usage=Initialized shared=yes rate=320 primary_defects=0 grown_defects=0 bad_status=yes
container number=0 type=Mirror size_kb=35546726 stripe_kb=0 usage=Open device=/dev/sda label=system parent=-1 data=yes
piece at=0:00:0 offset_kb=64 size_kb=35546726 rebuild=no
piece at=0:01:0 offset_kb=64 size_kb=35546726 rebuild=no
spare at=0:04:0
container number=1 type=Volume size_kb=10485760 stripe_kb=0 usage=Valid device=/dev/sdb label="" parent=-1 data=yes
piece at=1:10:0 offset_kb=64 size_kb=10485760 rebuild=no
container number=2 type=Stripe size_kb=41943040 stripe_kb=64 usage=Open device=/dev/sdc label=big parent=-1 data=yes
container number=24 type=Mirror size_kb=20971520 stripe_kb=0 usage=Open device="" label="" parent=2 data=no
piece at=0:02:0 offset_kb=64 size_kb=20971520 rebuild=no
piece at=0:03:0 offset_kb=64 size_kb=20971520 rebuild=no
container number=25 type=Mirror size_kb=20971520 stripe_kb=0 usage=Open device="" label="" parent=2 data=no
piece at=1:00:0 offset_kb=64 size_kb=20971520 rebuild=no
piece at=1:01:0 offset_kb=64 size_kb=20971520 rebuild=yes
task id=106 function=Rebuild done=450 step=250 container=25 state=RUN
controller name=aac1 type="EXAMPLE 2120S" availability="read only" clustering=No opens=yes channels=1 next_task=101
disk at=0:00:0 type=Disk removable=no vendor=ACME product=EX103073FL3800 revision=SA1B blocks=143374805 bytes_per_block=512 usage=Initialized shared=no rate=320 primary_defects=0 grown_defects=0 bad_status=no
)";
