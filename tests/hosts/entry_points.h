#ifndef VESTRA_TESTS_HOSTS_ENTRY_POINTS_H
#define VESTRA_TESTS_HOSTS_ENTRY_POINTS_H

#include <vestra/vestra.h>

namespace vestra_test {

/// What a host calls, however it came to the library.
struct EntryPoints {
  decltype(&Oza::Vestra::add) add;
  decltype(&Oza::Vestra::send) send;
};

/// @param arguments  How to come to it: none of a host that is linked to it; else the
///                   library's file, and "local" or "global" for what dlopen is to do with
///                   its symbols.
EntryPoints entryPoints(const char* const* arguments);

}  // namespace vestra_test

#endif
