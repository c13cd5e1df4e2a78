// SPDX-License-Identifier: Apache-2.0
// The accessors of the records, every one: plain fields, and the words of the tool to codes and back. Each
// setter has to leave the rest of its record alone.
#include "hwraid/aacraid/aac_records.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <limits.h>
#include <string.h>
#include <string>
#include <string_view>

namespace
{

constexpr char FILLING = 0x5a;

template <typename Record> Record filled_record()
{
	Record record;
	memset(&record, FILLING, sizeof record);
	return record;
}

// Whether the records differ in nothing but the field.
template <typename Record, typename Field>
bool only_field_differs(const Record &before, Record after, Field Record::*field)
{
	memcpy(&(after.*field), &(before.*field), sizeof(after.*field));
	const auto bytes = [](const Record &record) {
		return std::string_view(reinterpret_cast<const char *>(&record), sizeof record);
	};
	return bytes(before) == bytes(after);
}

// ---- plain fields ----

template <typename Record, typename Value>
void expect_set(Value (*set)(Record *, Value), Value Record::*field, std::initializer_list<Value> values)
{
	for (const Value value : values) {
		const auto before = filled_record<Record>();
		Record record = before;
		EXPECT_EQ(set(&record, value), value);
		EXPECT_EQ(record.*field, value);
		EXPECT_TRUE(only_field_differs(before, record, field));
	}
}

template <typename Record, typename Value>
void expect_get(Value (*get)(const Record *), Value Record::*field, std::initializer_list<Value> values)
{
	for (const Value value : values) {
		auto record = filled_record<Record>();
		record.*field = value;
		EXPECT_EQ(get(&record), value);
	}
}

template <typename Record> struct plain_row_t {
	const char *what;
	int (*set)(Record *, int);
	int (*get)(const Record *);
	int Record::*field;
};

template <typename Record> void expect_plain(std::initializer_list<plain_row_t<Record>> rows)
{
	for (const auto &row : rows) {
		SCOPED_TRACE(row.what);
		expect_set(row.set, row.field, {0, 1, -1, INT_MAX, INT_MIN});
		if (row.get)
			expect_get(row.get, row.field, {0, 1, -1, INT_MAX, INT_MIN});
	}
}

TEST(RecordNumbers, AreStoredAndReturned)
{
	expect_plain<aac_controller>({{"controller ID", Controller_SetControllerID,
	                               Controller_GetControllerID, &aac_controller::ControllerID}});
	expect_plain<aac_disk>({{"address", Disk_SetC_ID_L, Disk_GetC_ID_L, &aac_disk::C_ID_L},
	                        {"bytes per block", Disk_SetBytesPerBlock, nullptr, &aac_disk::BytesPerBlock},
	                        {"rate", Disk_SetRate, Disk_getRate, &aac_disk::Rate}});
	expect_plain<aac_space>(
		{{"offset", Disk_Space_SetOffset, Disk_Space_GetOffset, &aac_space::nOffset},
	         {"space", Disk_Space_SetFreeSpace, Disk_Space_GetFreeSpace, &aac_space::nFreeSpace}});
	expect_plain<aac_partition>(
		{{"address", Disk_Partition_Set_C_ID_L, nullptr, &aac_partition::C_ID_L}});
	expect_plain<aac_task>(
		{{"task ID", Task_SetTaskID, Task_GetTaskID, &aac_task::TaskId},
	         {"container ID", Task_SetContainerID, Task_GetContainerID, &aac_task::ContainerID}});
}

TEST(RecordNumbers, OfSixtyFourBitsKeepThemAll)
{
	expect_set(Disk_SetBlocks, &aac_disk::Blocks, {0LL, -1LL, 1LL << 40, LLONG_MAX, LLONG_MIN});
	expect_get(Disk_GetBlocks, &aac_disk::Blocks, {0LL, -1LL, 1LL << 40, LLONG_MAX, LLONG_MIN});
	expect_set(Disk_Partition_Set_OffSet, &aac_partition::nOffset,
	           {0LL, -1LL, 1LL << 40, LLONG_MAX, LLONG_MIN});
}

TEST(RecordNumbers, BytesPerBlockIgnoresTheSecondArgument)
{
	auto disk = filled_record<aac_disk>();
	disk.BytesPerBlock = 520;
	for (const int ignored : {0, 1, -1, 520, INT_MAX})
		EXPECT_EQ(Disk_GetBytesPerBlock(&disk, ignored), 520);
}

TEST(RecordNumbers, DoneIsAFraction)
{
	expect_set(Task_SetDone, &aac_task::Done, {0.0F, 0.45F, 1.0F, -0.5F, 7.25F});
	expect_get(Task_GetDone, &aac_task::Done, {0.0F, 0.45F, 1.0F, -0.5F, 7.25F});
}

TEST(RecordNumbers, PartitionSizeAndContainersGoToTheOffset)
{
	expect_set(Disk_Partition_SetSize, &aac_partition::nOffset,
	           {0LL, -1LL, 1LL << 40, LLONG_MAX, LLONG_MIN});
	for (const auto set : {Disk_Partition_SetContainerID, Disk_Partition_SetMultilevelContainerID}) {
		for (const int number : {0, 63, -1, INT_MAX, INT_MIN}) {
			const auto before = filled_record<aac_partition>();
			aac_partition partition = before;
			EXPECT_EQ(set(&partition, number), number);
			EXPECT_EQ(partition.nOffset, static_cast<long long>(number));
			EXPECT_TRUE(only_field_differs(before, partition, &aac_partition::nOffset));
		}
	}
}

// ---- texts ----

template <typename Record>
void expect_text(char *(*set)(Record *, const char *), char *(*get)(Record *), char (Record::*field)[32])
{
	for (const size_t length : {0U, 1U, 5U, 30U, 31U, 32U, 33U, 300U}) {
		SCOPED_TRACE(length);
		std::string text;
		for (size_t i = 0; i < length; i++)
			text += static_cast<char>('a' + i % 26);
		const auto before = filled_record<Record>();
		Record record = before;
		EXPECT_EQ(set(&record, text.c_str()), record.*field);
		EXPECT_EQ(get(&record), record.*field);
		EXPECT_EQ(std::string(record.*field), text.substr(0, 31));
		EXPECT_TRUE(only_field_differs(before, record, field));
	}
}

TEST(RecordTexts, KeepThirtyOneCharacters)
{
	expect_text(Controller_SetControllerName, Controller_GetControllerName,
	            &aac_controller::Adapter_Name);
	expect_text(Controller_SetControllerType, Controller_GetControllerType,
	            &aac_controller::Adapter_Type);
	expect_text(Disk_SetVendorID, Disk_GetVendorID, &aac_disk::VendorID);
	expect_text(Disk_SetProductID, Disk_GetProductID, &aac_disk::ProductID);
}

// ---- words to codes ----

struct word_row_t {
	const char *word;
	int code;
};

template <typename Record>
void expect_codes(int (*set)(Record *, const char *), int Record::*field,
                  std::initializer_list<word_row_t> rows)
{
	for (const auto &row : rows) {
		SCOPED_TRACE(row.word ? row.word : "(none)");
		const auto before = filled_record<Record>();
		Record record = before;
		EXPECT_EQ(set(&record, row.word), row.code);
		EXPECT_EQ(record.*field, row.code);
		EXPECT_TRUE(only_field_differs(before, record, field));
	}
}

TEST(RecordWords, Availability)
{
	expect_codes(Controller_SetControllerAvailability, &aac_controller::Availability,
	             {{"Unavailability", 0},
	              {"Unknown", 1},
	              {"read only", 2},
	              {"read/write", 3},
	              {"read/write\n", 3},
	              {"Unknown to us", 1},
	              {"Unavailability 2", 0},
	              {"read only, locked", 2},
	              {"Unavailabilit", -1},
	              {"read", -1},
	              {"read  only", -1},
	              {"Read/Write", -1},
	              {"READ ONLY", -1},
	              {"unknown", -1},
	              {" Unknown", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, Clustering)
{
	expect_codes(Controller_SetControllerClustering, &aac_controller::Clustering,
	             {{"No", 0},
	              {"Yes", 1},
	              {"None", 0},
	              {"Yes\n", 1},
	              {"N", -1},
	              {"Ye", -1},
	              {"no", -1},
	              {"NO", -1},
	              {"YES", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, TaskFunction)
{
	expect_codes(Task_SetFunction, &aac_task::Function,
	             {{"Create", 0},      {"FATfmt", 1},   {"NTFSfmt", 2},    {"Rebuild", 3}, {"Reconfig", 4},
	              {"Scrub", 5},       {"Unknown", 6},  {"Verify", 7},     {"Zero", 8},    {"Bld/Vfy", 9},
	              {"Reconfigure", 4}, {"Bld/Vfy2", 9}, {"Rebuilding", 3}, {"Recon", -1},  {"Bld", -1},
	              {"Zer", -1},        {"create", -1},  {"REBUILD", -1},   {" Zero", -1},  {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, TaskState)
{
	expect_codes(Task_SetState, &aac_task::State,
	             {{"BAD", 0},
	              {"DNE", 1},
	              {"RUN", 2},
	              {"SUS", 3},
	              {"UNK", 4},
	              {"RUNNING", 2},
	              {"UNKNOWN", 4},
	              {"RU", -1},
	              {"run", -1},
	              {"Bad", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, DeviceType)
{
	expect_codes(Disk_SetDeviceType, &aac_disk::Device_Type,
	             {{"Disk", 0},
	              {"Sequential", 1},
	              {"Printer", 2},
	              {"Processor", 3},
	              {"Write_once", 4},
	              {"CDROM", 5},
	              {"Scanner", 6},
	              {"Optical", 7},
	              {"Media_changer", 8},
	              {"Network", 9},
	              {"Diskette", 0},
	              {"CDROM/DVD", 5},
	              {"Write once", -1},
	              {"Media changer", -1},
	              {"Dis", -1},
	              {"disk", -1},
	              {"DISK", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, DiskUsage)
{
	expect_codes(Disk_SetUsage, &aac_disk::Usage,
	             {{"Initialized", 0},
	              {"Not_Initialized", 1},
	              {"Detached", 2},
	              {"DOS", 3},
	              {"Offline", 4},
	              {"Unowned", 5},
	              {"Initialized_twice", 0},
	              {"DOS/V", 3},
	              {"Not Initialized", -1},
	              {"Initialize", -1},
	              {"initialized", -1},
	              {"Dos", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, DiskShared)
{
	expect_codes(Disk_SetShared, &aac_disk::Shared,
	             {{"NO", 0},
	              {"YES", 1},
	              {"NOT", 0},
	              {"YES!", 1},
	              {"N", -1},
	              {"No", -1},
	              {"yes", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, PartitionContainerType)
{
	expect_codes(Disk_Partition_SetContainerType, &aac_partition::ContainerType,
	             {{"Stripe", KESTREL_HWRAID_TYPE_RAID0},
	              {"Mirror", KESTREL_HWRAID_TYPE_RAID1},
	              {"RAID-5", KESTREL_HWRAID_TYPE_RAID5},
	              {"Volume", KESTREL_HWRAID_TYPE_VOLUME},
	              {"Reconf", KESTREL_HWRAID_TYPE_RECONF},
	              {"Reconfi", 5},
	              {"RAID-50", 2},
	              {"RAID-10", -1},
	              {"RAID", -1},
	              {"Strip", -1},
	              {"stripe", -1},
	              {"None", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, PartitionMultilevelType)
{
	expect_codes(Disk_Partition_SetMultilevelContainerType, &aac_partition::nMultilevelContainerType,
	             {{"None", KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE},
	              {"Stripe", KESTREL_HWRAID_PART_MULTILEVEL_TYPE_STRIPE},
	              {"Stripes", 1},
	              {"Mirror", -1},
	              {"Non", -1},
	              {"none", -1},
	              {"", -1},
	              {nullptr, -1}});
}

TEST(RecordWords, PartitionReadWrite)
{
	expect_codes(Disk_Partition_SetReadWriteAttr, &aac_partition::nReadWriteAttribute,
	             {{"RW", 3},
	              {"RWX", 3},
	              {"RO", 1},
	              {"R", 1},
	              {"Rw", 1},
	              {"WO", 2},
	              {"WR", 2},
	              {"W", 2},
	              {"--", 0},
	              {"rw", 0},
	              {" RW", 0},
	              {"", 0},
	              {nullptr, 0}});
}

// ---- codes to words ----

struct code_row_t {
	int code;
	const char *word;
};

template <typename Record>
void expect_words(const char *(*get)(const Record *), int Record::*field,
                  std::initializer_list<code_row_t> rows)
{
	for (const auto &row : rows) {
		SCOPED_TRACE(row.code);
		auto record = filled_record<Record>();
		record.*field = row.code;
		EXPECT_STREQ(get(&record), row.word);
	}
}

// A getter with a table knows every negative code as unknown, whatever the number.
TEST(RecordCodes, OfTablesReadBackAsTheirRow)
{
	expect_words(Controller_GetControllerAavailability, &aac_controller::Availability,
	             {{0, "Unavailability"},
	              {1, "Unknown"},
	              {2, "read only"},
	              {3, "read/write"},
	              {-1, "I dont know"},
	              {-2, "I dont know"},
	              {INT_MIN, "I dont know"},
	              {4, "overflow"},
	              {63, "overflow"},
	              {64, "overflow"},
	              {INT_MAX, "overflow"}});
	expect_words(Controller_GetControllerClustering, &aac_controller::Clustering,
	             {{0, "No"},
	              {1, "Yes"},
	              {-1, "I dont know"},
	              {-2, "I dont know"},
	              {INT_MIN, "I dont know"},
	              {2, "overflow"},
	              {31, "overflow"},
	              {63, "overflow"},
	              {64, "overflow"},
	              {INT_MAX, "overflow"}});
	expect_words(Task_GetFunction, &aac_task::Function,
	             {{0, "Create"},
	              {1, "FATfmt"},
	              {2, "NTFSfmt"},
	              {3, "Rebuild"},
	              {4, "Reconfig"},
	              {5, "Scrub"},
	              {6, "Unknown"},
	              {7, "Verify"},
	              {8, "Zero"},
	              {9, "Bld/Vfy"},
	              {-1, "I dont know"},
	              {-2, "I dont know"},
	              {INT_MIN, "I dont know"},
	              {10, "overflow"},
	              {159, "overflow"},
	              {160, "overflow"},
	              {INT_MAX, "overflow"}});
	expect_words(Task_GetState, &aac_task::State,
	             {{0, "BAD"},
	              {1, "DNE"},
	              {2, "RUN"},
	              {3, "SUS"},
	              {4, "UNK"},
	              {-1, "I dont know"},
	              {-2, "I dont know"},
	              {INT_MIN, "I dont know"},
	              {5, "overflow"},
	              {79, "overflow"},
	              {80, "overflow"},
	              {INT_MAX, "overflow"}});
}

// A getter without a table knows one unknown code, -1.
TEST(RecordCodes, OfChainsReadBackAsTheirWord)
{
	expect_words(Disk_GetDeviceType, &aac_disk::Device_Type,
	             {{0, "Disk"},
	              {1, "Sequential"},
	              {2, "Printer"},
	              {3, "Processor"},
	              {4, "Write_once"},
	              {5, "CDROM"},
	              {6, "Scanner"},
	              {7, "Optical"},
	              {8, "Media_changer"},
	              {9, "Network"},
	              {-1, "I dont know"},
	              {-2, "overflow"},
	              {INT_MIN, "overflow"},
	              {10, "overflow"},
	              {INT_MAX, "overflow"}});
	expect_words(Disk_GetUsage, &aac_disk::Usage,
	             {{0, "Initialized"},
	              {1, "Not Initialized"},
	              {2, "Detached"},
	              {3, "DOS"},
	              {4, "Offline"},
	              {5, "Unowned"},
	              {-1, "I dont know"},
	              {-2, "overflow"},
	              {INT_MIN, "overflow"},
	              {6, "overflow"},
	              {INT_MAX, "overflow"}});
	expect_words(Disk_GetShared, &aac_disk::Shared,
	             {{0, "NO"},
	              {1, "YES"},
	              {-1, "I dont know"},
	              {-2, "overflow"},
	              {INT_MIN, "overflow"},
	              {2, "overflow"},
	              {INT_MAX, "overflow"}});
}

} // namespace
