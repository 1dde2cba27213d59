#include "foundation/vector.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "tests/foundation/numbers.h"
#include "tests/support/slot_of.h"

// The order of the virtual operations, and what a derived vector can replace.

namespace {

/// A vector that reports its destruction.
class LeavingNumbers : public Numbers {
 public:
  explicit LeavingNumbers(bool& gone) : gone_(gone) {}
  ~LeavingNumbers() override { gone_ = true; }

 private:
  bool& gone_;
};

/// A vector whose at() and remove() throw. elementAt() and erase() must not change with them.
class RefusingNumbers : public Numbers {
 public:
  const std::int32_t& at(std::int32_t /*index*/) override { throw "refused"; }
  void remove(std::int32_t /*index*/) override { throw "refused"; }
};

}  // namespace

TEST(Vector, VirtualOperationsStandInTheirFixedOrder) {
  using V = Numbers;
  using Value = std::int32_t;
  using Index = std::int32_t;
  using Count = std::int32_t;
  // sortRange() has slot 0; the destructor has the slots 1 and 2.
  const std::vector<std::size_t> slots = {
      slotOf<void(Index, Index)>(&V::sortRange),
      slotOf<void()>(&V::clear),
      slotOf<const Value&() const>(&V::current),
      slotOf<const Value&(Index)>(&V::at),
      slotOf<const Value&()>(&V::next),
      slotOf<const Value&()>(&V::previous),
      slotOf<void(Index, Value)>(&V::set),
      slotOf<const Value&(Index)>(&V::elementAt),
      slotOf<V(const V&)>(&V::assignAndCopy),
      slotOf<void(const V&)>(&V::assign),
      slotOf<void(const Value*, Count)>(&V::assign),
      slotOf<void(Value)>(&V::assign),
      slotOf<std::unique_ptr<Value[]>() const>(&V::copyOut),
      slotOf<void(Value*, Count) const>(&V::copyOut),
      slotOf<void(const V&)>(&V::append),
      slotOf<void(const Value*, Count)>(&V::append),
      slotOf<void(Value)>(&V::append),
      slotOf<void(Index, const V&)>(&V::overwrite),
      slotOf<void(Index, const Value*, Count)>(&V::overwrite),
      slotOf<void(Index, Value)>(&V::replace),
      slotOf<void(Index, const V&)>(&V::insert),
      slotOf<void(Index, const Value*, Count)>(&V::insert),
      slotOf<void(Index, Value)>(&V::insert),
      slotOf<void(Index)>(&V::remove),
      slotOf<void(Index)>(&V::erase),
      slotOf<void(Index, Count)>(&V::removeRange),
      slotOf<void(Count)>(&V::truncate),
      slotOf<bool(const Value&) const>(&V::contains),
      slotOf<void()>(&V::sort),
  };

  EXPECT_EQ(slots[0], 0U);
  ASSERT_EQ(slots.size(), 29U);
  for (std::size_t i = 1; i < slots.size(); ++i) {
    EXPECT_EQ(slots[i], i + 2) << "operation " << i;
  }
}

TEST(Vector, DeletingThroughTheBaseReleasesTheDerivedVector) {
  bool gone = false;

  std::unique_ptr<Numbers> vector = std::make_unique<LeavingNumbers>(gone);
  vector->append(1);
  EXPECT_FALSE(gone);
  vector.reset();

  EXPECT_TRUE(gone);
}

TEST(Vector, AReplacedOperationLeavesItsTwinAlone) {
  RefusingNumbers vector;
  vector.assign(numbers({1, 2, 3}));

  EXPECT_EQ(vector.elementAt(1), 2);
  vector.erase(1);

  EXPECT_EQ(elementsOf(vector), (std::vector<std::int32_t>{1, 3}));
}
