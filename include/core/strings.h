// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Texts and names: comparison, hashes, classes of characters.
#include <core/strings/case_fold.h>
#include <core/strings/char_class.h>
#include <core/strings/compare.h>
#include <core/strings/names.h>
#include <core/strings/trim.h>
