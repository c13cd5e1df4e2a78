// SPDX-License-Identifier: Apache-2.0
// Why the classic lists lack what a host has: hosts of a few lines, and today's devices told by hand.
#include "partition_query.h"
#include "reasons_lists.h"

#include "diskscout.h"
#include "kinds.h"
#include "replay/host_dir.h"

#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

const kind_t KIND = {};

// A message as one line: "note no_medium: sdb: no medium".
std::string line_of(const message_t &message)
{
	EXPECT_EQ(message.kind, &KIND);
	return std::string(word_of(message.severity)) + " " + std::string(word_of(message.code)) + ": " +
	       message.text;
}

std::vector<std::string> lines_of(const messages_t &messages)
{
	std::vector<std::string> lines;
	for (const message_t &message : messages)
		lines.push_back(line_of(message));
	return lines;
}

class Reasons : public HostDir
{
protected:
	// A line of /proc/partitions.
	void block(const std::string &name, long long kib = 1024)
	{
		block_ += "   8        0  " + std::to_string(kib) + " " + name + "\n";
	}

	// A device of three lines in /proc/scsi/scsi: host 0, channel 0, lun 0.
	void scsi(int id, const std::string &type = "Direct-Access")
	{
		scsi_ += "Host: scsi0 Channel: 00 Id: " + std::to_string(id) + " Lun: 00\n" +
		         "  Vendor: ACME     Model: DISK             Rev: 1.0\n" + "  Type:   " + type +
		         "                    ANSI  SCSI revision: 02\n";
	}

	void ide(const std::string &name, const std::string &media)
	{
		put("proc/ide/" + name + "/identify", "0040 0040 0040 0040 0040 0040 0040 0040\n");
		put("proc/ide/" + name + "/media", media + "\n");
		put("proc/ide/" + name + "/model", "ACME\n");
	}

	// A node with the SCSI address of that id.
	void node(const std::string &name, int id, const std::string &more = "")
	{
		table_ += "device /dev/" + name + "\n\tBLKGETSIZE 2048\n\tSCSI_IOCTL_GET_IDLUN " +
		          std::to_string(id) + "\n" + more;
	}

	void today(const std::string &name, const std::string &kind = "disk", long long size = 1048576,
	           const std::string &disk = "")
	{
		facts_.devices.push_back({name, kind, disk, size});
	}

	void mounted(const std::string &source, int times = 1)
	{
		for (int i = 0; i < times; i++)
			mounts_ += source + " /m ext3 rw 0 0\n";
	}

	void listed(const std::string &name) { facts_.disks.push_back({"/dev/" + name, 1048576}); }

	void row(const std::string &disk, unsigned index, std::uint64_t start, std::uint64_t sectors,
	         const std::string &mount_points = "")
	{
		facts_.partitions.push_back(
			{"/dev/" + disk, index, start * 512, sectors * 512, mount_points});
	}

	kernel_tables_t tables()
	{
		if (has_block_table)
			put("proc/partitions", "major minor  #blocks  name\n\n" + block_);
		if (has_scsi_table)
			put("proc/scsi/scsi", "Attached devices:\n" + scsi_);
		if (has_mount_table)
			put("etc/mtab", mounts_);
		EXPECT_EQ(HostDir::show(table_), 0);
		return read_kernel_tables();
	}

	std::vector<std::string> of_disks()
	{
		const kernel_tables_t read = tables();
		return lines_of(disk_reasons(facts_, unlisted_disks(facts_, read), read, KIND));
	}

	std::vector<std::string> of_cdroms() { return lines_of(cdrom_reasons(facts_, tables(), KIND)); }

	std::vector<std::string> of_partitions(bool disks_are_shown = false)
	{
		const kernel_tables_t read = tables();
		return lines_of(
			partition_reasons(facts_, unlisted_disks(facts_, read), read, KIND, disks_are_shown));
	}

	std::string failure() { return partition_failure(facts_, tables()); }

	facts_t facts_;
	std::string table_;
	bool has_block_table = true;
	bool has_scsi_table = true;
	bool has_mount_table = true;

private:
	std::string block_, scsi_, mounts_;
};

// ---- names ----

