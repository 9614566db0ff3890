#pragma once

// KALIM_API marks what a host may link against; everything else stays hidden inside the library.
#if defined(__GNUC__)
#define KALIM_API __attribute__((visibility("default")))
#else
#define KALIM_API
#endif
