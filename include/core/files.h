// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Files: one interface for bytes on disk and in memory, and the file system service that finds them by URL.
#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file.h>
#include <core/files/file_impl.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/files/file_time.h>
#include <core/files/memory_file.h>
#include <core/files/temp_file_service.h>
#include <core/files/url.h>
