// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks a name that libcore.so exports; everything else is hidden.
#if defined(_WIN32)
#if defined(CORE_BUILDING)
#define CORE_API __declspec(dllexport)
#else
#define CORE_API __declspec(dllimport)
#endif
#else
#define CORE_API __attribute__((visibility("default")))
#endif

/// Is `constinit`, but nothing for users of the library on Windows: objects of exported classes are not
/// constant there, since their table of functions is found when the library is loaded.
#if defined(_WIN32) && !defined(CORE_BUILDING)
#define CORE_CONSTINIT
#else
#define CORE_CONSTINIT constinit
#endif
