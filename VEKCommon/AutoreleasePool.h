// An autorelease pool for code that is not Objective-C++. Every callback of the run loop makes its
// own: in a process without an NSApplication, nothing else is guaranteed to make one.
#pragma once

class AutoreleasePool {
  public:
    AutoreleasePool();
    ~AutoreleasePool();
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

  private:
    void* const pool_;
};
