// SPDX-License-Identifier: Apache-2.0
// What the simulated controllers hold between two runs.
#include "state.h"

#include <algorithm>

static const int ALL_DONE = 1000;

container_t *find_container(controller_t &where, int number)
{
	for (container_t &c : where.containers) {
		if (c.number == number)
			return &c;
	}
	return nullptr;
}

std::vector<const container_t *> members_of(const controller_t &where, int parent)
{
	std::vector<const container_t *> members;
	for (const container_t &c : where.containers) {
		if (c.parent == parent)
			members.push_back(&c);
	}
	std::sort(members.begin(), members.end(),
	          [](const container_t *a, const container_t *b) { return a->number < b->number; });
	return members;
}

static void remove_tasks_without_container(controller_t &where)
{
	auto &tasks = where.tasks;
	tasks.erase(std::remove_if(tasks.begin(), tasks.end(),
	                           [&](const task_t &t) { return !find_container(where, t.container); }),
	            tasks.end());
}

void remove_container(controller_t &where, int number)
{
	auto &all = where.containers;
	all.erase(std::remove_if(
			  all.begin(), all.end(),
			  [&](const container_t &c) { return c.number == number || c.parent == number; }),
	          all.end());
	remove_tasks_without_container(where);
}

static void finish(controller_t &where, task_t &t)
{
	t.done = ALL_DONE;
	t.state = "DNE";
	if (container_t *const c = find_container(where, t.container)) {
		for (piece_t &p : c->pieces)
			p.rebuild = false;
	}
}

static void step(controller_t &where, task_t &t)
{
	if (t.state != "RUN")
		return;
	if (t.step < ALL_DONE - t.done)
		t.done += t.step;
	else
		finish(where, t);
}

void let_time_pass(state_t &all)
{
	for (controller_t &c : all.controllers) {
		auto &tasks = c.tasks;
		tasks.erase(std::remove_if(tasks.begin(), tasks.end(),
		                           [](const task_t &t) { return t.state == "DNE"; }),
		            tasks.end());
		for (task_t &t : tasks)
			step(c, t);
	}
}
