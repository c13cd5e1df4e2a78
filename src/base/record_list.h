// SPDX-License-Identifier: Apache-2.0
// Lists of records, one allocation each, linked by `next`.
#ifndef DISKSCOUT_BASE_RECORD_LIST_H
#define DISKSCOUT_BASE_RECORD_LIST_H

// Links records one behind the other, the first one to the head. Head is what the head is kept as: a pointer
// to a record, or an untyped one.
template <class Record, class Head = Record *> class RecordList
{
public:
	// Begins at the start of the list behind *head, which is null for a new one.
	explicit RecordList(Head *head) : head_(head) {}

	// What stands where the next record goes: a record of an older list, or null.
	Record *following() const { return last_ ? last_->next : static_cast<Record *>(*head_); }
	Record *append(Record *record)
	{
		if (last_)
			last_->next = record;
		else
			*head_ = record;
		last_ = record;
		count_++;
		return record;
	}
	// Of the records that have been appended.
	int count() const { return count_; }

private:
	Head *head_;
	Record *last_ = nullptr;
	int count_ = 0;
};

template <class Record> int count_records(const Record *head)
{
	int count = 0;
	for (; head; head = head->next)
		count++;
	return count;
}

// Deletes all records of a list; returns how many there were.
template <class Record> int release_records(Record *head)
{
	int count = 0;
	while (head) {
		Record *next = head->next;
		delete head;
		head = next;
		count++;
	}
	return count;
}

#endif