TEST(ReasonNames, AreClassicByTheirLetters)
{
	for (const char *name : {"hda", "hdt"})
		EXPECT_EQ(classic_name_of(name), classic_name_t::IDE) << name;
	for (const char *name : {"sda", "sdz", "sdaa", "sdcz", "sddx"})
		EXPECT_EQ(classic_name_of(name), classic_name_t::SCSI) << name;
	for (const char *name : {"hdu", "hdaa", "sddy", "sddz", "sdea", "sdaaa", "sda1", "hda1", "sd", "",
	                         "vda", "xvda", "vdaa", "zram0", "nvme0n1", "cciss/c0d0", "mmcblk0", "sdA"})
		EXPECT_EQ(classic_name_of(name), classic_name_t::NONE) << name;
}

TEST(ReasonNames, BeyondEightAreCounted)
{
	std::vector<std::string> names = {"sda"};
	EXPECT_EQ(names_in_short(names), "sda");
	names = {"a", "b", "c", "d", "e", "f", "g", "h"};
	EXPECT_EQ(names_in_short(names), "a, b, c, d, e, f, g, h");
	names.push_back("i");
	EXPECT_EQ(names_in_short(names), "a, b, c, d, e, f, g, h and 1 more");
	names.resize(1000, "x");
	EXPECT_EQ(names_in_short(names), "a, b, c, d, e, f, g, h and 992 more");
}

TEST(ReasonNames, SteerNoTerminal)
{
	EXPECT_EQ(names_in_short({"sd\x1b[2J"}), "sd?[2J");
}

// ---- disks ----

TEST_F(Reasons, AHostWithAllItsDisksListedHasNone)
{
	today("sda");
	today("sda1", "partition", 512, "sda");
	listed("sda");
	block("sda");
	EXPECT_THAT(of_disks(), IsEmpty());
}

TEST_F(Reasons, NamesThatAreNotClassicShareALine)
{
	for (const char *name : {"nvme0n1", "vda", "mmcblk0", "sdaaa", "sddy", "xvda"})
		today(name);
	today("zram0", "zram");
	today("fd0", "floppy");
	EXPECT_THAT(of_disks(),
	            ElementsAre("note no_classic_name: nvme0n1, vda, mmcblk0, sdaaa, sddy, xvda, zram0, fd0: "
	                        "no classic name (hda to hdt, sda to sddx)"));
}

TEST_F(Reasons, WhatIsMadeOfOtherDevicesIsSummedUp)
{
	today("md0", "md");
	today("dm-0", "dm");
	today("loop0", "loop");
	EXPECT_THAT(
		of_disks(),
		ElementsAre("note no_classic_name: arrays, mappings and loop devices have no classic name"));
}

TEST_F(Reasons, UnusedLoopDevicesMemoryAndPathsAreNotMissed)
{
	today("loop0", "loop", 0);
	today("ram0", "ram");
	today("nvme0c0n1", "path");
	facts_.devices.push_back({"nvme0c1n1", "disk", "", 1048576, true});
	EXPECT_THAT(of_disks(), IsEmpty());
}

TEST_F(Reasons, AKernelWithoutTheScsiTableIsOneLine)
{
	has_scsi_table = false;
	today("sda");
	today("sdb", "disk", 0);
	today("nvme0n1");
	EXPECT_THAT(of_disks(),
	            ElementsAre("note no_scsi_table: sda, sdb: this kernel has no /proc/scsi/scsi",
	                        "note no_classic_name: nvme0n1: no classic name (hda to hdt, sda to sddx)"));
}

TEST_F(Reasons, AKernelWithoutTheIdeTableIsOneLine)
{
	today("hda");
	today("hdb");
	EXPECT_THAT(of_disks(), ElementsAre("note no_ide_table: hda, hdb: this kernel has no /proc/ide"));
}

TEST_F(Reasons, ATableThatCannotBeReadIsNoTableThatIsMissing)
{
	today("sda");
	tables();
	// /proc/partitions first, then /proc/scsi/scsi.
	for (long nth = 1; nth < 40; nth++) {
		replay_fail_call(nth, 0);
		const kernel_tables_t read = read_kernel_tables();
		replay_fail_call(0, 0);
		if (read.scsi.error == 0 || read.block.error != 0)
			continue;
		EXPECT_THAT(
			lines_of(disk_reasons(facts_, unlisted_disks(facts_, read), read, KIND)),
			ElementsAre(testing::EndsWith(std::string(": sda: /proc/scsi/scsi cannot be read: ") +
		                                      strerror(read.scsi.error))));
		return;
	}
	FAIL() << "the table was always read";
}

TEST_F(Reasons, ADriveWithoutAMediumIsNotInTheKernelsTable)
{
	today("sdb", "disk", 0);
	EXPECT_THAT(of_disks(), ElementsAre("note no_medium: sdb: no medium"));
}

