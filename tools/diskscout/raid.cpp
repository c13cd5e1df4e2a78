// What the kinds of the hardware RAID side share.
#include "raid.h"

#include <fmt/format.h>

// Only the channel has no bound: the fields are added up when they are packed.
static int channel_of(int position)
{
	return position >> 16;
}

static int id_of(int position)
{
	return position >> 8 & 0xff;
}

static int lun_of(int position)
{
	return position & 0xff;
}

std::string address(int position)
{
	if (position == NO_ADDRESS)
		return "-";
	return fmt::format("{:x}:{:02x}:{:x}", channel_of(position), id_of(position), lun_of(position));
}

ordered_json_t json_address(int position)
{
	if (position == NO_ADDRESS)
		return nullptr;
	return {
		{"position", position},
		{"channel", channel_of(position)},
		{"id", id_of(position)},
		{"lun", lun_of(position)},
	};
}

std::string signed_size(long long bytes)
{
	// The magnitude of the lowest number fits only without its sign.
	const auto magnitude = static_cast<std::uint64_t>(bytes);
	return bytes < 0 ? "-" + human_size(0 - magnitude) : human_size(magnitude);
}

std::string size_modulo_4_gib(long long bytes)
{
	return human_size(static_cast<std::uint32_t>(bytes));
}
