// Marks what Hostkit3 exports: the public classes and free functions of namespace Hostkit.
#pragma once

#if defined(HOSTKIT_STATIC)
#define HOSTKIT_API
#elif defined(_WIN32)
#if defined(HOSTKIT_BUILDING)
#define HOSTKIT_API __declspec(dllexport)
#else
#define HOSTKIT_API __declspec(dllimport)
#endif
#else
#define HOSTKIT_API __attribute__((visibility("default")))
#endif
