// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Scripts inside a program: the engine and its errors, and what a console needs besides.
#include <core/runtime/utf8.h>
#include <core/script/api.h>
#include <core/script/console.h>
#include <core/script/engine.h>
#include <core/script/error_value.h>
#include <core/script/errors.h>
#include <core/script/text.h>
#include <core/script/text_match.h>
#include <core/values.h>

#include <iostream>
