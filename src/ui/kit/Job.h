#pragma once

#include <functional>

// Long work over catalog and cache, off the window thread.
//
// A job runs on a worker thread, which owns the data meanwhile. The window thread waits for it in a loop
// of its own, in which every window paints, but only the progress window and message boxes get input. So
// for the caller a job is one blocking call, and the data is never used by two threads at once.

/// Runs `work` and returns when it is done; an exception of it is raised again here. `stop` is called, on
/// the window thread, when someone wants the job to end early; it may be empty. To be called on the window
/// thread, not from within a job.
void RunJob(const std::function<void()>& work, const std::function<void()>& stop = {});

/// Any thread.
bool IsJobRunning();

/// Asks the running job to end early. Does nothing without one.
void StopJob();

/// Runs `work` on the window thread: at once if there is no job, else when the running one is over.
void RunAfterJob(std::function<void()> work);

/// Runs `work` on the window thread and waits for it; an exception of it is raised again in the caller.
/// To be called by a job, or on the window thread itself.
void RunOnWindowThread(const std::function<void()>& work);
