// RAID controllers.
#include "raid.h"

using controller = aac_controller;

static constexpr coded_word availabilities[] = {
	{-1, "other"}, {0, "unavailable"}, {1, "unknown"}, {2, "read only"}, {3, "read/write"},
};

static constexpr coded_word clusterings[] = {{-1, "other"}, {0, "no"}, {1, "yes"}};

static const column<controller> columns[] = {
	{"ID", align::right, [](const controller &c) { return std::to_string(c.ControllerID); }},
	{"NAME", align::left, [](const controller &c) { return shown(c.Adapter_Name); }},
	{"TYPE", align::left, [](const controller &c) { return shown(c.Adapter_Type); }},
	{"AVAILABILITY", align::left,
         [](const controller &c) { return word_of(c.Availability, availabilities); }},
	{"CLUSTERING", align::left, [](const controller &c) { return word_of(c.Clustering, clusterings); }},
};

static ordered_json object(const controller &c)
{
	return {
		{"controller_id", c.ControllerID},
		{"adapter_name", json_text(c.Adapter_Name)},
		{"adapter_type", json_text(c.Adapter_Type)},
		{"availability", c.Availability},
		{"availability_word", json_word(c.Availability, availabilities)},
		{"clustering", c.Clustering},
		{"clustering_word", json_word(c.Clustering, clusterings)},
	};
}

static answer ask(enquiry &from)
{
	return answer_of(from.controllers(), columns, object);
}

const kind controllers_kind = {
	"controllers", "RAID CONTROLLERS", "RAID controller", "No RAID controller was found.", scope::raid,
	ask,
};
