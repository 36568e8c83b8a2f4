#include <thread>

#include "StorageTestTools.h"
#include "storage/DataThread.h"

namespace {

using CDataThreadTest = CStorageTest;

TEST_F(CDataThreadTest, DataAreLentToOneThreadAtATime) {
  const c4_IntProp pNumber("Number");
  c4_Storage storage(Path, c4_Storage::Mode::ReadWrite);
  c4_View things = storage.GetAs("Thing[Number:I]");
  std::thread([&] {
    const CDataThreadScope scope;
    things.Add(pNumber[5]);
    storage.Commit();
  }).join();
  EXPECT_EQ(pNumber.Get(things[0]), 5);  // they came back
}

#ifndef NDEBUG
TEST_F(CDataThreadTest, UseByAnotherThreadStopsADebugBuild) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        AssertDataThread();
        std::thread([] { c4_View().GetSize(); }).join();
      },
      "doesn't own the data");
}
#endif

}  // namespace
