// RAID controllers.
#include "raid.h"

using controller_t = aac_controller;

static constexpr coded_word_t AVAILABILITIES[] = {
	{-1, "other"}, {0, "unavailable"}, {1, "unknown"}, {2, "read only"}, {3, "read/write"},
};

static constexpr coded_word_t CLUSTERINGS[] = {{-1, "other"}, {0, "no"}, {1, "yes"}};

static const column_t<controller_t> COLUMNS[] = {
	{"ID", align_t::RIGHT, [](const controller_t &c) { return std::to_string(c.ControllerID); }},
	{"NAME", align_t::LEFT, [](const controller_t &c) { return shown(c.Adapter_Name); }},
	{"TYPE", align_t::LEFT, [](const controller_t &c) { return shown(c.Adapter_Type); }},
	{"AVAILABILITY", align_t::LEFT,
         [](const controller_t &c) { return word_of(c.Availability, AVAILABILITIES); }},
	{"CLUSTERING", align_t::LEFT,
         [](const controller_t &c) { return word_of(c.Clustering, CLUSTERINGS); }},
};

static ordered_json_t object(const controller_t &c)
{
	return {
		{"controller_id", c.ControllerID},
		{"adapter_name", json_text(c.Adapter_Name)},
		{"adapter_type", json_text(c.Adapter_Type)},
		{"availability", c.Availability},
		{"availability_word", json_word(c.Availability, AVAILABILITIES)},
		{"clustering", c.Clustering},
		{"clustering_word", json_word(c.Clustering, CLUSTERINGS)},
	};
}

static answer_t ask(enquiry_t &from)
{
	return answer_of(from.controllers(), COLUMNS, object);
}

const kind_t CONTROLLERS_KIND = {
	"controllers", "RAID CONTROLLERS", "RAID controller", "No RAID controller was found.", scope_t::RAID,
	ask,
};
