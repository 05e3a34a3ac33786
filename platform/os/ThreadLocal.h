// How the component's own thread-local data is reached. In a shared library on ELF systems every
// access to a thread-local variable is by default a call into the C library (__tls_get_addr);
// the initial-exec model makes it one load, from the static thread storage that the C library
// keeps in reserve for libraries loaded later. Only the core allocator's few bytes, read on
// every allocation, use it. Windows reaches thread storage its own way.
#pragma once

#if defined(__ELF__)
#define VANTO_FAST_THREAD_LOCAL __attribute__((tls_model("initial-exec")))
#else
#define VANTO_FAST_THREAD_LOCAL
#endif
