// SPDX-License-Identifier: Apache-2.0
// RAID controllers.
#include "raid.h"

using controller_t = aac_controller;

static constexpr coded_word_t AVAILABILITIES[] = {
	{-1, "other"}, {0, "unavailable"}, {1, "unknown"}, {2, "read only"}, {3, "read/write"},
};

static constexpr coded_word_t CLUSTERINGS[] = {{-1, "other"}, {0, "no"}, {1, "yes"}};

static constexpr field_t FIELDS[] = {
	number<&controller_t::ControllerID>("controller_id", "ID", "the controller's number"),
	text<&controller_t::Adapter_Name>("adapter_name", "NAME", "by which it is opened"),
	text<&controller_t::Adapter_Type>("adapter_type", "TYPE", "as the controller tool tells it"),
	number<&controller_t::Availability>("availability", "AVAILABILITY CODE", "code of availability_word"),
	word<&controller_t::Availability, AVAILABILITIES>("availability_word", "AVAILABILITY",
                                                          "null for a code without a word"),
	number<&controller_t::Clustering>("clustering", "CLUSTERING CODE", "code of clustering_word"),
	word<&controller_t::Clustering, CLUSTERINGS>("clustering_word", "CLUSTERING",
                                                     "null for a code without a word"),
};

const kind_t CONTROLLERS_KIND = {
	"controllers",
	"controllers",
	"RAID CONTROLLERS",
	"RAID controller",
	"RAID controllers",
	"No RAID controller was found.",
	side_t::RAID,
	0,
	FIELDS,
	"controller_id,adapter_name,adapter_type,availability_word,clustering_word",
	nullptr,
	ask_for<controller_t, CMD_GET_CONTROLLERS>,
};
