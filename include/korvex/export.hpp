// What the shared libraries of korvex show: everything else is hidden. KORVEX_API marks what
// libkorvex holds, PREPROCESS_API what libpreprocess does.
#pragma once

#if defined(__GNUC__)
#define KORVEX_API __attribute__((visibility("default")))
#define PREPROCESS_API __attribute__((visibility("default")))
#else
#define KORVEX_API
#define PREPROCESS_API
#endif
