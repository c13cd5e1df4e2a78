// The listing of the kinds that were asked for: a section or a key each.
#include "listing.h"

#include "diagnosis.h"
#include "output.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>

static bool lacks_controller(const kind_t &k, enquiry_t &from)
{
	return k.of == scope_t::CONTROLLER && !from.controller();
}

static answer_t ask(const kind_t &k, enquiry_t &from)
{
	if (!lacks_controller(k, from))
		return k.ask(from);
	answer_t nothing;
	nothing.failed = from.controllers().failed();
	nothing.where = " at the list of controllers";
	return nothing;
}

static void complain_about_query(const kind_t &k, const answer_t &a)
{
	const char *const rest =
		a.table.empty() ? "it found nothing before" : "what it found so far is shown";
	complain(fmt::format("the {} query failed{}; {}", k.name, a.where, rest));
}

using visitor_t = std::function<void(const kind_t &k, const answer_t &a)>;

// Words of the kinds whose query failed.
static std::vector<std::string_view> ask_all(enquiry_t &from, const std::vector<const kind_t *> &kinds,
                                             const visitor_t &visit)
{
	std::vector<std::string_view> failed;
	bool hardware_failed = false;
	for (const kind_t *k : kinds) {
		const answer_t a = ask(*k, from);
		visit(*k, a);
		if (!a.failed)
			continue;
		complain_about_query(*k, a);
		failed.push_back(k->word);
		hardware_failed |= k->of != scope_t::HOST;
	}
	// One cause, most probably: one hint.
	if (hardware_failed)
		complain(diagnosis(from));
	return failed;
}

static std::string heading_of(const kind_t &k, enquiry_t &from)
{
	if (k.of != scope_t::CONTROLLER || lacks_controller(k, from))
		return fmt::format("{}\n", k.heading);
	return fmt::format("{} ON {}\n", k.heading, printable(*from.controller()));
}

static std::string body_of(const kind_t &k, const answer_t &a, enquiry_t &from)
{
	if (!a.table.empty())
		return a.table + (k.note.empty() ? "" : fmt::format("{}\n", k.note));
	// That nothing was found would be a false answer.
	if (a.failed)
		return fmt::format("The {} query failed.\n", k.name);
	return fmt::format("{}\n", lacks_controller(k, from) ? CONTROLLERS_KIND.none : k.none);
}

listing_t list_as_tables(enquiry_t &from, const std::vector<const kind_t *> &kinds)
{
	std::string text;
	const auto failed = ask_all(from, kinds, [&](const kind_t &k, const answer_t &a) {
		text += (text.empty() ? "" : "\n") + heading_of(k, from) + body_of(k, a, from);
	});
	return {text, failed.empty()};
}

listing_t list_as_json(enquiry_t &from, const std::vector<const kind_t *> &kinds)
{
	ordered_json_t document = {{"format", 1}};
	const auto is_of_one = [](const kind_t *k) { return k->of == scope_t::CONTROLLER; };
	if (std::any_of(kinds.begin(), kinds.end(), is_of_one)) {
		const std::optional<std::string> controller = from.controller();
		document["controller"] = controller ? ordered_json_t(*controller) : ordered_json_t(nullptr);
	}
	const auto failed = ask_all(from, kinds, [&](const kind_t &k, const answer_t &a) {
		document[std::string(k.word)] = a.json;
	});
	document["failed"] = failed;
	// A disk's texts need not be UTF-8. A replaced character is better than no document.
	return {document.dump(2, ' ', false, ordered_json_t::error_handler_t::replace) + "\n",
	        failed.empty()};
}
