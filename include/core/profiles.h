// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Settings: a hierarchical store of values in folders, kept in files that several processes share.
#include <core/profiles/errors.h>
#include <core/profiles/profile.h>
#include <core/profiles/settings.h>
#include <core/profiles/settings_functions.h>
