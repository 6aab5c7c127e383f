#include "foundation/SharedMap.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace vardel {
namespace {

struct Counted {
    explicit Counted(int n = 0) : number(n) { ++alive; }
    ~Counted() { --alive; }
    int number;
    inline static int alive = 0;
};

using Owning = SharedMap<Counted, Ownership::OwnsValues>;
using Borrowing = SharedMap<Counted>;

TcString Key(int n) { return TcString(("10.0." + std::to_string(n / 256) + "." + std::to_string(n % 256)).c_str()); }

TEST(SharedMap, InsertNeverReplaces) {
    Borrowing map;
    Counted first(1), second(2);
    EXPECT_TRUE(map.Insert("10.0.0.1", &first));
    EXPECT_FALSE(map.Insert("10.0.0.1", &second));
    EXPECT_EQ(map.FindValue("10.0.0.1"), &first);
    EXPECT_EQ(map.Count(), 1u);
}

TEST(SharedMap, TellsAnAbsentKeyFromANullValue) {
    Borrowing map;
    EXPECT_TRUE(map.Insert("null", nullptr));
    ReadPin pin;
    EXPECT_NE(map.Find("null"), nullptr);
    EXPECT_EQ(map.Find("null")->Value(), nullptr);
    EXPECT_EQ(map.Find("absent"), nullptr);
}

TEST(SharedMap, FreesWhatItOwnsAndNothingElse) {
    const int before = Counted::alive;
    Counted borrowed(7);
    {
        Owning owning;
        Borrowing borrowing;
        owning.Insert("a", std::make_unique<Counted>(1));
        EXPECT_FALSE(owning.Insert("a", std::make_unique<Counted>(2)));
        owning.Insert("b", std::make_unique<Counted>(3));
        EXPECT_TRUE(owning.Erase("b"));
        borrowing.Insert("a", &borrowed);
    }
    FreeRetired();
    EXPECT_EQ(Counted::alive, before + 1);
}

TEST(SharedMap, GivesABorrowedValueBackOnErase) {
    Borrowing map;
    Counted record(1);
    map.Insert("a", &record);
    Counted* back = nullptr;
    EXPECT_TRUE(map.Erase("a", &back));
    EXPECT_EQ(back, &record);
    EXPECT_FALSE(map.Erase("a"));
    EXPECT_TRUE(map.IsEmpty());
    EXPECT_TRUE(map.Insert("a", &record)) << "an erased key can come back";
}

TEST(SharedMap, AgreesWithAnOrdinaryMapOverRandomChanges) {
    Borrowing map;
    std::map<std::string, Counted*> model;
    Counted values[4];
    std::mt19937 random(1);
    for (int step = 0; step < 40000; ++step) {
        const TcString key = Key(static_cast<int>(random() % 700));
        if (random() % 3 == 0) {
            EXPECT_EQ(map.Erase(key), model.erase(key.GetContent()) == 1);
        } else {
            Counted* value = &values[random() % 4];
            EXPECT_EQ(map.Insert(key, value), model.emplace(key.GetContent(), value).second);
        }
        ASSERT_EQ(map.Count(), model.size());
    }
    std::map<std::string, Counted*> walked;
    map.ForEach([&](const TcString& key, Counted* value) {
        EXPECT_TRUE(walked.emplace(key.GetContent(), value).second) << "met twice";
    });
    EXPECT_EQ(walked, model);
    for (int i = 0; i < 700; ++i) EXPECT_EQ(map.FindValue(Key(i)) != nullptr, model.count(Key(i).GetContent()) == 1);
}

TEST(SharedMap, WalkMeetsWhatIsPresentThroughoutOnceWhileTheTableGrows) {
    Borrowing map;
    Counted value;
    for (int i = 0; i < 500; ++i) map.Insert(Key(i), &value);
    int next = 500;
    std::map<std::string, int> met;
    map.ForEach([&](const TcString& key, Counted*) {
        ++met[key.GetContent()];
        if (next < 3000)
            for (int i = 0; i < 5; ++i) map.Insert(Key(next++), &value);
        const int erased = static_cast<int>(met.size()) * 2 + 1;  // takes elements out before and behind the walk
        if (erased < 500) map.Erase(Key(erased));
    });
    for (const auto& [key, count] : met) EXPECT_EQ(count, 1) << key;
    for (int i = 0; i < 500; i += 2) EXPECT_EQ(met.count(Key(i).GetContent()), 1u) << i;
}

TEST(SharedMap, WalkEndsWhereTheVisitSaysSo) {
    Borrowing map;
    Counted value;
    for (int i = 0; i < 10; ++i) map.Insert(Key(i), &value);
    int visits = 0;
    map.ForEach([&](const TcString&, Counted*) { return ++visits < 3; });
    EXPECT_EQ(visits, 3);
}

TEST(SharedMap, ReplacesItsContentWhole) {
    const int before = Counted::alive;
    {
        Owning live, fresh;
        live.Insert("old", std::make_unique<Counted>(1));
        fresh.Insert("new", std::make_unique<Counted>(2));
        live.ReplaceWith(fresh);
        EXPECT_EQ(live.FindValue("old"), nullptr);
        ASSERT_NE(live.FindValue("new"), nullptr);
        EXPECT_EQ(live.FindValue("new")->number, 2);
        EXPECT_TRUE(fresh.IsEmpty());
        live.Clear();
        EXPECT_TRUE(live.IsEmpty());
    }
    FreeRetired();
    EXPECT_EQ(Counted::alive, before);
}

TEST(SharedMap, KeepsReplacedRecordsWhileAReaderIsPinned) {
    const int before = Counted::alive;
    Owning map;
    map.Insert("a", std::make_unique<Counted>(5));
    {
        ReadPin pin;
        const Owning::Entry* entry = map.Find("a");
        std::thread([&] { map.Clear(); }).join();
        FreeRetired();
        EXPECT_EQ(Counted::alive, before + 1);
        EXPECT_EQ(entry->Value()->number, 5);
    }
    FreeRetired();
    EXPECT_EQ(Counted::alive, before);
}

// A record that carries its key.
struct Named {
    TcString name;
};
struct NameOf {
    static const TcString& Of(const Named& record) { return record.name; }
};
using Carrying = SharedMap<Named, Ownership::BorrowsValues, NameOf>;

// What FindRecord says: the record, null for a key that has none, nothing for an absent key.
std::optional<Named*> RecordIn(const Carrying& map, const TcString& key) {
    ReadPin pin;
    Named* record = nullptr;
    return map.FindRecord(HashedKey(key), record) ? std::optional(record) : std::nullopt;
}

TEST(SharedMap, FindsRecordsThatCarryTheirKeyWithoutTheirEntry) {
    Carrying map;
    std::map<std::string, Named*> model;
    std::vector<std::unique_ptr<Named>> records;
    for (int i = 0; i < 700; ++i) records.push_back(std::make_unique<Named>(Named{Key(i)}));
    std::mt19937 random(2);
    for (int step = 0; step < 20000; ++step) {
        const std::size_t at = random() % records.size();
        const TcString& key = records[at]->name;
        if (random() % 3 == 0) {
            EXPECT_EQ(map.Erase(key), model.erase(key.GetContent()) == 1);
        } else {
            EXPECT_EQ(map.Insert(key, records[at].get()), model.emplace(key.GetContent(), records[at].get()).second);
        }
        const TcString wanted = Key(static_cast<int>(random() % 1400));
        const auto known = model.find(wanted.GetContent());
        EXPECT_EQ(RecordIn(map, wanted), known == model.end() ? std::nullopt : std::optional(known->second));
    }
}

TEST(SharedMap, TellsAnAbsentKeyFromAKeyWithoutARecord) {
    Carrying map;
    Named other{"other"};
    EXPECT_TRUE(map.Insert("null", nullptr));
    EXPECT_TRUE(map.Insert("other", &other));
    EXPECT_EQ(RecordIn(map, "null"), std::optional<Named*>(nullptr));
    EXPECT_EQ(RecordIn(map, "other"), std::optional(&other));
    EXPECT_EQ(RecordIn(map, "absent"), std::nullopt);
    EXPECT_TRUE(map.Erase("null"));
    EXPECT_EQ(RecordIn(map, "null"), std::nullopt);
}

// Two keys of one map, of which the first has a record or none.
void ExpectApart(const TcString& first, Named* record, const TcString& second) {
    Carrying map;
    ReadPin pin;
    EXPECT_TRUE(map.Insert(first, record));
    EXPECT_EQ(RecordIn(map, second), std::nullopt);
    EXPECT_EQ(map.Find(second), nullptr);
    EXPECT_TRUE(map.Insert(second, nullptr));
    EXPECT_EQ(RecordIn(map, first), std::optional(record));
    EXPECT_EQ(RecordIn(map, second), std::optional<Named*>(nullptr));
    EXPECT_TRUE(map.Erase(first));
    EXPECT_EQ(RecordIn(map, first), std::nullopt);
    EXPECT_EQ(RecordIn(map, second), std::optional<Named*>(nullptr));
}

TEST(SharedMap, KeysThatShareTheirPlaceAndTheirTagStayApart) {
    std::map<u64, TcString> seen;
    int pairs = 0;
    for (int n = 0; n < 10'000; ++n) {
        const TcString key = Key(n);
        const u64 mixed = HashedKey(key).mixed;
        const u64 placeAndTag = mixed >> 60 << 60 | (mixed >> 31 & 0xffff);  // of the smallest table
        const auto [at, isFirst] = seen.try_emplace(placeAndTag, key);
        if (isFirst) continue;
        ++pairs;
        Named record{at->second};
        ExpectApart(at->second, &record, key);
        ExpectApart(at->second, nullptr, key);
    }
    EXPECT_GT(pairs, 0);
}

// A place without a record must not look like one whose key is gone.
TEST(SharedMap, AKeyWithoutARecordIsFoundWhenItsTagIsZero) {
    int n = 0;
    while ((HashedKey(Key(n)).mixed >> 31 & 0xffff) != 0) ++n;
    Carrying map;
    EXPECT_TRUE(map.Insert(Key(n), nullptr));
    EXPECT_EQ(RecordIn(map, Key(n)), std::optional<Named*>(nullptr));
    EXPECT_TRUE(map.Erase(Key(n)));
    EXPECT_EQ(RecordIn(map, Key(n)), std::nullopt);
}

// A table that is full of neighbours, erased places and keys without a record is asked for all of them and more.
TEST(SharedMap, BringsTheMemoryOfAnyKeyWithoutChangingWhatIsFound) {
    Carrying map;
    std::vector<std::unique_ptr<Named>> records;
    const auto expectAll = [&] {
        for (int n = 0; n < 1400; ++n) {
            const TcString key = Key(n);
            std::optional<Named*> expected;
            if (n < static_cast<int>(records.size()) && n % 3 != 0)
                expected = n % 5 == 0 ? nullptr : records[static_cast<std::size_t>(n)].get();
            ReadPin pin;
            map.FetchSlot(HashedKey(key).mixed);
            map.FetchRecord(HashedKey(key).mixed);
            EXPECT_EQ(RecordIn(map, key), expected) << n;
        }
    };
    expectAll();
    for (int n = 0; n < 700; ++n) {
        records.push_back(std::make_unique<Named>(Named{Key(n)}));
        map.Insert(Key(n), n % 5 == 0 ? nullptr : records.back().get());
    }
    for (int n = 0; n < 700; n += 3) map.Erase(Key(n));
    expectAll();
}

TEST(SharedMap, LooksAtTheKeyOfTheRecordItself) {
    Carrying map;
    Named record{"another name"};
    map.Insert("key", &record);
    EXPECT_EQ(RecordIn(map, "key"), std::nullopt);
}

}  // namespace
}  // namespace vardel
