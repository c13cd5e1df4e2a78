// SPDX-License-Identifier: Apache-2.0
// What the path of a device in sysfs tells of where it is attached.
#include "devpath.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

struct path_case_t {
	const char *name;
	const char *path;
	const char *transport; // "" for none
	const char *address;   // "H:C:T:L", "" for none
	const char *pci;       // the last component of its folder, "" for none
};

class DevicePath : public ::testing::TestWithParam<path_case_t>
{
};

std::string address_of(const char *path)
{
	scsi_address_t address;
	if (!scsi_address_of(path, &address))
		return "";
	return std::to_string(address.host) + ":" + std::to_string(address.channel) + ":" +
	       std::to_string(address.target) + ":" + std::to_string(address.lun);
}

TEST_P(DevicePath, TellsTransportAddressAndController)
{
	const path_case_t &row = GetParam();
	const char *transport = transport_of(row.path);
	EXPECT_STREQ(transport ? transport : "", row.transport);
	EXPECT_EQ(address_of(row.path), row.address);
	EXPECT_EQ(std::string(last_name(pci_folder_of(row.path))), row.pci);
}

#define PCI "devices/pci0000:00/"

INSTANTIATE_TEST_SUITE_P(
	Rows, DevicePath,
	::testing::Values(
		path_case_t{"ata", PCI "0000:00:1f.2/ata3/host2/target2:0:0/2:0:0:0/block/sda", "sata",
                            "2:0:0:0", "0000:00:1f.2"},
		path_case_t{"port_multiplier", PCI "0000:00:1f.2/ata3/host2/target2:3:0/2:3:0:0/block/sda",
                            "sata", "2:3:0:0", "0000:00:1f.2"},
		path_case_t{"bridges",
                            PCI
                            "0000:00:1c.0/0000:02:00.0/0000:03:0a.7/ata1/host0/target0:0:0/0:0:0:0/block/sda",
                            "sata", "0:0:0:0", "0000:03:0a.7"},
		path_case_t{"usb_behind_hubs",
                            PCI "0000:00:14.0/usb1/1-1/1-1.4/1-1.4:1.0/host6/target6:0:0/6:0:0:2/block/sdc",
                            "usb", "6:0:0:2", "0000:00:14.0"},
		path_case_t{"sas",
                            PCI "0000:3b:00.0/host1/port-1:0/end_device-1:0/target1:0:0/1:0:0:0/block/sdb",
                            "sas", "1:0:0:0", "0000:3b:00.0"},
		path_case_t{"iscsi", "devices/platform/host3/session1/target3:0:0/3:0:0:1/block/sdc", "iscsi",
                            "3:0:0:1", ""},
		path_case_t{"iscsi_adapter", PCI "0000:05:00.2/host9/session12/target9:0:0/9:0:0:1/block/sdc",
                            "iscsi", "9:0:0:1", "0000:05:00.2"},
		path_case_t{"fibre_channel",
                            PCI "0000:05:00.0/host4/rport-4:0-2/target4:0:2/4:0:2:5/block/sdd", "fc",
                            "4:0:2:5", "0000:05:00.0"},
		path_case_t{"virtio_scsi", PCI "0000:00:06.0/virtio2/host6/target6:0:1/6:0:1:3/block/sdf",
                            "scsi", "6:0:1:3", "0000:00:06.0"},
		path_case_t{"virtio", PCI "0000:00:05.0/virtio1/block/vda", "virtio", "", "0000:00:05.0"},
		path_case_t{"virtio_without_pci", "devices/platform/a003e00.virtio_mmio/virtio0/block/vda",
                            "virtio", "", ""},
		path_case_t{"nvme", PCI "0000:00:04.0/nvme/nvme0/nvme0n1", "nvme", "", "0000:00:04.0"},
		path_case_t{"nvme_head", "devices/virtual/nvme-subsystem/nvme-subsys0/nvme0n1", "nvme", "",
                            ""},
		path_case_t{"nvme_partition", PCI "0000:00:04.0/nvme/nvme0/nvme0n1/nvme0n1p1", "nvme", "",
                            "0000:00:04.0"},
		path_case_t{"five_digits",
                            PCI "0000:00:0e.0/pci10000:e0/10000:e0:06.0/10000:e1:00.0/nvme/nvme1/nvme1n1",
                            "nvme", "", "10000:e1:00.0"},
		path_case_t{"nvme_on_a_mac", "devices/platform/soc/2c000000.nvme/nvme/nvme0/nvme0n1", "nvme",
                            "", ""},
		path_case_t{"card", "devices/platform/soc/fe340000.mmc/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0",
                            "mmc", "", ""},
		path_case_t{"xen", "devices/vbd-51712/block/xvda", "xen", "", ""},
		path_case_t{"array_controller", PCI "0000:00:03.0/cciss0/c0d0/block/cciss!c0d0", "", "",
                            "0000:00:03.0"},
		path_case_t{"parallel_scsi", PCI "0000:00:09.0/host7/target7:1:15/7:1:15:4/block/sdg", "scsi",
                            "7:1:15:4", "0000:00:09.0"},
		path_case_t{"large_lun", PCI "0000:00:09.0/host7/target7:0:2/7:0:2:281474976710655/block/sdh",
                            "scsi", "7:0:2:281474976710655", "0000:00:09.0"},
		path_case_t{"larger_lun",
                            PCI "0000:00:09.0/host7/target7:0:2/7:0:2:13907115649320091648/block/sdh", "scsi",
                            "", "0000:00:09.0"},
		path_case_t{"loop", "devices/virtual/block/loop0", "", "", ""},
		path_case_t{"floppy", "devices/platform/floppy.0/block/fd0", "", "", ""},
		path_case_t{"no_address", PCI "0000:00:1f/0:0:0/0:0:0:0:0/a:b:c:d/::: /block/sda", "", "",
                            ""},
		path_case_t{"name_alone", "sda", "", "", ""}, path_case_t{"nothing", "", "", "", ""},
		path_case_t{"slashes", "//", "", "", ""}),
	[](const auto &row) { return std::string(row.param.name); });

TEST(DevicePathFolders, AreThePathUpToThere)
{
	const text_t usb = PCI "0000:00:14.0/usb1/1-1/1-1.4/1-1.4:1.0/host6/target6:0:0/6:0:0:2/block/sdc";
	EXPECT_EQ(std::string(usb_folder_of(usb)), PCI "0000:00:14.0/usb1/1-1/1-1.4");
	EXPECT_EQ(std::string(pci_folder_of(usb)), PCI "0000:00:14.0");
	EXPECT_EQ(std::string(ata_folder_of(usb)), "");
	const text_t ata = PCI "0000:00:1f.2/ata13/host2/target2:0:0/2:0:0:0/block/sda";
	EXPECT_EQ(std::string(ata_folder_of(ata)), PCI "0000:00:1f.2/ata13");
	EXPECT_EQ(std::string(usb_folder_of(ata)), "");
}

TEST(DevicePathFolders, ABusIsNoDeviceOfIt)
{
	EXPECT_EQ(std::string(usb_folder_of(PCI "0000:00:14.0/usb1/1-0:1.0/host1")), "");
	EXPECT_EQ(std::string(usb_folder_of(PCI "0000:00:14.0/usb1/1-/host1")), "");
	EXPECT_EQ(std::string(usb_folder_of(PCI "0000:00:14.0/usb1/1-1..2/host1")), "");
}

} // namespace
