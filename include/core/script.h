// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Scripts inside a program: the engine and its errors. <core/script/console.h> is for programs that talk to
/// a user line by line.
#include <core/runtime/utf8.h>
#include <core/script/engine.h>
#include <core/script/errors.h>
#include <core/script/text.h>
#include <core/values.h>

#include <iostream>