TEST_F(Reasons, ADiskMayBeMissingInTheKernelsTable)
{
	today("sdb");
	block("sda");
	EXPECT_THAT(of_disks(), ElementsAre("note not_in_block_table: sdb: not in /proc/partitions"));
}

TEST_F(Reasons, WithoutTheKernelsTableThereAreNoDisks)
{
	has_block_table = false;
	today("sda");
	EXPECT_THAT(of_disks(),
	            ElementsAre("note not_in_block_table: sda: this kernel has no /proc/partitions"));
}

// All that is taken for a disk has a place among the 32: xvda has, sda1 and md0 have none.
TEST_F(Reasons, DisksBehindThe32ndOfTheKernelsTable)
{
	block("xvda");
	for (char letter = 'a'; letter <= 'z'; letter++) {
		block(std::string("sd") + letter);
		block(std::string("sd") + letter + "1");
		listed(std::string("sd") + letter);
	}
	block("md0");
	for (char letter = 'a'; letter <= 'f'; letter++)
		block(std::string("sda") + letter);
	today("sdae");
	today("sdaf");
	scsi(1);
	node("sdae", 1);
	node("sdaf", 1);
	EXPECT_THAT(of_disks(),
	            ElementsAre("error list_cut: sdae: the list ends at 16 disks",
	                        "error list_cut: sdaf: behind the 32nd disk of /proc/partitions"));
}

TEST_F(Reasons, NodesThatCannotBeOpenedTellWhy)
{
	for (const char *name : {"sda", "sdb", "sdc", "sdd"}) {
		today(name);
		block(name);
	}
	node("sda", 1, "\topen fails EACCES\n");
	node("sdb", 1, "\topen fails EACCES\n");
	node("sdc", 1, "\topen fails ENOMEDIUM\n");
	EXPECT_THAT(
		of_disks(),
		ElementsAre("warning no_permission: /dev/sda, /dev/sdb: cannot be opened: Permission denied",
	                    "note no_medium: sdc: no medium",
	                    "note not_opened: /dev/sdd: cannot be opened: No such file or directory"));
}

TEST_F(Reasons, DisksThatAreNoneInTheScsiTable)
{
	for (const char *name : {"sda", "sdb", "sdc"}) {
		today(name);
		block(name);
	}
	table_ += "device /dev/sda\n";
	node("sdb", 1);
	node("sdc", 2);
	scsi(2, "Optical Device");
	EXPECT_THAT(
		of_disks(),
		ElementsAre("note not_in_scsi_table: sda: no SCSI address: Inappropriate ioctl for device",
	                    "note not_in_scsi_table: sdb: not in /proc/scsi/scsi",
	                    "note not_in_scsi_table: sdc: \"Optical Device\" in /proc/scsi/scsi, not "
	                    "\"Direct-Access\""));
}

// The driver's word: host 2, channel 1, lun 3, id 4.
TEST_F(Reasons, AddressesAreComparedInFourParts)
{
	today("sda");
	block("sda");
	table_ += "device /dev/sda\n\tSCSI_IOCTL_GET_IDLUN 0x02010304\n";
	put("proc/scsi/scsi", "Host: scsi2 Channel: 01 Id: 04 Lun: 03\n  Vendor: ACME\n  Type:   Tape\n");
	has_scsi_table = false;
	EXPECT_THAT(
		of_disks(),
		ElementsAre(
			"note not_in_scsi_table: sda: \"Tape\" in /proc/scsi/scsi, not \"Direct-Access\""));
}

TEST_F(Reasons, DevicesBehindThe32ndOfTheScsiTable)
{
	today("sda");
	block("sda");
	node("sda", 32);
	for (int id = 0; id <= 32; id++)
		scsi(id);
	EXPECT_THAT(of_disks(),
	            ElementsAre("error list_cut: sda: behind the 32nd device of /proc/scsi/scsi"));
}

