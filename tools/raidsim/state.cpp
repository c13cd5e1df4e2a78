// What the simulated controllers hold between two runs.
#include "state.h"

#include <algorithm>

static const int all_done = 1000;

container *find_container(controller &where, int number)
{
	for (container &c : where.containers) {
		if (c.number == number)
			return &c;
	}
	return nullptr;
}

std::vector<const container *> members_of(const controller &where, int parent)
{
	std::vector<const container *> members;
	for (const container &c : where.containers) {
		if (c.parent == parent)
			members.push_back(&c);
	}
	std::sort(members.begin(), members.end(),
	          [](const container *a, const container *b) { return a->number < b->number; });
	return members;
}

static void remove_tasks_without_container(controller &where)
{
	auto &tasks = where.tasks;
	tasks.erase(std::remove_if(tasks.begin(), tasks.end(),
	                           [&](const task &t) { return !find_container(where, t.container); }),
	            tasks.end());
}

void remove_container(controller &where, int number)
{
	auto &all = where.containers;
	all.erase(
		std::remove_if(all.begin(), all.end(),
	                       [&](const container &c) { return c.number == number || c.parent == number; }),
		all.end());
	remove_tasks_without_container(where);
}

static void finish(controller &where, task &t)
{
	t.done = all_done;
	t.state = "DNE";
	if (container *const c = find_container(where, t.container)) {
		for (piece &p : c->pieces)
			p.rebuild = false;
	}
}

static void step(controller &where, task &t)
{
	if (t.state != "RUN")
		return;
	if (t.step < all_done - t.done)
		t.done += t.step;
	else
		finish(where, t);
}

void let_time_pass(state &all)
{
	for (controller &c : all.controllers) {
		auto &tasks = c.tasks;
		tasks.erase(std::remove_if(tasks.begin(), tasks.end(),
		                           [](const task &t) { return t.state == "DNE"; }),
		            tasks.end());
		for (task &t : tasks)
			step(c, t);
	}
}
