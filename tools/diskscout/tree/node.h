// SPDX-License-Identifier: Apache-2.0
// One thing of the machine: a controller, a container, a disk behind it, a device that the kernel sees. What
// is told of it comes from the rows of other kinds, so that the tree can say nothing else of it than they do.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_NODE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_NODE_H

#include "kinds.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// A row of a kind that tells of it.
struct source_t {
	const kind_t *kind;
	row_t row;
};

struct tree_node_t {
	std::string id;   // of a machine's nodes no two have the same; printable
	std::string kind; // "controller", "container", "raid_disk", "raid_device", "free", "group", "local",
	                  // or the word of a local device's
	std::string name; // as people call it: "container 0", "0:04:0", "sda"
	std::vector<source_t> sources = {};      // the first one that knows of a value tells it
	std::shared_ptr<const void> record = {}; // that a source is about, where no list holds it

	std::optional<std::string> parent = {};     // id of the one that it is drawn below; none: a root
	std::optional<std::string> controller = {}; // name of the one that it is behind, or that it is
	std::vector<std::string> stands_on = {};    // ids
	std::vector<std::string> spare_of = {};     // ids of containers that it waits for
	std::vector<std::string> shared = {}; // names of what it stands on and what is drawn below another
	std::string remark = {};              // behind its name, where it has no label

	// What no row tells, or not as it is here.
	std::optional<int> address = {}; // of a disk behind a controller
	std::optional<int> raid_id = {};
	std::optional<std::string> state = {};
	std::optional<std::int64_t> done_permille = {};
	std::optional<std::string> cause = {}; // why what is below it lacks something
	bool lacks_device = false;             // no device has the node that is told of it
};

extern const kind_t TREE_KIND;

#endif
