// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace core {

/// Lets the system's printf write numbers of this thread as in C's own locale, whatever the program's is.
class PlainNumbers {
  public:
    PlainNumbers() noexcept;
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;
    ~PlainNumbers();

  private:
    void* before_;
};

} // namespace core
