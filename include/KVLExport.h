#ifndef KVL_EXPORT_H
#define KVL_EXPORT_H

/// `KVL_EXPORT` marks what the kernel library offers to its hosts and modules; everything else is
/// hidden. `KVL_ENTRY_EXPORT` marks an entry that another library offers by name, such as the
/// shell's.
#if defined(_WIN32)
#define KVL_ENTRY_EXPORT __declspec(dllexport)
#if defined(KVLKernel_EXPORTS)
#define KVL_EXPORT __declspec(dllexport)
#else
#define KVL_EXPORT __declspec(dllimport)
#endif
#else
#define KVL_ENTRY_EXPORT __attribute__((visibility("default")))
#define KVL_EXPORT __attribute__((visibility("default")))
#endif

#endif
