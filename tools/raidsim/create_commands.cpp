// SPDX-License-Identifier: Apache-2.0
// Commands that create containers.
#include "create_commands.h"

#include "space.h"
#include "text.h"

#include <algorithm>
#include <fmt/format.h>

static const int FIRST_MEMBER_NUMBER = 24;
static const int NUMBER_LIMIT = 64;
static const std::int64_t MEGABYTE_KB = 1024;
static const std::size_t MAXIMUM_DISKS = 16;
static const std::size_t MAXIMUM_LABEL = 16;
// A new check is done after five runs.
static const int TASK_STEP = 200;

static const std::int64_t STRIPE_SIZES[] = {16, 32, 64};

static int stripe_size(const command_t &what)
{
	const std::optional<std::string> text = what.text("stripe_size");
	if (!text)
		return 64;
	const std::optional<std::int64_t> size = kilobytes_of(*text);
	if (!size ||
	    std::find(std::begin(STRIPE_SIZES), std::end(STRIPE_SIZES), *size) == std::end(STRIPE_SIZES))
		throw command_error("The specified chunk or stripe size is invalid.");
	return static_cast<int>(*size);
}

static std::string label_of(const command_t &what)
{
	std::string label = what.text("label").value_or("");
	if (label.size() > MAXIMUM_LABEL)
		throw parsing_error("Label is too long");
	return label;
}

static int free_number(controller_t &where, int from, int limit)
{
	for (int number = from; number < limit; number++) {
		if (!find_container(where, number))
			return number;
	}
	throw command_error("No container number is free.");
}

static std::string free_device(const state_t &all)
{
	for (char letter = 'a'; letter <= 'z'; letter++) {
		std::string device = fmt::format("/dev/sd{}", letter);
		bool used = false;
		for (const controller_t &c : all.controllers) {
			used = used || std::any_of(c.containers.begin(), c.containers.end(),
			                           [&](const container_t &k) { return k.device == device; });
		}
		if (!used)
			return device;
	}
	return {};
}

static refusal_t no_space(std::int64_t kilobytes, const address_t &at)
{
	return command_error(
		fmt::format("{} bytes cannot be found on device {}.", kilobytes * 1024, address_text(at)));
}

// The disks of the command, each checked; a disk takes part once.
static std::vector<const disk_t *> disks_of(controller_t &where, const command_t &what)
{
	std::vector<const disk_t *> disks;
	for (std::size_t i = 0; i < what.operands().size(); i++) {
		const address_t at = i == 0 ? what.disk_at(i).at : what.address_at(i);
		const disk_t &d = require_storage(where, at);
		if (!is_initialised(d))
			throw command_error("The specified disk is not initialized.");
		if (std::find(disks.begin(), disks.end(), &d) != disks.end())
			throw command_error("A device is specified more than once.");
		if (pieces_on(where, at).size() >= MAXIMUM_PIECES) {
			throw command_error(
				"The operation specified could not be done because it would result in "
				"a disk drive having more than the maximum allowed number of "
				"container partitions.");
		}
		disks.push_back(&d);
	}
	return disks;
}

// Without a size: as much as the fullest disk has in one area, in whole megabytes.
static std::int64_t piece_size(const controller_t &where, const command_t &what,
                               const std::vector<const disk_t *> &disks)
{
	if (const std::optional<std::int64_t> wanted = what.disk_at(0).size_kb)
		return *wanted;
	const disk_t *const fullest =
		*std::min_element(disks.begin(), disks.end(), [&](const disk_t *a, const disk_t *b) {
			return largest_free_kb(where, *a) < largest_free_kb(where, *b);
		});
	const std::int64_t size = largest_free_kb(where, *fullest) / MEGABYTE_KB * MEGABYTE_KB;
	if (size == 0)
		throw no_space(MEGABYTE_KB, fullest->at);
	return size;
}

static std::vector<piece_t> new_pieces(const controller_t &where, const command_t &what,
                                       const std::vector<const disk_t *> &disks)
{
	const std::int64_t size = piece_size(where, what, disks);
	std::vector<piece_t> pieces;
	for (const disk_t *d : disks) {
		const std::optional<area_t> found = area_for(where, *d, size);
		if (!found)
			throw no_space(size, d->at);
		pieces.push_back({d->at, found->offset_kb, size, false});
	}
	return pieces;
}

