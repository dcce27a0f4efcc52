#include <gtest/gtest.h>

#include "Vel/Allocate.h"
#include "Vel/Ptr.h"

namespace {

class Counted : public Vel::PtrInterface {};

TEST(PtrTest, CopyAddsAndReleaseDropsOneReference) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  EXPECT_EQ(a->references(), 1u);
  {
    Vel::Ptr<Counted> b = a;
    EXPECT_EQ(a->references(), 2u);
  }
  EXPECT_EQ(a->references(), 1u);
}

}  // namespace
