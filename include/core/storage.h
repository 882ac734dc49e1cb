// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Containers: many named inner files in one file that survives a crash at any moment.
#include <core/storage/chain.h>
#include <core/storage/errors.h>
#include <core/storage/file_info.h>
#include <core/storage/file_with_buffer.h>
#include <core/storage/files_type.h>
#include <core/storage/layout.h>
#include <core/storage/open_container.h>
#include <core/storage/salvage.h>
#include <core/storage/storage_check.h>
#include <core/storage/storage_rw.h>
#include <core/storage/storage_scheme.h>
