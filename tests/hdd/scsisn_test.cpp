// SPDX-License-Identifier: Apache-2.0
// The serial number that a SCSI device tells about itself: INQUIRY page 0x80.
#include "host.h"

#include "hdd/sal/src/linux/scsisn.h"
#include "replay/replay.h"

namespace
{

class ScsisnTest : public HostTest
{
protected:
	// The reply as it stands after its first three bytes: the length byte and the text behind it.
	void device(int length, std::string_view text)
	{
		std::string reply = printed("008000%02x", static_cast<unsigned>(length));
		for (const char c : text)
			reply += printed("%02x", static_cast<unsigned char>(c));
		answer(reply);
	}
	void answer(const std::string &answer)
	{
		host.table("device /dev/sda\n\tSCSI_IOCTL_SEND_COMMAND " + answer + "\n");
		host.show();
	}
	std::string serial(int expected_result)
	{
		str_t sn;
		memset(sn, 'x', sizeof sn);
		EXPECT_EQ(get_scsi_device_sn_by_path("/dev/sda", sn), expected_result);
		return text_of(sn);
	}
};

struct serial_row_t {
	int length;
	std::string text;
	std::string sn;
};

class Serial : public ScsisnTest, public ::testing::WithParamInterface<serial_row_t>
{
};

TEST_P(Serial, OfThePage)
{
	device(GetParam().length, GetParam().text);
	EXPECT_EQ(serial(0), GetParam().sn);
}

INSTANTIATE_TEST_SUITE_P(
	Pages, Serial,
	::testing::Values(serial_row_t{4, "AB12", "AB12"}, serial_row_t{9, "  AB12  \n", "AB12"},
                          serial_row_t{10, "\t AB 12\t ", "AB 12"}, serial_row_t{2, "AB12", "AB"},
                          serial_row_t{0, "AB12", ""}, serial_row_t{4, "    ", ""},
                          serial_row_t{5, "AB#12", "AB"}, serial_row_t{5, "AB\r12", "AB"},
                          serial_row_t{5, "AB\n12", "AB"},
                          serial_row_t{5,
                                       std::string("AB\0"
                                                   "12",
                                                   5),
                                       "AB"},
                          serial_row_t{200, "AB12", "AB12"},
                          serial_row_t{255, std::string(255, 'S'), std::string(63, 'S')},
                          serial_row_t{63, std::string(63, 'S'), std::string(63, 'S')},
                          serial_row_t{64, std::string(64, 'S'), std::string(63, 'S')},
                          // Trimmed before it is bounded.
                          serial_row_t{74, std::string(70, ' ') + "AB12", "AB12"},
                          serial_row_t{67, "  " + std::string(60, 'S') + "     ", std::string(60, 'S')}));

TEST_F(ScsisnTest, MissingDevice)
{
	EXPECT_EQ(serial(-1), "");
}

TEST_F(ScsisnTest, DeviceThatCannotBeOpened)
{
	host.table("device /dev/sda\n\topen fails ENOMEDIUM\n\tSCSI_IOCTL_SEND_COMMAND 00800004 41423132\n");
	host.show();
	EXPECT_EQ(serial(-1), "");
}

// As a regular file does.
TEST_F(ScsisnTest, CommandThatComesBackUnanswered)
{
	answer("12018000 fc00");
	EXPECT_EQ(serial(-1), "");
}

TEST_F(ScsisnTest, RequestThatFails)
{
	answer("fails EINVAL");
	EXPECT_EQ(serial(-1), "");
}

TEST_F(ScsisnTest, CommandThatTheDeviceRefuses)
{
	answer("= 2 00800004 41423132");
	EXPECT_EQ(serial(-1), "");
}

} // namespace
