#include <orv-utils-v4/h2645_common/base_store.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using store = brenik::h2645_common_base_store<std::string>;

store with_ids(const std::vector<std::uint32_t>& ids)
{
    store made;
    for (const std::uint32_t id : ids)
        made.insert_or_assign(id, "set " + std::to_string(id));
    return made;
}

} // namespace

TEST(BaseStore, ANewStoreIsEmptyWithoutACurrentId)
{
    const store empty{};
    EXPECT_EQ(0U, empty.size());
    EXPECT_EQ(0xFFFFFFFFU, empty.current_id());
    EXPECT_EQ(0xFFFFFFFFU, store::no_current_id);
    EXPECT_TRUE(empty.begin() == empty.end());
    for (const std::uint32_t id : {0U, 1U, 0xFFFFFFFFU})
        EXPECT_EQ(nullptr, empty.find(id)) << id;
}

TEST(BaseStore, WhatIsStoredIsFoundUnderItsId)
{
    const store s = with_ids({3, 0, 0xFFFFFFFF, 7});
    EXPECT_EQ(4U, s.size());
    for (const std::uint32_t id : {0U, 3U, 7U, 0xFFFFFFFFU}) {
        ASSERT_NE(nullptr, s.find(id)) << id;
        EXPECT_EQ("set " + std::to_string(id), *s.find(id));
        EXPECT_EQ(s.find(id), &s.at(id));
    }
}

TEST(BaseStore, AnIdBetweenTwoStoredOnesIsAbsent)
{
    const store s = with_ids({3, 7});
    for (const std::uint32_t id : {0U, 2U, 4U, 5U, 6U, 8U, 0xFFFFFFFFU})
        EXPECT_EQ(nullptr, s.find(id)) << id;
}

TEST(BaseStore, AtThrowsOutOfRangeForAnAbsentId)
{
    const store s = with_ids({3, 7});
    try {
        s.at(5);
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& absent) {
        EXPECT_STREQ("map::at", absent.what());
    }
    EXPECT_THROW(store().at(0), std::out_of_range);
}

TEST(BaseStore, InsertionReplacesWhatHadTheId)
{
    store s = with_ids({1, 2});
    s.insert_or_assign(2, "new");
    EXPECT_EQ(2U, s.size());
    EXPECT_EQ("new", s.at(2));
    EXPECT_EQ("set 1", s.at(1));
}

TEST(BaseStore, InsertionLeavesTheCurrentId)
{
    store s = with_ids({0, 0xFFFFFFFF, 9});
    EXPECT_EQ(0xFFFFFFFFU, s.current_id());
    s.set_current_id(9);
    s.insert_or_assign(9, "new");
    s.insert_or_assign(4, "other");
    EXPECT_TRUE(s.erase(9));
    EXPECT_EQ(9U, s.current_id());
}

TEST(BaseStore, AnyIdMayBeCurrent)
{
    store s = with_ids({3});
    for (const std::uint32_t id : {3U, 0U, 77U, 0xFFFFFFFFU}) {
        s.set_current_id(id);
        EXPECT_EQ(id, s.current_id());
        EXPECT_EQ(1U, s.size());
    }
}

TEST(BaseStore, EraseTellsWhetherThereWasSomething)
{
    store s = with_ids({3, 7});
    EXPECT_FALSE(s.erase(5));
    EXPECT_EQ(2U, s.size());
    EXPECT_TRUE(s.erase(3));
    EXPECT_FALSE(s.erase(3));
    EXPECT_EQ(nullptr, s.find(3));
    EXPECT_EQ(1U, s.size());
    EXPECT_EQ("set 7", s.at(7));
}

TEST(BaseStore, IterationAscends)
{
    const store s = with_ids({7, 0xFFFFFFFF, 0, 0x80000000, 3});
    std::vector<std::uint32_t> ids;
    for (const auto& [id, set] : s) {
        ids.push_back(id);
        EXPECT_EQ("set " + std::to_string(id), set);
    }
    EXPECT_EQ((std::vector<std::uint32_t>{0, 3, 7, 0x80000000, 0xFFFFFFFF}), ids);
}

TEST(BaseStore, AnEntryStaysWhereItIsWhileOthersComeAndGo)
{
    store s = with_ids({100});
    const std::string* const entry = s.find(100);
    for (std::uint32_t id = 0; id < 200; ++id)
        if (id != 100)
            s.insert_or_assign(id, "other");
    for (std::uint32_t id = 0; id < 99; ++id)
        s.erase(id);
    EXPECT_EQ(entry, s.find(100));
    EXPECT_EQ("set 100", *entry);
}

TEST(BaseStore, ACopyIsIndependent)
{
    store original = with_ids({1});
    original.set_current_id(1);
    store copy = original;
    copy.insert_or_assign(1, "new");
    copy.set_current_id(2);
    EXPECT_EQ("set 1", original.at(1));
    EXPECT_EQ(1U, original.current_id());
    EXPECT_EQ("new", copy.at(1));
}
