// leakSuppressions.cpp - what the leak sanitizer is not to report: the mesh importer loses memory on broken files.

extern "C" char const* __lsan_default_suppressions() { return "leak:libassimp\n"; }

extern "C" char const* __lsan_default_options() { return "print_suppressions=0"; }
