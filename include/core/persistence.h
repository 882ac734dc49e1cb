// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Objects that write themselves and are made again from what they wrote; failures among them.
#include <core/lists.h>
#include <core/persistence/errors.h>
#include <core/persistence/persistence.h>
#include <core/persistence/stream_storage.h>
#include <core/runtime/exception_object.h>
