// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Exact decimal numbers of any length, and their texts.
#include <core/numbers/errors.h>
#include <core/numbers/numeric.h>
#include <core/numbers/settings.h>
#include <core/numbers/shown_numeric.h>
