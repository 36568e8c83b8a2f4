#include "platform/Faults.h"

#include <utility>

namespace platform {
namespace {

FaultPlan& CurrentPlan() {
  static FaultPlan plan;
  return plan;
}

}  // namespace

void SetFaultPlan(FaultPlan plan) { CurrentPlan() = std::move(plan); }

std::error_code AskFaultPlan(std::string_view operation, std::string_view path) {
  const FaultPlan& plan = CurrentPlan();
  return plan ? plan(operation, path) : std::error_code();
}

}  // namespace platform
