// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The collections that scripts see as values, and their common names and errors.
#include <core/collections/array.h>
#include <core/collections/errors.h>
#include <core/collections/native_values.h>
#include <core/collections/pairs.h>
#include <core/collections/terms.h>
#include <core/collections/value_array.h>
#include <core/collections/value_map.h>
#include <core/collections/value_pair.h>
#include <core/collections/value_structure.h>
