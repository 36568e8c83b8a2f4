#pragma once

#include <functional>
#include <string_view>
#include <system_error>

namespace platform {

/// What the next file operations are to suffer. Tests set a plan to see what the program does when a
/// disk fills up or an operation fails; without a plan every operation goes straight to the system.
///
/// The function is asked before each step that changes the disk ("write", "sync", "rename", "link",
/// "remove", "mkdir", "chmod", "create"), with its path; an error that it returns is the step's result,
/// and the step is not done. It may also end the process, to see what a kill at that step leaves.
using FaultPlan = std::function<std::error_code(std::string_view operation, std::string_view path)>;

/// Sets the plan for the whole process; an empty function ends it. For tests, on one thread.
void SetFaultPlan(FaultPlan plan);

/// Asks the plan. The file layer calls this before each step.
std::error_code AskFaultPlan(std::string_view operation, std::string_view path);

}  // namespace platform
