/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Prints "HEADS SECTORS" of a disk, as the kernel gives them to partitioning programs, or "-".
 * The kernel shows them in no file, and for a SCSI disk they depend on its partition table.
 */
#include <fcntl.h>
#include <linux/hdreg.h>
#include <stdio.h>
#include <sys/ioctl.h>

int main(int argc, char **argv)
{
	struct hd_geometry geometry = {0};
	int fd = argc == 2 ? open(argv[1], O_RDONLY | O_NONBLOCK) : -1;

	if (fd < 0 || ioctl(fd, HDIO_GETGEO, &geometry) != 0) {
		puts("-");
		return 0;
	}
	printf("%d %d\n", geometry.heads, geometry.sectors);
	return 0;
}
