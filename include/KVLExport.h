#ifndef KVL_EXPORT_H
#define KVL_EXPORT_H

/// `KVL_EXPORT` marks what the kernel library offers to its hosts and modules; everything else is
/// hidden. `KVL_ENTRY_EXPORT` marks an entry that another library offers by name, such as the
/// shell's. `KVL_LOCAL` marks a function in a header of which every library and program is to use a
/// copy of its own.
#if defined(_WIN32)
#define KVL_ENTRY_EXPORT __declspec(dllexport)
#define KVL_LOCAL
#if defined(KVLKernel_EXPORTS)
#define KVL_EXPORT __declspec(dllexport)
#else
#define KVL_EXPORT __declspec(dllimport)
#endif
#else
#define KVL_ENTRY_EXPORT __attribute__((visibility("default")))
#define KVL_LOCAL __attribute__((visibility("hidden")))
#define KVL_EXPORT __attribute__((visibility("default")))
#endif

#endif
