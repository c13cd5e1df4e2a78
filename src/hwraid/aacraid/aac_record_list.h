// Lists of records, one allocation each, linked by `next`.
#ifndef DISKSCOUT_HWRAID_AAC_RECORD_LIST_H
#define DISKSCOUT_HWRAID_AAC_RECORD_LIST_H

// Appends to a list that is empty at first.
template <class Record> class RecordList
{
public:
	explicit RecordList(Record **pHead) : m_ppNext(pHead) { *pHead = nullptr; }
	Record *Append(Record *pRecord)
	{
		*m_ppNext = pRecord;
		m_ppNext = &pRecord->next;
		m_nCount++;
		return pRecord;
	}
	int Count() const { return m_nCount; }

private:
	Record **m_ppNext;
	int m_nCount = 0;
};

template <class Record> int CountRecords(const Record *pHead)
{
	int nCount = 0;
	for (; pHead; pHead = pHead->next)
		nCount++;
	return nCount;
}

template <class Record> int ClearRecords(Record *pHead)
{
	while (pHead) {
		Record *pNext = pHead->next;
		delete pHead;
		pHead = pNext;
	}
	return 0;
}

#endif
