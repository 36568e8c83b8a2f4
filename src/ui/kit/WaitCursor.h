#pragma once

/// Shows the pointer as a clock while it lives. A pointer that is hidden stays so.
class CWaitCursor {
 public:
  CWaitCursor();
  ~CWaitCursor();
  CWaitCursor(const CWaitCursor&) = delete;
  CWaitCursor& operator=(const CWaitCursor&) = delete;

 private:
  bool Shown;
};

/// Hides the pointer over the whole program while it lives.
class CHiddenPointer {
 public:
  CHiddenPointer();
  ~CHiddenPointer();
  CHiddenPointer(const CHiddenPointer&) = delete;
  CHiddenPointer& operator=(const CHiddenPointer&) = delete;
};
