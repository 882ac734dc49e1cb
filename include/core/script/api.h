// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks a name that libcore_script.so exports; everything else is hidden.
#if defined(_WIN32)
#if defined(CORE_SCRIPT_BUILDING)
#define CORE_SCRIPT_API __declspec(dllexport)
#else
#define CORE_SCRIPT_API __declspec(dllimport)
#endif
#else
#define CORE_SCRIPT_API __attribute__((visibility("default")))
#endif
