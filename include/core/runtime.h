// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The component runtime: ids, counted interfaces, the registry of classes and services, failures.
#include <core/runtime/class_entry.h>
#include <core/runtime/clock.h>
#include <core/runtime/code_hold.h>
#include <core/runtime/errors.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/index_iterator.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/loaded_module.h>
#include <core/runtime/module.h>
#include <core/runtime/module_anchor.h>
#include <core/runtime/module_contract.h>
#include <core/runtime/name_guid.h>
#include <core/runtime/persistable.h>
#include <core/runtime/process.h>
#include <core/runtime/random.h>
#include <core/runtime/refcount.h>
#include <core/runtime/resource_bundle.h>
#include <core/runtime/settings.h>
#include <core/runtime/shown.h>
#include <core/runtime/threads/lock_cycles.h>
#include <core/runtime/threads/mutex.h>
#include <core/runtime/threads/named_lock.h>
#include <core/runtime/threads/rw_mutex.h>
#include <core/runtime/threads/semaphore.h>
#include <core/runtime/threads/stop_scope.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/uncaught.h>
#include <core/runtime/unknown.h>
#include <core/runtime/utf8.h>
