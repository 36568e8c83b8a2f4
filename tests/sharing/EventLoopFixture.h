#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <memory>

/// The event loop that the network code needs, without a window.
class CEventLoopFixture : public testing::Test {
 private:
  char Name[5] = "test";
  char* Arguments[2] = {Name, nullptr};
  int ArgumentCount = 1;
  const QCoreApplication Application{ArgumentCount, Arguments};
};