TEST_F(Reasons, DisksThatAreNoneInTheIdeTable)
{
	for (const char *name : {"hda", "hdb", "hdc", "hdd", "hde", "hdf", "hdg", "hdh"}) {
		today(name);
		block(name);
	}
	const std::string row = "0040 0040 0040 0040 0040 0040 0040 0040\n";
	ide("hdf", "disk");
	put("proc/ide/hdf/identify", row + "\n# 0040\n0040 0040 0040 0040 0040 0040 0040\n");
	std::string rows;
	for (int i = 0; i < 32; i++)
		rows += row + "\n";
	ide("hdg", "disk");
	put("proc/ide/hdg/identify", rows);
	ide("hdh", "disk");
	put("proc/ide/hdh/identify", rows + row);
	ide("hda", "tape");
	ide("hdb", "disk");
	std::filesystem::remove(host() / "proc/ide/hdb/identify");
	ide("hdc", "disk");
	put("proc/ide/hdc/model", "");
	ide("hde", "disk");
	EXPECT_THAT(of_disks(),
	            ElementsAre("note not_in_ide_table: hda: \"tape\" in /proc/ide, not \"disk\"",
	                        "note not_in_ide_table: hdb: this kernel has no /proc/ide/hdb/identify",
	                        "note not_in_ide_table: hdc: /proc/ide/hdc/model cannot be used",
	                        "note not_in_ide_table: hdd: not in /proc/ide",
	                        "note not_in_ide_table: hde, hdg: no cause was found",
	                        "note not_in_ide_table: hdf: /proc/ide/hdf/identify cannot be used",
	                        "note not_in_ide_table: hdh: /proc/ide/hdh/identify cannot be used"));
}

// The kernel's word decides: what today's list takes for a disk is an optical drive.
TEST_F(Reasons, AnIdeCdromIsNoDisk)
{
	today("hdc");
	block("hdc");
	ide("hdc", "cdrom");
	EXPECT_THAT(of_disks(), IsEmpty());
	EXPECT_THAT(of_cdroms(), ElementsAre("note not_in_ide_table: hdc: no cause was found"));
	facts_.cdroms = {"/dev/hdc"};
	EXPECT_THAT(of_cdroms(), IsEmpty());
}

TEST_F(Reasons, WhatIsMountedBehindThe32ndLineIsNotSeen)
{
	listed("hda");
	row("hda", 0, 63, 1000);
	row("hda", 1, 1063, 1000);
	row("hda", 2, 2063, 1000);
	facts_.cdroms = {"/dev/hdc"};
	mounted("none", 31);
	mounted("/dev/hda1");
	EXPECT_THAT(of_partitions(), IsEmpty());
	// Lines 33 to 37.
	for (const char *source : {"/dev/hda3", "/dev/hdc", "/dev/hda1", "/dev/hda3", "/dev/hdx1"})
		mounted(source);
	EXPECT_THAT(
		of_partitions(),
		ElementsAre(
			"error list_cut: /dev/hda3, /dev/hda1: mounted behind the 32nd line of /etc/mtab"));
	EXPECT_THAT(of_cdroms(),
	            ElementsAre("error list_cut: /dev/hdc: mounted behind the 32nd line of /etc/mtab"));
}

TEST_F(Reasons, WithoutTheMountTableTheRowsLackWhatItTells)
{
	has_mount_table = false;
	EXPECT_THAT(of_disks(), IsEmpty());
	EXPECT_THAT(of_cdroms(), IsEmpty());
	listed("hda");
	facts_.cdroms = {"/dev/hdc"};
	const std::string unread =
		"warning no_mount_table: /etc/mtab cannot be read: No such file or directory: ";
	EXPECT_THAT(of_disks(), ElementsAre(unread + "no system disk is known"));
	EXPECT_THAT(of_cdroms(), ElementsAre(unread + "no mount point is known"));
}

TEST_F(Reasons, TheNinthIdeDriveIsNotRead)
{
	for (const char *name : {"hda", "hdb", "hdc", "hdd", "hde", "hdf", "hdg", "hdh", "hdi"})
		ide(name, "disk");
	put("proc/ide/hdi/media", "cdrom\n");
	// No drive names: they take no place either.
	for (const char *name : {"hda0", "hda17", "hdu", "ide0"})
		ide(name, "disk");
	today("hdi", "rom");
	EXPECT_THAT(of_cdroms(), ElementsAre("error list_cut: hdi: behind the 8th drive of /proc/ide"));
	// One that cannot be read takes no place.
	std::filesystem::remove(host() / "proc/ide/hdb/model");
	EXPECT_THAT(of_cdroms(), ElementsAre("note not_in_ide_table: hdi: no cause was found"));
}

TEST_F(Reasons, AFullListNamesWhatItLeavesOut)
{
	for (char letter = 'a'; letter <= 'r'; letter++) {
		const std::string name = std::string("sd") + letter;
		today(name);
		block(name);
		node(name, 1);
		if (letter <= 'p')
			listed(name);
	}
	scsi(1);
	EXPECT_THAT(of_disks(), ElementsAre("error list_cut: sdq, sdr: the list ends at 16 disks"));
}

