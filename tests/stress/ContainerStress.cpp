// All the shared containers and texts under load from several threads at once. Run under ThreadSanitizer; the
// assertions hold in any build.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "foundation/GuardedRecord.h"
#include "foundation/Shared.h"
#include "foundation/SharedList.h"
#include "foundation/SharedMap.h"
#include "foundation/SharedOrderedMap.h"
#include "foundation/TcString.h"

namespace vardel {
namespace {

void RunTogether(std::vector<std::function<void()>> bodies) {
    std::vector<std::thread> threads;
    for (auto& body : bodies) threads.emplace_back(std::move(body));
    for (std::thread& thread : threads) thread.join();
}

TEST(ContainerStress, TextsAreAlwaysWhole) {
    const std::string texts[] = {"", "192.168.178.23", "12345678901234567890123", std::string(24, 'a'),
                                 std::string(300, 'b'), std::string(40, 'c')};
    TcString shared(texts[0].c_str());
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};
    const auto check = [&](const std::string& seen) {
        bool known = false;
        for (const std::string& text : texts) known = known || text == seen;
        if (!known) ++torn;
    };
    RunTogether({[&] {
                     for (int n = 0; n < 60000; ++n) shared = texts[static_cast<std::size_t>(n) % 6].c_str();
                     stop = true;
                 },
                 [&] {
                     TcString own;
                     for (int n = 0; !stop; ++n) {
                         own = shared;
                         check(std::string(own.GetContent(), static_cast<std::size_t>(own.GetLength())));
                     }
                 },
                 [&] {
                     while (!stop) {
                         const TcString copy(shared);
                         check(copy.GetContent());
                         if (shared == copy && shared.GetLength() > 300) ++torn;
                         if (shared.GetHashNum() == 0) ++torn;
                     }
                 },
                 [&] {
                     for (int n = 0; !stop; ++n) shared = TcString(texts[static_cast<std::size_t>(n) % 6].c_str());
                 }});
    EXPECT_EQ(torn, 0);
}

TEST(ContainerStress, MapKeepsItsPromisesUnderAnyMix) {
    struct Record {
        int number;
    };
    SharedMap<Record, Ownership::OwnsValues> map;
    const auto key = [](int n) { return TcString(("10.1." + std::to_string(n) + ".1").c_str()); };
    for (int n = 0; n < 200; n += 2) map.Insert(key(n), std::make_unique<Record>(Record{n}));
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    RunTogether({[&] {
                     for (int round = 0; round < 300; ++round)
                         for (int n = 1; n < 200; n += 2) {
                             map.Insert(key(n), std::make_unique<Record>(Record{n}));
                             if (round % 2) map.Erase(key(n));
                         }
                     stop = true;
                 },
                 [&] {
                     while (!stop) {
                         int even = 0;
                         map.ForEach([&](const TcString&, Record* record) { even += record->number % 2 == 0; });
                         if (even != 100) ++wrong;
                     }
                 },
                 [&] {
                     for (int n = 0; !stop; n = (n + 1) % 200) {
                         ReadPin pin;
                         const auto* entry = map.Find(key(n));
                         if (entry && entry->Value()->number != n) ++wrong;
                         if (!entry && n % 2 == 0) ++wrong;
                     }
                 }});
    EXPECT_EQ(wrong, 0);
}

TEST(ContainerStress, RecordsThatCarryTheirKeyAreFoundUnderAnyMix) {
    struct Record {
        TcString key;
    };
    struct KeyOfRecord {
        static const TcString& Of(const Record& record) { return record.key; }
    };
    SharedMap<Record, Ownership::BorrowsValues, KeyOfRecord> map;
    std::vector<Record> records(400);
    for (int n = 0; n < 400; ++n) {
        records[n].key = ("10.1." + std::to_string(n) + ".1").c_str();
        if (n % 2 == 0) map.Insert(records[n].key, &records[n]);
    }
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0}, found{0};
    const auto read = [&] {
        for (int n = 0; !stop; n = (n + 1) % 400) {
            ReadPin pin;
            Record* record = nullptr;
            const bool known = map.FindRecord(HashedKey(records[n].key), record);
            if (known && record != &records[n]) ++wrong;
            if (!known && n % 2 == 0) ++wrong;
            found += known;
        }
    };
    RunTogether({[&] {
                     for (int round = 0; round < 300; ++round)
                         for (int n = 1; n < 400; n += 2) {
                             map.Insert(records[n].key, &records[n]);
                             if (round % 2) map.Erase(records[n].key);
                         }
                     stop = true;
                 },
                 read, read});
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(found, 0);
}

