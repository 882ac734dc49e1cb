// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Type descriptions: which types a value may take, how numbers, strings and dates are limited, and values
/// that are held to that.
#include <core/lists/errors.h>
#include <core/numbers/errors.h>
#include <core/types/errors.h>
#include <core/types/qualifiers.h>
#include <core/types/type_domain.h>
#include <core/types/type_domain_pattern.h>
#include <core/types/typed_value.h>
