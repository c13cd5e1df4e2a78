// SPDX-License-Identifier: Apache-2.0
// Options that do not go together.
#include "conflicts.h"

#include "columns.h"
#include "kind_sets.h"
#include "usage_error.h"

#include <algorithm>
#include <fmt/format.h>

static void refuse_idle(const char *option, bool is_given, const options_t &opts, kind_test_t test)
{
	if (is_given && !has(opts.kinds, test))
		throw usage_error_t(fmt::format("{} is for {}", option, words_of(test, opts.is_old())));
}

struct table_option_t {
	const char *name;
	bool is_given;
	bool is_of_one_kind;
};

static void check_table_options(const options_t &opts)
{
	const table_option_t options[] = {
		{"--columns (-o)", !opts.columns.empty(), true},
		{"--sort", !opts.sort.empty(), true},
		{"--pairs", opts.pairs, true},
		{"--bytes", opts.bytes, false},
		{"--no-headings", opts.no_headings, true},
	};
	for (const table_option_t &option : options) {
		if (!option.is_given)
			continue;
		if (opts.is_old())
			throw usage_error_t(fmt::format("{} is for format 2", option.name));
		if (opts.json)
			throw usage_error_t(
				fmt::format("{} is for tables, the document is always whole", option.name));
		if (option.is_of_one_kind && opts.kinds.size() != 1)
			throw usage_error_t(fmt::format("{} is for the table of one kind", option.name));
	}
	if (opts.pairs && (opts.bytes || opts.no_headings))
		throw usage_error_t("--pairs are in bytes and without headings by themselves");
	if (opts.kinds.size() == 1) {
		columns_of(*opts.kinds.front(), opts.columns);
		if (!opts.sort.empty())
			column_of(*opts.kinds.front(), opts.sort);
	}
}

static void check_classic(const options_t &opts)
{
	const auto today = std::find_if_not(opts.kinds.begin(), opts.kinds.end(), is_old);
	if (opts.classic && today != opts.kinds.end())
		throw usage_error_t(
			fmt::format("--classic is for {}, not for {}", words_of(is_old),
		                    opts.devices.empty() ? (*today)->word : opts.devices.front()));
	if (opts.is_old() && !opts.block_plugin.empty())
		throw usage_error_t("--block-plugin is for format 2");
}

static void check_devices(const options_t &opts)
{
	if (!opts.devices.empty() && has(opts.kinds, is_classic))
		throw usage_error_t(fmt::format("a device, such as {}, is for {}", opts.devices.front(),
		                                words_of(is_block)));
	if (opts.inverse && opts.devices.empty() && (opts.is_alone || !has(opts.kinds, is_tree)))
		throw usage_error_t(fmt::format("--inverse is for {}, or for a device", words_of(is_tree)));
	if (opts.inverse && opts.devices.empty() && (opts.json || opts.pairs || !opts.sort.empty()))
		throw usage_error_t("--inverse is for the tree, or for a device");
}

void refuse_conflicts(const options_t &opts)
{
	refuse_idle("--controller", !opts.controller.empty(), opts, is_of_controller);
	refuse_idle("--config", !opts.config.empty(), opts, is_of_raid);
	check_classic(opts);
	check_devices(opts);
	check_table_options(opts);
	refuse_idle("--plugin", !opts.plugin.empty(), opts, is_classic);
	if (!opts.block_plugin.empty() && !opts.asks_block())
		throw usage_error_t(fmt::format("--block-plugin is for {}", words_of(is_block)));
}
