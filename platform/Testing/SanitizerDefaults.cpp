// Options for AddressSanitizer and LeakSanitizer, compiled in so that every run of a program has
// them. The Objective-C runtime and GNUstep keep some of what they allocate, as while classes
// register. Only the functions that do so are suppressed, so that a leaked object of our own is
// still reported.

extern "C" {

const char* __asan_default_options() {
    // Exact stacks, which tell the libraries' functions from ours, and no longer than that needs:
    // recording them takes most of the time.
    return "fast_unwind_on_malloc=0:malloc_context_size=15";
}

const char* __lsan_default_options() {
    return "print_suppressions=0";
}

const char* __lsan_default_suppressions() {
    return "leak:__objc_exec_class\n"
           "leak:GSObjCAddMethods\n"
           "leak:GSObjCAddClassBehavior\n"
           "leak:call_init\n"
           "leak:GSPropertyListMake\n"
           "leak:NSLogv\n";
}

}  // extern "C"
