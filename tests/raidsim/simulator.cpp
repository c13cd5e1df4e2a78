// SPDX-License-Identifier: Apache-2.0
#include "simulator.h"

#include <stdlib.h>

namespace fs = std::filesystem;

std::string piece(const std::string &at, long long offset_kb, long long size_kb)
{
	return "piece at=" + at + " offset_kb=" + std::to_string(offset_kb) +
	       " size_kb=" + std::to_string(size_kb) + " rebuild=no\n";
}

static std::string quoted(const std::string &text)
{
	const bool plain = !text.empty() && text.find(' ') == std::string::npos;
	return plain ? text : '"' + text + '"';
}

std::string container(int number, const std::string &type, long long size_kb, int stripe_kb,
                      const std::string &device, const std::string &label, const std::string &pieces)
{
	return "container number=" + std::to_string(number) + " type=" + type +
	       " size_kb=" + std::to_string(size_kb) + " stripe_kb=" + std::to_string(stripe_kb) +
	       " usage=None device=" + quoted(device) + " label=" + quoted(label) + " parent=-1 data=no\n" +
	       pieces;
}

const std::string SYSTEM_MIRROR =
	"container number=0 type=Mirror size_kb=10485760 stripe_kb=0 usage=Open device=/dev/sda label=system "
	"parent=-1 data=yes\n"
	"piece at=0:00:0 offset_kb=64 size_kb=10485760 rebuild=no\n"
	"piece at=0:01:0 offset_kb=64 size_kb=10485760 rebuild=no\n"
	"spare at=0:04:0\n";
const std::string VOLUME =
	"container number=1 type=Volume size_kb=1572864 stripe_kb=0 usage=Valid device=/dev/sdb label=\"\" "
	"parent=-1 data=yes\n"
	"piece at=1:10:0 offset_kb=64 size_kb=1572864 rebuild=no\n";
const std::string BIG_STRIPE =
	"container number=2 type=Stripe size_kb=4194304 stripe_kb=64 usage=Open device=/dev/sdc label=\"big "
	"data set\" parent=-1 data=yes\n"
	"container number=24 type=Mirror size_kb=2097152 stripe_kb=0 usage=Open device=\"\" label=\"\" "
	"parent=2 data=no\n"
	"piece at=0:02:0 offset_kb=64 size_kb=2097152 rebuild=no\n"
	"piece at=0:03:0 offset_kb=64 size_kb=2097152 rebuild=no\n"
	"container number=25 type=Mirror size_kb=2097152 stripe_kb=0 usage=Open device=\"\" label=\"\" "
	"parent=2 data=no\n"
	"piece at=1:00:0 offset_kb=64 size_kb=2097152 rebuild=no\n"
	"piece at=1:01:0 offset_kb=64 size_kb=2097152 rebuild=yes\n";
const std::string FIVE =
	"container number=3 type=RAID-5 size_kb=1024000 stripe_kb=32 usage=NTFS device=/dev/sdd label=five "
	"parent=-1 data=no\n"
	"piece at=1:00:0 offset_kb=2097216 size_kb=512000 rebuild=no\n"
	"piece at=1:01:0 offset_kb=2097216 size_kb=512000 rebuild=no\n"
	"piece at=1:02:0 offset_kb=1048640 size_kb=512000 rebuild=no\n";
const std::string QUARTER =
	"container number=10 type=Volume size_kb=4096 stripe_kb=0 usage=UnMap'd device=/dev/sde "
	"label=quarter parent=-1 data=no\n"
	"piece at=0:07:0 offset_kb=64 size_kb=1024 rebuild=no\n"
	"piece at=0:07:0 offset_kb=1088 size_kb=1024 rebuild=no\n"
	"piece at=0:07:0 offset_kb=2112 size_kb=1024 rebuild=no\n"
	"piece at=0:07:0 offset_kb=3136 size_kb=1024 rebuild=no\n";
const std::string ALL_CONTAINERS = SYSTEM_MIRROR + VOLUME + BIG_STRIPE + FIVE + QUARTER;
const std::string ALL_TASKS = "task id=105 function=Scrub done=999 step=100 container=0 state=SUS\n"
			      "task id=106 function=Rebuild done=450 step=250 container=25 state=SUS\n";

