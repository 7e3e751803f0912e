// KORVEX_API marks what a library of korvex shows: everything else is hidden.
#pragma once

#if defined(__GNUC__)
#define KORVEX_API __attribute__((visibility("default")))
#else
#define KORVEX_API
#endif