TEST_F(Reasons, AListThatIsNotFullCutsNothing)
{
	today("sda");
	block("sda");
	node("sda", 1);
	scsi(1);
	EXPECT_THAT(of_disks(), ElementsAre("note not_in_scsi_table: sda: no cause was found"));
}

// Only the user's lack of rights makes a disk of the IDE table one without a size.
TEST_F(Reasons, AListedDiskWithoutASizeTellsWhyItsNodeIsShut)
{
	for (const char *name : {"hda", "hdb"}) {
		today(name);
		facts_.disks.push_back({std::string("/dev/") + name, 0});
	}
	table_ = "device /dev/hda\n\topen fails EACCES\ndevice /dev/hdb\n";
	EXPECT_THAT(of_disks(),
	            ElementsAre("warning no_permission: /dev/hda: cannot be opened: Permission denied"));
}

TEST_F(Reasons, WithoutSysfsTheKernelsTableIsAsked)
{
	facts_.knows_devices = false;
	for (const char *name : {"sda", "sda1", "sdb", "sdb", "xvda", "nvme0n1", "md0"})
		block(name);
	listed("sda");
	node("sdb", 3);
	EXPECT_THAT(of_disks(), ElementsAre("note not_in_scsi_table: sdb: not in /proc/scsi/scsi"));
}

TEST_F(Reasons, TheKernelsTableBeginsBehindTwoLines)
{
	facts_.knows_devices = false;
	has_block_table = has_scsi_table = false;
	put("proc/partitions", "   8        0  1024 sda\n   8       16  1024 sdb\n   8       32  1024 sdc\n");
	EXPECT_THAT(of_disks(), ElementsAre("note no_scsi_table: sdc: this kernel has no /proc/scsi/scsi"));
}

TEST_F(Reasons, WithoutSysfsAndWithoutTheKernelsTableNothingIsKnown)
{
	facts_.knows_devices = false;
	has_block_table = false;
	EXPECT_THAT(of_disks(), ElementsAre("note not_in_block_table: this kernel has no /proc/partitions"));
}

TEST_F(Reasons, TenThousandDisksAreOneLine)
{
	for (int i = 0; i < 10000; i++)
		today("nvme" + std::to_string(i) + "n1");
	EXPECT_THAT(of_disks(),
	            ElementsAre("note no_classic_name: nvme0n1, nvme1n1, nvme2n1, nvme3n1, nvme4n1, nvme5n1, "
	                        "nvme6n1, "
	                        "nvme7n1 and 9992 more: no classic name (hda to hdt, sda to sddx)"));
}

// ---- CD-ROM drives ----

TEST_F(Reasons, OpticalDrivesHaveOtherNames)
{
	today("sr0", "rom", 0);
	today("sr1", "rom", 0);
	EXPECT_THAT(of_disks(), IsEmpty());
	EXPECT_THAT(
		of_cdroms(),
		ElementsAre(
			"note no_classic_name: sr0, sr1: no classic name for an optical drive (hda to hdt)"));
}

TEST_F(Reasons, OpticalDrivesNeedTheIdeTable)
{
	today("hdc", "rom");
	EXPECT_THAT(of_cdroms(), ElementsAre("note no_ide_table: hdc: this kernel has no /proc/ide"));
}

TEST_F(Reasons, WithoutSysfsTheIdeTableIsAskedForDrives)
{
	facts_.knows_devices = false;
	ide("hda", "disk");
	for (const char *name : {"hdc", "hdd"})
		ide(name, "cdrom");
	std::filesystem::remove(host() / "proc/ide/hdd/model");
	facts_.cdroms = {"/dev/hdc"};
	EXPECT_THAT(of_cdroms(),
	            ElementsAre("note not_in_ide_table: hdd: this kernel has no /proc/ide/hdd/model"));
}

TEST_F(Reasons, DrivesStandByName)
{
	facts_.knows_devices = false;
	for (const char *name : {"hdd", "hda", "hde", "hdb", "hdc"})
		ide(name, "cdrom");
	EXPECT_THAT(of_cdroms(),
	            ElementsAre("note not_in_ide_table: hda, hdb, hdc, hdd, hde: no cause was found"));
}

// ---- partitions ----

