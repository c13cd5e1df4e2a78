// SPDX-License-Identifier: Apache-2.0
// Defects of the disks behind RAID controllers.
#include "raid.h"

static std::string_view words_of_row(const row_t &row)
{
	const int result = record_of<raid_defects_t>(row).result;
	return result == AAC_RUN_FAILED ? "it could not be asked" : words_of_result(result);
}

static void put_words(const row_t &row, sink_t &to)
{
	put_text(words_of_row(row), to);
}

static constexpr field_t FIELDS[] = {
	controller_field<raid_defects_t>(),
	address_field<&raid_defects_t::disk>("address", "DISK",
                                             "the disk: channel, SCSI ID and LUN at the controller", NEW),
	counted<&raid_defects_t::primary>("primary", "PRIMARY", "defects that the disk was made with"),
	counted<&raid_defects_t::grown>("grown", "GROWN", "defects that came later"),
	number<&raid_defects_t::result>("result", "RESULT CODE", "code of result_word; 0: it was told", NEW),
	{"result_word", "NOT TOLD BECAUSE", shape_t::TEXT, NEW | MAY_LACK, "why it is not told", put_words},
};

const kind_t DEFECTS_KIND = {
	"defects",
	"",
	"RAID DEFECTS",
	"RAID defect",
	"defects of the disks behind RAID controllers",
	"No RAID controller has a disk.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"controller,address,primary,grown,result_word",
	nullptr,
	ask_controllers<raid_defects_t, &raid_site_t::defects>,
};
