// Options for AddressSanitizer and LeakSanitizer, compiled in so that every run of a program has
// them.
//
// The stack of an allocation is found by frame pointers, which takes a fraction of the time: it
// ends where it enters a library without them. That is enough to tell what the Objective-C runtime
// allocates for its own tables, and keeps, from what is ours: objects are allocated by other
// functions. A whole stack is shown with ASAN_OPTIONS=fast_unwind_on_malloc=0.

extern "C" {

const char* __asan_default_options() {
    return "fast_unwind_on_malloc=1:malloc_context_size=15";
}

const char* __lsan_default_options() {
    return "print_suppressions=0";
}

const char* __lsan_default_suppressions() {
    return "leak:objc_malloc\n"
           "leak:class_copyMethodList\n";
}

}  // extern "C"