const char *const PROTECTIVE_TABLE = "\ttable 0\n\t\tentry 00 ee 1 4294967295\n";

TEST_F(Reasons, AProtectiveEntryTellsOfItsGuidTable)
{
	node("sda", 1, PROTECTIVE_TABLE);
	row("sda", 0, 1, 4294967295);
	facts_.table_of = [](const std::string &name) {
		EXPECT_EQ(name, "sda");
		return known_table_t{"gpt", 5};
	};
	const auto told = [this] { return of_partitions().at(0); };
	EXPECT_EQ(told(), "note protective_entry: /dev/sda1: the protective entry of a GUID table, which has "
	                  "5 partitions");
	facts_.table_of = [](const std::string &) { return known_table_t{"gpt", 1}; };
	EXPECT_EQ(told(), "note protective_entry: /dev/sda1: the protective entry of a GUID table, which has "
	                  "1 partition");
	facts_.table_of = [](const std::string &) { return known_table_t{"gpt", {}}; };
	EXPECT_EQ(told(), "note protective_entry: /dev/sda1: the protective entry of a GUID table");
	facts_.table_of = [](const std::string &) { return known_table_t{}; };
	EXPECT_EQ(
		told(),
		"note protective_entry: /dev/sda1: the protective entry of a GUID table, which is not there");
	facts_.table_of = [](const std::string &) { return std::optional<known_table_t>(); };
	EXPECT_EQ(told(), "note protective_entry: /dev/sda1: the protective entry of a GUID table, which "
	                  "could not be asked");
}

// That opens devices.
TEST_F(Reasons, NobodyIsAskedForTablesWithoutAProtectiveEntry)
{
	facts_.table_of = [](const std::string &) {
		ADD_FAILURE();
		return std::optional<known_table_t>();
	};
	node("sda", 1, "\ttable 0\n\t\tentry 00 83 1 7\n\t\tentry 00 ee 63 7\n");
	row("sda", 0, 1, 7);
	row("sda", 1, 63, 7);
	EXPECT_THAT(of_partitions(), IsEmpty());
}

TEST_F(Reasons, NoDeviceIsOpenedForRowsThatNeedNoWord)
{
	today("sda");
	listed("sda");
	node("sda", 1);
	row("sda", 0, 63, 100);
	const kernel_tables_t read = tables();
	replay_count_calls();
	EXPECT_THAT(partition_reasons(facts_, unlisted_disks(facts_, read), read, KIND, false), IsEmpty());
	EXPECT_EQ(replay_device_opens(), 0);
}

TEST_F(Reasons, RowsOutsideTheirDisk)
{
	today("sda"); // 2048 sectors
	listed("sda");
	row("sda", 0, 1, 2047);
	row("sda", 1, 2047, 2);
	row("sda", 2, 2048, 1);
	row("sda", 3, 9000, 1);
	EXPECT_THAT(
		of_partitions(),
		ElementsAre("note outside_disk: /dev/sda2: end outside the disk",
	                    "note outside_disk: /dev/sda3, /dev/sda4: beginning and end outside the disk"));
}

TEST_F(Reasons, WithoutSysfsTheNodeTellsTheSize)
{
	facts_.knows_devices = false;
	listed("sda");
	node("sda", 1); // 2048 sectors
	row("sda", 0, 1, 2047);
	row("sda", 1, 1, 2048);
	row("sda", 2, 2048, 1);
	row("sdb", 0, 1, 9999);
	EXPECT_THAT(of_partitions(),
	            ElementsAre("note outside_disk: /dev/sda2: end outside the disk",
	                        "note outside_disk: /dev/sda3: beginning and end outside the disk"));
}

TEST_F(Reasons, ATextThatIsCutIsToldInFull)
{
	const std::string cut = std::string(60, 'm') + "...";
	const std::string whole = std::string(63, 'm');
	today("sda");
	row("sda", 0, 1, 1, cut);
	row("sda", 1, 1, 1, whole);
	row("sda", 4, 1, 1, cut);
	facts_.mount_points_of = [](const std::string &name) {
		return name == "sda1" ? std::vector<std::string>{"/one", "/two"} : std::vector<std::string>();
	};
	EXPECT_THAT(of_partitions(),
	            ElementsAre("note cut_text: /dev/sda1: mount points cut; in full: /one, /two",
	                        "note cut_text: /dev/sda5: mount points cut"));
}

