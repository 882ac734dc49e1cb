// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Type descriptions and their qualifiers as script values.
#include <core/descriptions/qualifier_values.h>
#include <core/descriptions/type_description.h>
