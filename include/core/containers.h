// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Files and containers as objects: values, texts and bytes by name in one file, in programs and in scripts.
#include <core/containers/container.h>
#include <core/containers/container_functions.h>
#include <core/containers/errors.h>
#include <core/containers/file_functions.h>
#include <core/containers/stored_value.h>