TEST(ContainerStress, ReplacedTablesAreSeenWholeOrNotAtAll) {
    SharedMap<int, Ownership::OwnsValues> map;
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    RunTogether({[&] {
                     for (int round = 0; round < 3000; ++round) {
                         SharedMap<int, Ownership::OwnsValues> fresh;
                         for (int n = 0; n < 20; ++n)
                             fresh.Insert(TcString(std::to_string(n).c_str()), std::make_unique<int>(round));
                         map.ReplaceWith(fresh);
                     }
                     stop = true;
                 },
                 [&] {
                     while (!stop) {
                         int first = -1, count = 0;
                         map.ForEach([&](const TcString&, int* value) {
                             if (first < 0) first = *value;
                             if (*value != first) ++wrong;
                             ++count;
                         });
                         if (count != 0 && count != 20) ++wrong;
                     }
                 }});
    EXPECT_EQ(wrong, 0);
}

TEST(ContainerStress, ListLosesAndDoublesNothing) {
    SharedList<int> list;
    constexpr int kEach = 40000;
    std::atomic<int> producers{2};
    std::atomic<i64> sum{0}, taken{0};
    const auto drain = [&](int entry) {
        sum += entry;
        ++taken;
    };
    RunTogether({[&] {
                     for (int n = 1; n <= kEach; ++n) list.Append(n);
                     --producers;
                 },
                 [&] {
                     for (int n = 1; n <= kEach; ++n) list.Prepend(n);
                     --producers;
                 },
                 [&] {
                     while (producers > 0 || !list.IsEmpty()) {
                         const auto mark = list.TakeMark();
                         i64 told = 0;
                         list.ForEach(mark, [&](int) { return ++told, true; });
                         list.ClearTo(mark, drain);
                     }
                 },
                 [&] {
                     while (producers > 0 || !list.IsEmpty()) {
                         if (const auto entry = list.TakeBack()) drain(*entry);
                         if (const auto entry = list.TakeFront()) drain(*entry);
                     }
                 }});
    EXPECT_EQ(taken, 2 * kEach);
    EXPECT_EQ(sum, static_cast<i64>(kEach) * (kEach + 1));
}

TEST(ContainerStress, OrderedMapIsWalkedInOrderWhileItGrowsAndShrinks) {
    SharedOrderedMap<int, Ownership::OwnsValues> map;
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    RunTogether({[&] {
                     for (int n = 0; n < 20000; ++n) map.Append(new int(n));
                     stop = true;
                 },
                 [&] {
                     for (i32 key = 1; !stop; key += 3) map.Erase(key);
                 },
                 [&] {
                     while (!stop) {
                         i32 last = 0;
                         map.ForEach([&](i32 key, int* value) {
                             if (key <= last || *value != key - 1) ++wrong;
                             last = key;
                             return key < last + 500;
                         });
                     }
                 }});
    EXPECT_EQ(wrong, 0);
}

TEST(ContainerStress, RecordsGoInAndOutWhole) {
    struct Record {
        char text[260];
    };
    GuardedRecord<Record> shared;
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};
    Shared<u8> flag = 0;
    RunTogether({[&] {
                     Record record{};
                     for (int n = 0; n < 20000; ++n) {
                         for (char& c : record.text) c = static_cast<char>('a' + n % 26);
                         shared.Write(record);
                         flag = static_cast<u8>(n & 1);
                     }
                     stop = true;
                 },
                 [&] {
                     while (!stop) {
                         const Record copy = shared.Read();
                         for (char c : copy.text) torn += c != copy.text[0];
                         if (flag > 1) ++torn;
                     }
                 }});
    EXPECT_EQ(torn, 0);
}

}  // namespace
}  // namespace vardel