// A table with `primaries` entries and logical drives behind them, so that all are `count`.
std::string chain(int count)
{
	std::string text = "\ttable 0\n\t\tentry 00 05 10 1000\n";
	for (int i = 1; i < count; i++) {
		const int at = 10 * i;
		text += "\ttable " + std::to_string(at) + "\n\t\tentry 00 83 1 5\n";
		if (i + 1 < count)
			text += "\t\tentry 00 05 " + std::to_string(at) + " 10\n";
	}
	return text;
}

TEST_F(Reasons, AListOf32PartitionsIsCutOnlyWhenThereAreMore)
{
	today("sda");
	today("sdb");
	listed("sda");
	listed("sdb");
	node("sda", 1, chain(32));
	node("sdb", 1, chain(33));
	for (unsigned i = 0; i < 32; i++) {
		row("sda", i, 10, 1);
		row("sdb", i, 10, 1);
	}
	EXPECT_THAT(of_partitions(),
	            ElementsAre("error list_cut: /dev/sdb: the list ends at 32 partitions of a disk"));
}

TEST_F(Reasons, DisksThatAreNotListedHaveNoPartitionsHere)
{
	has_scsi_table = false;
	today("sda");
	today("sda1", "partition", 512, "sda");
	today("sdb");
	today("vda");
	today("vda1", "partition", 512, "vda");
	today("md0", "md");
	today("md0p1", "partition", 512, "md0");
	EXPECT_THAT(of_partitions(),
	            ElementsAre("note no_scsi_table: sda: this kernel has no /proc/scsi/scsi",
	                        "note no_classic_name: vda: no classic name (hda to hdt, sda to sddx)",
	                        "note no_classic_name: arrays, mappings and loop devices have no "
	                        "classic name"));
	EXPECT_THAT(of_partitions(true),
	            ElementsAre("note not_among_disks: sda, vda: not among the disks, hence no partitions"));
}

TEST_F(Reasons, WithoutSysfsTheKernelsTableTellsPartitions)
{
	facts_.knows_devices = false;
	has_scsi_table = false;
	for (const char *name : {"sda", "sda1", "sdb"})
		block(name);
	EXPECT_THAT(of_partitions(),
	            ElementsAre("note no_scsi_table: sda: this kernel has no /proc/scsi/scsi"));
}

TEST_F(Reasons, ThatTheListOfDisksIsCutIsToldOfTheDisksAlone)
{
	for (char letter = 'a'; letter <= 'q'; letter++) {
		const std::string name = std::string("sd") + letter;
		today(name);
		today(name + "1", "partition", 512, name);
		block(name);
		node(name, 1);
		if (letter <= 'p')
			listed(name);
	}
	scsi(1);
	EXPECT_THAT(of_partitions(), IsEmpty());
	EXPECT_THAT(of_partitions(true), IsEmpty());
}

// ---- the partition query's failure ----

TEST_F(Reasons, TheSeventeenthDiskMakesTheQueryFail)
{
	put("etc/mtab", "");
	for (char letter = 'a'; letter <= 'q'; letter++) {
		const std::string name = std::string("sd") + letter;
		block(name);
		node(name, 1);
		if (letter <= 'p')
			listed(name);
	}
	scsi(1);
	EXPECT_EQ(failure(), "at /dev/sdq: the list of disks ends at 16");
	scsi(2);
	facts_.disks.pop_back();
	EXPECT_EQ(failure(), "no cause was found");
}

TEST_F(Reasons, AMissingMountTableMakesTheQueryFail)
{
	has_mount_table = false;
	EXPECT_EQ(failure(), "at /etc/mtab: No such file or directory");
}

TEST_F(Reasons, TheFirstDiskBehindThoseWithRowsMakesTheQueryFail)
{
	put("etc/mtab", "");
	for (const char *name : {"hda", "hdb", "hdc", "hdd"})
		listed(name);
	table_ = "device /dev/hdb\n\tBLKGETSIZE 2048\n\ttable 0\n\t\tentry 00 83 1 5\n"
		 "device /dev/hdc\n\tBLKGETSIZE 2048\n"
		 "device /dev/hdd\n\topen fails EACCES\n";
	row("hdb", 0, 1, 5);
	EXPECT_EQ(failure(), "at /dev/hdd: Permission denied");
	facts_.partitions.clear();
	EXPECT_EQ(failure(), "at /dev/hda: No such file or directory");
}

