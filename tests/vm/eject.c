/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Takes the medium out of a removable SCSI disk: the commands for it have no program of their own here. Exit
 * status 0 when the disk has obeyed.
 */
#include <fcntl.h>
#include <scsi/sg.h>
#include <stdio.h>
#include <sys/ioctl.h>

static int obeys(int fd, unsigned char *command)
{
	unsigned char sense[32];
	struct sg_io_hdr request = {0};

	request.interface_id = 'S';
	request.dxfer_direction = SG_DXFER_NONE;
	request.cmd_len = 6;
	request.cmdp = command;
	request.mx_sb_len = sizeof sense;
	request.sbp = sense;
	request.timeout = 20000; /* milliseconds */
	return ioctl(fd, SG_IO, &request) == 0 && (request.info & SG_INFO_OK_MASK) == SG_INFO_OK;
}

int main(int argc, char **argv)
{
	/* The kernel forbids removal while the disk is open, as it is here. */
	unsigned char allow_removal[6] = {0x1e};
	unsigned char eject[6] = {0x1b, 0, 0, 0, 0x02, 0};
	int fd = argc == 2 ? open(argv[1], O_RDONLY | O_NONBLOCK) : -1;

	if (fd < 0) {
		perror("vm-eject");
		return 1;
	}
	return obeys(fd, allow_removal) && obeys(fd, eject) ? 0 : 1;
}
