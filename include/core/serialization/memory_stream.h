// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <core/runtime/types.h>

#include <istream>
#include <ostream>
#include <sstream>
namespace core {
class MemoryOutStream : public std::basic_ostringstream<wchar> {
  public:
    wstring take() { return str(); }
};
class MemoryInStream : public std::basic_istringstream<wchar> {
  public:
    explicit MemoryInStream(wstring_view t) : std::basic_istringstream<wchar>(wstring(t)) {}
};
} // namespace core