TEST_F(Reasons, ASizeOrASectorThatCannotBeReadMakesTheQueryFail)
{
	put("etc/mtab", "");
	listed("hda");
	table_ = "device /dev/hda\n\tBLKGETSIZE fails EIO\n";
	EXPECT_EQ(failure(), "at the size of /dev/hda: Input/output error");
	table_ = "device /dev/hda\n\tBLKGETSIZE 2048\n\tends 100\n\ttable 0\n\t\tentry 00 05 100 5\n";
	EXPECT_EQ(failure(), "at sector 100 of /dev/hda: it cannot be read");
	table_ = "device /dev/hda\n\tBLKGETSIZE 2048\n\ttable 0\n\t\tentry 00 05 9000 5\n";
	EXPECT_EQ(failure(), "no cause was found");
}

// Whatever cannot be asked, lines come, and each is one.
TEST_F(Reasons, AnyCallMayFail)
{
	put("etc/mtab", "");
	for (const char *name : {"sda", "hda", "hdc"})
		block(name);
	scsi(1);
	ide("hda", "disk");
	ide("hdc", "cdrom");
	node("sda", 1, PROTECTIVE_TABLE);
	node("hda", 0);
	listed("hda");
	row("sda", 0, 1, 4294967295);
	facts_.knows_devices = false;
	tables();
	for (const int from_there_on : {0, 1}) {
		for (long nth = 1;; ++nth) {
			replay_fail_call(nth, from_there_on);
			const kernel_tables_t read = read_kernel_tables();
			const auto unlisted = unlisted_disks(facts_, read);
			messages_t messages = disk_reasons(facts_, unlisted, read, KIND);
			for (const message_t &more : partition_reasons(facts_, unlisted, read, KIND, false))
				messages.push_back(more);
			for (const message_t &more : cdrom_reasons(facts_, read, KIND))
				messages.push_back(more);
			messages.push_back(
				{severity_t::NOTE, &KIND, code_t::CUT_TEXT, partition_failure(facts_, read)});
			replay_fail_call(0, 0);
			for (const message_t &message : messages) {
				EXPECT_FALSE(message.text.empty());
				EXPECT_EQ(message.text.find('\n'), std::string::npos);
			}
			if (replay_calls() < nth)
				break;
			ASSERT_LT(nth, 1000);
		}
	}
}

// ---- a disk's tables ----

TEST_F(Reasons, TablesAreReadAsTheQueryReadsThem)
{
	table_ = "device /dev/hda\n\tBLKGETSIZE 2048\n"
		 "\ttable 0 aa55\n\t\tentry 00 83 1 5\n\t\tentry -\n\t\tentry 00 83 7 0\n\t\tentry 00 0f 100 "
		 "50\n"
		 "\ttable 100\n\t\tentry 00 82 1 5\n\t\tentry 00 85 10 5\n"
		 "\ttable 110\n\t\tentry 00 07 1 5\n";
	tables();
	const partition_tables_t read = read_partition_tables("/dev/hda");
	EXPECT_EQ(read.failure, "");
	EXPECT_FALSE(read.is_cut);
	std::vector<std::pair<unsigned, int>> entries;
	for (const table_entry_t &entry : read.entries)
		entries.emplace_back(entry.index, entry.type);
	EXPECT_THAT(entries, ElementsAre(std::pair(0u, 0x83), std::pair(3u, 0x0f), std::pair(4u, 0x82),
	                                 std::pair(5u, 0x07)));
}

TEST_F(Reasons, ADiskWithoutATableHasNoEntries)
{
	table_ = "device /dev/hda\n\tBLKGETSIZE 2048\n\ttable 0 55ab\n\t\tentry 00 83 1 5\n";
	tables();
	EXPECT_THAT(read_partition_tables("/dev/hda").entries, IsEmpty());
}

TEST_F(Reasons, ARingOfTablesEnds)
{
	table_ = "device /dev/hda\n\tBLKGETSIZE 2048\n"
		 "\ttable 0\n\t\tentry 00 05 100 50\n"
		 "\ttable 100\n\t\tentry 00 05 10 5\n"
		 "\ttable 110\n\t\tentry 00 05 0 5\n"
		 "device /dev/hdb\n\tBLKGETSIZE 2048\n\ttable 0\n\t\tentry 00 05 0 50\n";
	tables();
	EXPECT_EQ(read_partition_tables("/dev/hda").entries.size(), 1u);
	const partition_tables_t round = read_partition_tables("/dev/hdb");
	EXPECT_EQ(round.entries.size(), 32u);
	EXPECT_TRUE(round.is_cut);
}

} // namespace
