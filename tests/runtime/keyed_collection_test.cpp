#include "runtime/keyed_collection.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace sentrune::rt {
namespace {

std::string Keys(const KeyedCollection<int>& c) {
  std::string out;
  for (const auto& entry : c) out += entry.key() + "=" + std::to_string(entry.item) + " ";
  return out;
}

TEST(KeyedCollection, KeysIgnoreCaseTheFirstAddWinsAndRemovalKeepsOrder) {
  KeyedCollection<int> c;
  EXPECT_TRUE(c.Add("Widgets", 1));
  EXPECT_FALSE(c.Add("WIDGETS", 2));
  EXPECT_TRUE(c.Add("\u00C9t\u00E9", 3));
  EXPECT_EQ(*c.Find("\u00E9T\u00C9"), 3);
  EXPECT_EQ(c.Find("Widget"), nullptr);
  for (const char* key : {"b", "c"}) ASSERT_TRUE(c.Add(key, key[0]));
  EXPECT_TRUE(c.Remove("B"));
  EXPECT_FALSE(c.Remove("b"));
  EXPECT_EQ(Keys(c), "Widgets=1 \u00C9t\u00E9=3 c=99 ");  // keys keep the case they were added with
  EXPECT_EQ(*c.Find("C"), 'c');
  EXPECT_TRUE(c.Add("b", 4));
  EXPECT_EQ(c.at(3), 4);
  EXPECT_THROW(c.at(4), std::out_of_range);
  c.Clear();
  EXPECT_TRUE(c.empty());
  EXPECT_EQ(c.Find("widgets"), nullptr);
  EXPECT_TRUE(c.Add("widgets", 2));
  EXPECT_EQ(Keys(c), "widgets=2 ");
}

TEST(KeyedCollection, LargeCollectionStaysConsistentAfterRemovals) {
  KeyedCollection<int> c;
  for (int i = 0; i < 1200; ++i) ASSERT_TRUE(c.Add("Member" + std::to_string(i), i));
  for (int i = 0; i < 1200; i += 3) ASSERT_TRUE(c.Remove("MEMBER" + std::to_string(i)));
  ASSERT_EQ(c.size(), 800u);
  for (int i = 0; i < 1200; ++i) {
    const int* item = c.Find("member" + std::to_string(i));
    EXPECT_EQ(item ? *item : -1, i % 3 ? i : -1) << i;
  }
  for (auto& entry : c) entry.item = -entry.item;
  EXPECT_EQ(c.keyAt(799), "Member1199");
  EXPECT_EQ(*std::as_const(c).Find("Member1199"), -1199);
}

TEST(KeyedCollection, AKeyHeldInTheItemFindsItAndRefusesRepeats) {
  struct Named {
    std::string name;
    int value = 0;
  };
  KeyedCollection<Named, &Named::name> c;
  EXPECT_TRUE(c.Add({"Property Get Caption() As String", 1}));
  EXPECT_FALSE(c.Add({"PROPERTY GET CAPTION() AS STRING", 2}));
  EXPECT_TRUE(c.Add({"Property Let Caption(RHS As String)", 3}));
  EXPECT_EQ(c.Find("property get caption() as string")->value, 1);
  EXPECT_TRUE(c.Remove("Property Get Caption() As String"));
  EXPECT_EQ(c.keyAt(0), "Property Let Caption(RHS As String)");
  EXPECT_EQ(c.Find("Property Let Caption(RHS As String)")->value, 3);
}

}  // namespace
}  // namespace sentrune::rt
