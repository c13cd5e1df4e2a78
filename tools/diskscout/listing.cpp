// The listing of the kinds that were asked for: a section or a key each.
#include "listing.h"

#include "diagnosis.h"
#include "output.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>

static bool lacks_controller(const kind &k, enquiry &from)
{
	return k.of == scope::controller && !from.controller();
}

static answer ask(const kind &k, enquiry &from)
{
	if (!lacks_controller(k, from))
		return k.ask(from);
	answer nothing;
	nothing.failed = from.controllers().failed();
	nothing.where = " at the list of controllers";
	return nothing;
}

static void complain_about_query(const kind &k, const answer &a)
{
	const char *const rest =
		a.table.empty() ? "it found nothing before" : "what it found so far is shown";
	complain(fmt::format("the {} query failed{}; {}", k.name, a.where, rest));
}

using visitor = std::function<void(const kind &k, const answer &a)>;

// Words of the kinds whose query failed.
static std::vector<std::string_view> ask_all(enquiry &from, const std::vector<const kind *> &kinds,
                                             const visitor &visit)
{
	std::vector<std::string_view> failed;
	bool hardware_failed = false;
	for (const kind *k : kinds) {
		const answer a = ask(*k, from);
		visit(*k, a);
		if (!a.failed)
			continue;
		complain_about_query(*k, a);
		failed.push_back(k->word);
		hardware_failed |= k->of != scope::host;
	}
	// One cause, most probably: one hint.
	if (hardware_failed)
		complain(diagnosis(from));
	return failed;
}

static std::string heading_of(const kind &k, enquiry &from)
{
	if (k.of != scope::controller || lacks_controller(k, from))
		return fmt::format("{}\n", k.heading);
	return fmt::format("{} ON {}\n", k.heading, printable(*from.controller()));
}

static std::string body_of(const kind &k, const answer &a, enquiry &from)
{
	if (!a.table.empty())
		return a.table + (k.note.empty() ? "" : fmt::format("{}\n", k.note));
	// That nothing was found would be a false answer.
	if (a.failed)
		return fmt::format("The {} query failed.\n", k.name);
	return fmt::format("{}\n", lacks_controller(k, from) ? controllers_kind.none : k.none);
}

listing list_as_tables(enquiry &from, const std::vector<const kind *> &kinds)
{
	std::string text;
	const auto failed = ask_all(from, kinds, [&](const kind &k, const answer &a) {
		text += (text.empty() ? "" : "\n") + heading_of(k, from) + body_of(k, a, from);
	});
	return {text, failed.empty()};
}

listing list_as_json(enquiry &from, const std::vector<const kind *> &kinds)
{
	ordered_json document = {{"format", 1}};
	const auto is_of_one = [](const kind *k) { return k->of == scope::controller; };
	if (std::any_of(kinds.begin(), kinds.end(), is_of_one)) {
		const std::optional<std::string> controller = from.controller();
		document["controller"] = controller ? ordered_json(*controller) : ordered_json(nullptr);
	}
	const auto failed = ask_all(
		from, kinds, [&](const kind &k, const answer &a) { document[std::string(k.word)] = a.json; });
	document["failed"] = failed;
	// A disk's texts need not be UTF-8. A replaced character is better than no document.
	return {document.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n", failed.empty()};
}