static void add_container(context_t &at, container_t &&made)
{
	controller_t &where = at.open_controller();
	made.number = free_number(where, 0, FIRST_MEMBER_NUMBER);
	made.usage = "None";
	made.device = free_device(at.all);
	at.answer = {fmt::format("Container {} created", made.number)};
	where.containers.push_back(std::move(made));
}

struct level_t {
	const char *type;
	bool striped;
	std::size_t least_disks;
	std::size_t most_disks;
	int (*data_disks)(int disks); // whose sizes add up
	bool checked;                 // a background check follows unless quickly initialised
};

static void create(context_t &at, const command_t &what, const level_t &wanted)
{
	what.expect_operands(wanted.least_disks, wanted.most_disks);
	controller_t &where = at.open_controller();
	container_t made;
	made.type = wanted.type;
	made.label = label_of(what);
	made.stripe_kb = wanted.striped ? stripe_size(what) : 0;
	const bool quick = what.truth("quick_init");
	made.pieces = new_pieces(where, what, disks_of(where, what));
	made.size_kb = made.pieces.front().size_kb * wanted.data_disks(static_cast<int>(made.pieces.size()));
	add_container(at, std::move(made));
	if (wanted.checked && !quick) {
		const int number = where.containers.back().number;
		where.tasks.push_back({where.next_task++, "Bld/Vfy", 0, TASK_STEP, number, "RUN"});
	}
}

void create_strip(context_t &at, const command_t &what)
{
	static const level_t STRIPE = {"Stripe", true, 2, MAXIMUM_DISKS, [](int n) { return n; }, false};
	create(at, what, STRIPE);
}

void create_mirror(context_t &at, const command_t &what)
{
	static const level_t MIRROR = {"Mirror", false, 2, 2, [](int) { return 1; }, true};
	create(at, what, MIRROR);
}

void create_raid5(context_t &at, const command_t &what)
{
	static const level_t RAID5 = {"RAID-5", true, 3, MAXIMUM_DISKS, [](int n) { return n - 1; }, true};
	create(at, what, RAID5);
}

static void require_stripe_member(controller_t &where, int number, std::int64_t size_kb)
{
	const container_t &c = require_container(where, number);
	if (c.type != "Mirror" || c.parent >= 0)
		throw command_error("The specified container cannot be a member of a stripe set.");
	if (c.size_kb != size_kb)
		throw command_error("The specified container sizes must be the same for stripe sets.");
}

// A member leaves the low numbers and takes its tasks along.
static void make_member(controller_t &where, container_t &c, int parent)
{
	const int number = free_number(where, FIRST_MEMBER_NUMBER, NUMBER_LIMIT);
	for (task_t &t : where.tasks)
		t.container = t.container == c.number ? number : t.container;
	c.number = number;
	c.parent = parent;
	c.device.clear();
	c.label.clear();
}

void create_mstrip(context_t &at, const command_t &what)
{
	what.expect_operands(2, MAXIMUM_DISKS);
	controller_t &where = at.open_controller();
	container_t made;
	made.type = "Stripe";
	made.label = label_of(what);
	made.stripe_kb = stripe_size(what);
	std::vector<int> numbers;
	for (std::size_t i = 0; i < what.operands().size(); i++) {
		const int number = what.number_at(i);
		require_stripe_member(where, number, require_container(where, what.number_at(0)).size_kb);
		if (std::find(numbers.begin(), numbers.end(), number) != numbers.end())
			throw command_error("A container is specified more than once.");
		numbers.push_back(number);
		made.size_kb += require_container(where, number).size_kb;
		made.data = made.data || require_container(where, number).data;
	}
	// Its members give their numbers up first, so that it may get one of them.
	const int unknown_parent = NUMBER_LIMIT;
	for (const int number : numbers)
		make_member(where, require_container(where, number), unknown_parent);
	add_container(at, std::move(made));
	const int parent = where.containers.back().number;
	for (container_t &c : where.containers)
		c.parent = c.parent == unknown_parent ? parent : c.parent;
}
