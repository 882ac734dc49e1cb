// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// The input that runs now.
inline std::string last_input;

/// A program that dies from now on leaves the input that killed it in this file.
void keep_last_input(const std::string& file);
