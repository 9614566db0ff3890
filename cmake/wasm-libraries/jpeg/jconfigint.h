// The same of what libjpeg-turbo needs for itself.
#define BUILD "kalimkit"
#define INLINE __inline__ __attribute__((always_inline))
#define THREAD_LOCAL
#define PACKAGE_NAME "libjpeg-turbo"
#define VERSION "2.1.5"
#define SIZEOF_SIZE_T 4
#define HAVE_BUILTIN_CTZL 1
#define FALLTHROUGH __attribute__((fallthrough));
