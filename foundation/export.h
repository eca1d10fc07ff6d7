#ifndef FOUNDATION_EXPORT_H
#define FOUNDATION_EXPORT_H

/// Marks the public API of a shared library of this project. Symbols are hidden by default;
/// classes and functions that applications use carry one of these macros.
#if defined(_WIN32)
#define XC_DLL_EXPORT __declspec(dllexport)
#define XC_DLL_IMPORT __declspec(dllimport)
#else
#define XC_DLL_EXPORT __attribute__((visibility("default")))
#define XC_DLL_IMPORT __attribute__((visibility("default")))
#endif

#if defined(FOUNDATION_BUILDING)
#define FOUNDATION_API XC_DLL_EXPORT
#else
#define FOUNDATION_API XC_DLL_IMPORT
#endif

#endif
