// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Texts: comparison with and without regard to case, names, patterns, and the everyday helpers.
#include <core/strings/char_class.h>
#include <core/strings/compare.h>
#include <core/strings/errors.h>
#include <core/strings/integer_text.h>
#include <core/strings/letter_case.h>
#include <core/strings/like.h>
#include <core/strings/names.h>
#include <core/strings/nearest.h>
#include <core/strings/path.h>
#include <core/strings/printf.h>
#include <core/strings/split.h>
#include <core/strings/term.h>
#include <core/strings/text.h>
#include <core/strings/trim.h>
