// An autorelease pool for code that is not Objective-C++. Every callback that the run loop calls
// has one of its own: in a process without an NSApplication nobody else need have made one.
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