static std::string disk(const std::string &at, int primary = 0, int grown = 0,
                        const std::string &usage = "Initialized", const std::string &vendor = "ACME",
                        const std::string &bad_status = "no")
{
	return "disk at=" + at + " type=Disk removable=no vendor=" + quoted(vendor) +
	       " product=EX1016 revision=SA1B blocks=33554560 bytes_per_block=512 usage=" + usage +
	       " shared=no rate=320 primary_defects=" + std::to_string(primary) +
	       " grown_defects=" + std::to_string(grown) + " bad_status=" + bad_status + "\n";
}

std::string text_of(const state_t &state)
{
	return "# State of the simulated controllers; written anew at every change.\n"
	       "format version=1\n\n"
	       "controller name=aac0 type=\"EXAMPLE 2200S\" availability=read/write clustering=No opens=yes "
	       "channels=2 next_task=" +
	       std::to_string(state.next_task) + "\n" + disk("0:00:0", 3) + disk("0:01:0", 12, 1) +
	       disk("0:02:0") + disk("0:03:0") + disk("0:04:0", 0, 0, "Initialized", state.vendor_of_0_04) +
	       disk("0:05:0", 0, 0, state.usage_of_0_05) +
	       "disk at=0:06:0 type=Processor removable=yes vendor=MAKER product=SHELF revision=0.9 blocks=0 "
	       "bytes_per_block=0 usage=Unowned shared=yes rate=0 primary_defects=0 grown_defects=0 "
	       "bad_status=no\n" +
	       disk("0:07:0") + disk("1:00:0") + disk("1:01:0") + disk("1:02:0") + disk("1:03:0") +
	       disk("1:10:0", 5, 5, "Initialized", "ACME", "yes") + state.containers + state.tasks +
	       "\ncontroller name=aac1 type=\"EXAMPLE 2120S\" availability=\"read only\" clustering=Yes "
	       "opens=yes channels=1 next_task=101\n" +
	       disk("0:00:0") +
	       "\ncontroller name=aac2 type=\"EXAMPLE 5400S\" availability=read/write clustering=No "
	       "opens=busy "
	       "channels=1 next_task=101\n"
	       "\ncontroller name=aac3 type=OTHER availability=Unknown clustering=Odd opens=wrong-type "
	       "channels=1 next_task=101\n";
}

void SimulatorTest::SetUp()
{
	SiteTest::SetUp();
	fs::create_directory(site_ / "state");
	setenv("RAIDSIM_STATE", (site_ / "state" / "controllers").c_str(), 1);
	use_state({});
	paint("terminal,status", FILTER_PROGRAM);
}

void SimulatorTest::TearDown()
{
	unsetenv("RAIDSIM_STATE");
	unsetenv("RAIDSIM_FAULT");
	for (const auto &entry : fs::directory_iterator(site_ / "state"))
		EXPECT_EQ(entry.path().filename(), "controllers") << "left by the simulator";
	SiteTest::TearDown();
}

void SimulatorTest::use_state(const state_t &state)
{
	write_file(site_ / "state" / "controllers", text_of(state));
}

// The names become words of a shell command, wherever the tree lies.
static std::string linked(const fs::path &site, const fs::path &program)
{
	const fs::path link = site / program.filename();
	if (!fs::exists(link))
		fs::create_symlink(program, link);
	return link.filename();
}

void SimulatorTest::paint(const std::string &words, const std::string &filter_program)
{
	configure("Cli Path:" + site_.string() + "\nCli Name:" + linked(site_, RAIDSIM_PROGRAM) +
	          "\nFilter Script:" + (site_ / linked(site_, filter_program)).string() + "\n");
	painting_ = words;
	fault("");
}

void SimulatorTest::fault(const std::string &words)
{
	setenv("RAIDSIM_FAULT", (painting_ + "," + words).c_str(), 1);
}

std::string SimulatorTest::state_now() const
{
	return read_file(site_ / "state" / "controllers");
}
